// What the turns of a benchmark come to.

#include "statistics.h"

#include <gtest/gtest.h>

#include <cmath>

namespace benchmarks {
namespace {

TEST(Median, OfAnOddCount_IsTheMiddleOne) {
  EXPECT_DOUBLE_EQ(GetMedian({9, 1, 5}), 5);
}

TEST(Median, OfAnEvenCount_IsBetweenTheTwoInTheMiddle) {
  EXPECT_DOUBLE_EQ(GetMedian({8, 1, 2, 4}), 3);
}

TEST(Median, OfAMember_IsThatOfItAlone) {
  struct Turn {
    double a;
    double b;
  };

  EXPECT_DOUBLE_EQ(GetMedian<Turn>({{1, 30}, {3, 10}, {2, 20}}, &Turn::b), 20);
}

TEST(Median, OfNothing_IsNoNumber) {
  EXPECT_TRUE(std::isnan(GetMedian({})));
}

TEST(Quantile, OfAll_IsTheWorst) {
  EXPECT_DOUBLE_EQ(GetQuantile({3, 7, 5}, 1), 7);
}

TEST(Quantile, OfNone_IsTheBest) {
  EXPECT_DOUBLE_EQ(GetQuantile({3, 7, 5}, 0), 3);
}

TEST(Quantile, BetweenTwoValues_IsAsFarBetweenThemAsTheShare) {
  EXPECT_DOUBLE_EQ(GetQuantile({0, 100}, 0.95), 95);
}

} // namespace
} // namespace benchmarks
