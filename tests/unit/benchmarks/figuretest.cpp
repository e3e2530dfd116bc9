// The line of a figure, by which the figures of all benchmarks are read.

#include "figure.h"
#include "growth.h"

#include <gmock/gmock.h>

#include <limits>

namespace benchmarks {
namespace {

TEST(FigureLine, BesideAPeer_TellsItsValueAndTheRatio) {
  const Figure figure{"open", 30, "ms", Peer{"empty_dialog", 20}};

  EXPECT_EQ(FormatLine(figure), "figure=open value=30 unit=ms peer=empty_dialog peer_value=20 ratio=1.5");
}

TEST(FigureLine, WithAConstant_CallsItLimitAndNotPeer) {
  const Figure figure{"open", 30, "ms", {}, Limit{"prompt", 150}};

  EXPECT_EQ(FormatLine(figure), "figure=open value=30 unit=ms limit=prompt limit_value=150 limit_ratio=0.2");
}

TEST(FigureLine, WithBoth_HasThePeerFirst) {
  const Figure figure{"open", 30, "ms", Peer{"dialog", 60}, Limit{"prompt", 120}};

  EXPECT_EQ(FormatLine(figure), "figure=open value=30 unit=ms peer=dialog peer_value=60 ratio=0.5"
                                " limit=prompt limit_value=120 limit_ratio=0.25");
}

TEST(FigureLine, BesideNothingAtAll_HasNoRatio) {
  const Figure figure{"incomplete", 2, "frames", Peer{"bare", 0}};

  EXPECT_EQ(FormatLine(figure), "figure=incomplete value=2 unit=frames peer=bare peer_value=0");
}

TEST(FigureLine, Alone_HasNeitherPeerNorLimit) {
  EXPECT_EQ(FormatLine({"growth", 1.25, "times"}), "figure=growth value=1.25 unit=times");
}

TEST(FigureLine, LargeNumbers_AreWholeOnes) {
  EXPECT_EQ(FormatNumber(17437.6), "17438");
  EXPECT_EQ(FormatNumber(999.96), "1000");
  EXPECT_EQ(FormatNumber(0.012345), "0.01235");
}

TEST(FigureValue, NegativeOrNoNumber_WasNotMeasured) {
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  constexpr double kEndless = std::numeric_limits<double>::infinity();

  EXPECT_TRUE(IsMeasured({"a", 0, "ms", Peer{"b", 0}, Limit{"c", 0}}));
  EXPECT_FALSE(IsMeasured({"a", -1, "ms"}));
  EXPECT_FALSE(IsMeasured({"a", kNone, "ms"}));
  EXPECT_FALSE(IsMeasured({"a", 1, "ms", Peer{"b", kEndless}}));
  EXPECT_FALSE(IsMeasured({"a", 1, "ms", {}, Limit{"c", -1}}));
}

TEST(FigureDeathTest, WhatWasNotMeasured_EndsTheBenchmarkWithOne) {
  EXPECT_EXIT(PrintFigure({"rate", -1, "MB/s"}), testing::ExitedWithCode(1), "cannot be measured: rate has no value");
}

TEST(Growth, CostThatGrowsWithTheItems_IsOne) {
  EXPECT_DOUBLE_EQ(GetGrowth(1000, 5, 20000, 100), 1);
}

TEST(Growth, CostThatGrowsAsTheSquare_IsTheTimesThatThereAreMore) {
  EXPECT_DOUBLE_EQ(GetGrowth(10, 1, 40, 16), 4);
}

TEST(Growth, ThatNoItemCosts_WasNotMeasured) {
  EXPECT_FALSE(IsMeasured({"growth", GetGrowth(10, 0, 40, 16), "times"}));
}

} // namespace
} // namespace benchmarks
