#include "watchdog.h"

#include <gtest/gtest.h>

#include <string>
#include <unistd.h>

namespace {

[[noreturn]] void Hang() {
  Watchdog watchdog(std::chrono::seconds(5));
  watchdog.Begin("a step that passes");
  watchdog.Begin("a step that hangs");
  for (;;)
    ::pause();
}

} // namespace

TEST(WatchdogDeathTest, StepThatHangs_EndsTheProcessAndIsNamed) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");

  EXPECT_EXIT(Hang(), testing::ExitedWithCode(1), "hangs for 5 s in the step: a step that hangs\n  thread [0-9]+: ");
}

TEST(Watchdog, StepsInTime_AreLeftAlone) {
  Watchdog watchdog(std::chrono::hours(1));

  watchdog.Begin("the first step");
  watchdog.Begin("the second step");

  EXPECT_EQ(std::string(watchdog.GetStep()), "the second step");
}
