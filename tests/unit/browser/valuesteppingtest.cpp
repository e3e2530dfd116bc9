#include "logic/browser/valuestepping.h"

#include <gtest/gtest.h>

#include <limits>

namespace krgui {

namespace {

constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

struct StepRow {
  const char* name;
  std::int64_t value;
  IntegerRange range;
  std::int64_t increments;
  bool isUp;
  std::int64_t expected;
};

constexpr bool kUp = true;
constexpr bool kDown = false;

constexpr StepRow kStepRows[] = {
    {"a plain step up", 5, {0, 100, 1}, 1, kUp, 6},
    {"a plain step down", 5, {0, 100, 1}, 1, kDown, 4},
    {"beyond a largest value that is off the increment", 9, {0, 10, 3}, 1, kUp, 9},
    {"down from such a largest value", 10, {0, 10, 3}, 1, kDown, 6},
    {"up from such a largest value", 10, {0, 10, 3}, 1, kUp, 9},
    {"below the least value", 0, {0, 10, 3}, 1, kDown, 0},
    {"beyond the largest value", 10, {0, 10, 1}, 1, kUp, 10},
    {"a value off the increment, up", 7, {0, 30, 5}, 1, kUp, 10},
    {"a value off the increment, down", 7, {0, 30, 5}, 1, kDown, 0},
    {"counted from the least value", 4, {1, 100, 4}, 1, kUp, 5},
    {"counted from the least value, on it", 5, {1, 100, 4}, 1, kUp, 9},
    {"a value below the least", -50, {0, 10, 1}, 1, kUp, 0},
    {"a value beyond the largest", 500, {0, 10, 1}, 1, kDown, 10},
    {"an accelerated step", 8, {0, 1000, 2}, 4, kUp, 16},
    {"an accelerated step aligns to itself", 10, {0, 1000, 2}, 4, kUp, 16},
    {"an accelerated step that is clamped is lowered by itself", 96, {0, 100, 1}, 9, kUp, 99},
    {"a least value of 2147483648 counts from 0", 2147483649, {2147483648, kMost, 3}, 1, kUp, 2147483652},
    {"a least value of -2147483648 counts from itself", 0, {-2147483648, 2147483647, 3}, 1, kUp, 1},
    {"the least value of all counts from 0", 4, {kLeast, kMost, 3}, 1, kUp, 6},
    {"negative values are truncated toward 0, up", -4, {kLeast, kMost, 3}, 1, kUp, 0},
    {"negative values are truncated toward 0, down", -4, {kLeast, kMost, 3}, 1, kDown, -6},
    {"up from the largest value of all", kMost, {kLeast, kMost, 1}, 1, kUp, kMost},
    {"down from the least value of all", kLeast, {kLeast, kMost, 1}, 1, kDown, kLeast},
    {"a step that is wider than the range is lowered to the least value", 5, {0, 10, 1}, 16, kUp, 0},
    {"a step beyond 64 bits, up", 5, {kLeast, kMost, kMost}, 1000000, kUp, kLeast},
    {"a step beyond 64 bits, down", 5, {kLeast, kMost, kMost}, 1000000, kDown, kLeast},
    {"an increment of 0 counts as 1", 5, {0, 10, 0}, 1, kUp, 6},
    {"a negative increment counts as 1", 5, {0, 10, -7}, 1, kDown, 4},
    {"reversed bounds end at the largest value", 5, {10, 0, 1}, 1, kUp, 0},
    {"reversed bounds, the lowering goes up", 5, {10, 0, 4}, 1, kUp, 2},
    {"a range of one value", 7, {7, 7, 2}, 1, kUp, 7},
};

struct HoldRow {
  const char* name;
  int firstStep;
  int lastStep;
  std::int64_t expected;
};

constexpr HoldRow kHoldRows[] = {
    {"the first nine", 1, 9, 1}, {"the tenth to the fourteenth", 10, 14, 4}, {"the next five", 15, 19, 9},
    {"and so on", 20, 24, 16},   {"the last but one", 4995, 4999, 998001},   {"the fastest", 5000, 12000, 1000000},
};

} // namespace

TEST(StepInteger, RowsOfSteps_GiveTheValueExpected) {
  for (const StepRow& row : kStepRows) {
    EXPECT_EQ(StepInteger(row.value, row.range, row.increments, row.isUp), row.expected) << row.name;
  }
}

TEST(StepInteger, ReversedBoundsOfAllValues_StayWithin64Bits) {
  EXPECT_EQ(StepInteger(0, {kMost, kLeast, kMost}, 1000000, kUp), kMost);
}

TEST(StepAcceleration, TakeStep_WhileTheControlIsHeld_GrowsWithTheSquareOfTheFives) {
  StepAcceleration acceleration;
  int step = 0;

  for (const HoldRow& row : kHoldRows) {
    while (step < row.lastStep) {
      const std::int64_t increments = acceleration.TakeStep();
      ++step;

      if (step >= row.firstStep) {
        ASSERT_EQ(increments, row.expected) << row.name << ", step " << step;
      }
    }
  }
}

TEST(StepAcceleration, Reset_AfterManySteps_BeginsWithOneIncrementAgain) {
  StepAcceleration acceleration;
  for (int i = 0; i < 100; ++i) {
    (void)acceleration.TakeStep();
  }

  acceleration.Reset();

  EXPECT_EQ(acceleration.TakeStep(), 1);
}

} // namespace krgui
