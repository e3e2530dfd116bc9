#include "krbase/eitherstop.h"
#include "krbase/rest.h"

#include <gtest/gtest.h>

#include <chrono>
#include <stop_token>
#include <thread>

using krbase::EitherStop;
using krbase::Rest;

TEST(Rest, WithoutAStop_LastsItsTime) {
  constexpr std::chrono::milliseconds kTime{5};
  const auto begin = std::chrono::steady_clock::now();

  EXPECT_TRUE(Rest(kTime, {}));

  EXPECT_GE(std::chrono::steady_clock::now() - begin, kTime);
}

TEST(Rest, StopBeforeOrMeanwhile_EndsIt) {
  std::stop_source stop;
  // Whether it comes first or later, the pause is of a length that the test would not survive.
  std::jthread other([&stop] { stop.request_stop(); });

  EXPECT_FALSE(Rest(std::chrono::hours(24), stop.get_token()));
  EXPECT_FALSE(Rest(std::chrono::hours(24), stop.get_token()));
}

TEST(EitherStop, EachOfTheTwo_StopsIt) {
  for (const bool isFirst : {true, false}) {
    std::stop_source first;
    std::stop_source second;
    const EitherStop either(first.get_token(), second.get_token());
    EXPECT_FALSE(either.GetToken().stop_requested());

    (isFirst ? first : second).request_stop();

    EXPECT_TRUE(either.GetToken().stop_requested());
  }
}

TEST(EitherStop, OneThatWasStoppedBefore_StopsItAtOnce) {
  std::stop_source stopped;
  stopped.request_stop();

  EXPECT_TRUE(EitherStop(stopped.get_token(), std::stop_source().get_token()).GetToken().stop_requested());
  EXPECT_TRUE(EitherStop(std::stop_source().get_token(), stopped.get_token()).GetToken().stop_requested());
}

TEST(EitherStop, TokenThatNobodyCanStop_LeavesTheOther) {
  std::stop_source only;
  const EitherStop withNone(only.get_token(), {});
  const EitherStop noneWith({}, only.get_token());

  only.request_stop();

  EXPECT_TRUE(withNone.GetToken().stop_requested());
  EXPECT_TRUE(noneWith.GetToken().stop_requested());
}
