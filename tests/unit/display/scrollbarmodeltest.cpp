#include "logic/display/scrollbarmodel.h"

#include <gmock/gmock.h>

#include <limits>

using namespace krgui;

TEST(ScrollBarModel, RangeAndPage_GiveAMaximumThatIncludesThePage) {
  ScrollBarModel bar;

  bar.SetRange(100, 25, 40);

  EXPECT_EQ(bar.GetMinimum(), 0);
  EXPECT_EQ(bar.GetMaximum(), 125);
  EXPECT_EQ(bar.GetPage(), 25);
  EXPECT_EQ(bar.GetPosition(), 40);
}

TEST(ScrollBarModel, Positions_AreCutToTheRange) {
  ScrollBarModel bar;
  bar.SetRange(100, 25, 400);
  EXPECT_EQ(bar.GetPosition(), 125);

  bar.SetPosition(-1);
  EXPECT_EQ(bar.GetPosition(), 0);
  bar.SetPosition(126);
  EXPECT_EQ(bar.GetPosition(), 125);
}

TEST(ScrollBarModel, Contains_IncludesBothEnds) {
  ScrollBarModel bar;
  bar.SetRange(100, 25, 0);

  EXPECT_TRUE(bar.Contains(0));
  EXPECT_TRUE(bar.Contains(125));
  EXPECT_FALSE(bar.Contains(-1));
  EXPECT_FALSE(bar.Contains(126));
}

TEST(ScrollBarModel, WhatDoesNotFitInto32Bits_IsCut) {
  constexpr std::int32_t kGreatest = std::numeric_limits<std::int32_t>::max();
  ScrollBarModel bar;

  bar.SetRange(kGreatest, 25, kGreatest);
  EXPECT_EQ(bar.GetMaximum(), kGreatest);
  EXPECT_EQ(bar.GetPosition(), kGreatest);
  bar.SetRange(-3, -2, 0);
  EXPECT_EQ(bar.GetMaximum(), 0);
  EXPECT_EQ(bar.GetPage(), 0);
}
