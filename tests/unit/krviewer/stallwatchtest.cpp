#include "window/stallwatch.h"

#include <gtest/gtest.h>

using krviewer::StallWatch;

namespace {

constexpr std::uint64_t kBegin = 5000;
constexpr std::uint64_t kPatience = StallWatch::kPatienceMs;

} // namespace

TEST(StallWatch, ProgressThatStandsStill_IsToldAfterAWhile) {
  StallWatch watch;
  watch.Look(7, kBegin);

  watch.Look(7, kBegin + kPatience - 1);
  EXPECT_EQ(watch.GetStalledMs(), 0U);

  watch.Look(7, kBegin + kPatience);
  EXPECT_EQ(watch.GetStalledMs(), kPatience);
}

TEST(StallWatch, ProgressThatGoesOn_CountsAnew) {
  StallWatch watch;
  watch.Look(7, kBegin);
  watch.Look(7, kBegin + kPatience);

  watch.Look(8, kBegin + kPatience + 1);
  EXPECT_EQ(watch.GetStalledMs(), 0U);

  watch.Look(8, kBegin + 2 * kPatience + 1);
  EXPECT_EQ(watch.GetStalledMs(), kPatience);
}

TEST(StallWatch, WhatIsNotAtWork_DoesNotStandStill) {
  StallWatch watch;
  watch.Look(std::nullopt, kBegin);

  watch.Look(std::nullopt, kBegin + 2 * kPatience);
  EXPECT_EQ(watch.GetStalledMs(), 0U);

  watch.Look(0, kBegin + 3 * kPatience);
  EXPECT_EQ(watch.GetStalledMs(), 0U);
}
