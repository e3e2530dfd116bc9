#include "map/maplock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

using krgenicam::MapLock;

TEST(MapLock, Lock_BySeveralThreads_IsHeldByOneAtATime) {
  constexpr int kThreads = 4;
  constexpr int kTurns = 20000;
  MapLock lock;
  int turns = 0;
  {
    std::vector<std::jthread> threads;
    for (int i = 0; i < kThreads; ++i)
      threads.emplace_back([&] {
        for (int turn = 0; turn < kTurns; ++turn) {
          const std::lock_guard guard(lock);
          ++turns;
        }
      });
  }

  EXPECT_EQ(turns, kThreads * kTurns);
}

TEST(MapLock, Lock_WhileAnotherThreadTakesItAgainAndAgain_IsHad) {
  MapLock lock;
  std::atomic<bool> isBusy = false;
  std::jthread greedy([&](const std::stop_token& aStop) {
    while (!aStop.stop_requested()) {
      const std::lock_guard guard(lock);
      isBusy = true;
    }
  });
  while (!isBusy)
    std::this_thread::yield();

  for (int turn = 0; turn < 100; ++turn) {
    const std::lock_guard guard(lock);
    isBusy = false;
  }

  greedy.request_stop();
  SUCCEED();
}
