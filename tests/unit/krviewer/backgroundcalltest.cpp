#include "backgroundcall.h"

#include "await.h"

#include <gtest/gtest.h>

#include <atomic>

using krviewer::BackgroundCall;

TEST(BackgroundCall, Over_IsFollowedOnce) {
  BackgroundCall call;
  std::atomic<bool> mayEnd = false;
  int followed = 0;
  call.Start([&](const std::stop_token&) { EXPECT_TRUE(krtest::Await([&] { return mayEnd.load(); })); }, [] {},
             [&] { ++followed; });
  call.Follow();
  EXPECT_TRUE(call.IsRunning());
  EXPECT_EQ(followed, 0);

  mayEnd = true;
  while (call.IsRunning())
    call.Follow();
  call.Follow();

  EXPECT_EQ(followed, 1);
}

TEST(BackgroundCall, Ended_IsHurriedUntilItIsOverAndNotFollowed) {
  BackgroundCall call;
  std::atomic<int> hurries = 0;
  int followed = 0;
  bool wasStopped = false;
  call.Start(
      [&](const std::stop_token& aStop) {
        EXPECT_TRUE(krtest::Await([&] { return hurries >= 3; }));
        wasStopped = aStop.stop_requested();
      },
      [&] { ++hurries; }, [&] { ++followed; });

  call.End();
  call.Follow();

  EXPECT_FALSE(call.IsRunning());
  EXPECT_TRUE(wasStopped);
  EXPECT_EQ(followed, 0);
}

TEST(BackgroundCall, WhatFollows_MayBeginTheNextOne) {
  BackgroundCall call;
  bool isDone = false;
  call.Start([](const std::stop_token&) {}, [] {},
             [&] { call.Start([](const std::stop_token&) {}, [] {}, [&] { isDone = true; }); });

  while (call.IsRunning())
    call.Follow();

  EXPECT_TRUE(isDone);
}
