#include "growth.h"

#include <gtest/gtest.h>

#include <initializer_list>

namespace {

FigureSeries MakeSeries(std::initializer_list<double> aValues) {
  FigureSeries series;
  for (const double value : aValues)
    series.Add(value);
  return series;
}

/// Ninety samples of a figure that gets so much more with each.
FigureSeries MakeRamp(double aStep) {
  FigureSeries series;
  for (int sample = 0; sample < 90; ++sample)
    series.Add(100 + aStep * sample);
  return series;
}

} // namespace

TEST(Growth, FigureThatStays_IsFlat) {
  EXPECT_TRUE(MakeRamp(0).Judge(0).isFlat);
}

TEST(Growth, FigureThatFalls_IsFlat) {
  EXPECT_TRUE(MakeRamp(-1).Judge(0).isFlat);
}

TEST(Growth, FigureThatRisesInTheWarmUpAlone_IsFlat) {
  EXPECT_TRUE(MakeSeries({1, 5, 9, 9, 9, 9, 9, 9, 9}).Judge(0).isFlat);
}

TEST(Growth, FigureThatRisesBitByBit_IsNotFlat) {
  const FigureSeries::Verdict verdict = MakeRamp(0.1).Judge(2.9);

  EXPECT_FALSE(verdict.isFlat);
  EXPECT_DOUBLE_EQ(verdict.last - verdict.middle, 3.0);
}

TEST(Growth, FigureThatRisesAsMuchAsIsAllowed_IsFlat) {
  EXPECT_TRUE(MakeRamp(0.125).Judge(3.75).isFlat);
}

TEST(Growth, FigureThatRoseOnceAfterTheMiddle_IsNotFlat) {
  EXPECT_FALSE(MakeSeries({4, 4, 4, 4, 4, 4, 5, 5, 5}).Judge(0).isFlat);
}

TEST(Growth, PeakOfAMoment_IsNoGrowth) {
  EXPECT_TRUE(MakeSeries({4, 4, 4, 4, 4, 4, 4, 90, 4}).Judge(0).isFlat);
}

TEST(Growth, HollowOfAMoment_HidesNoGrowth) {
  EXPECT_FALSE(MakeSeries({4, 4, 4, 4, 4, 4, 6, 1, 6}).Judge(0).isFlat);
}

TEST(Growth, TooFewSamples_AreNotCalledFlat) {
  EXPECT_FALSE(MakeSeries({4, 4, 4, 4, 4}).Judge(0).isFlat);
  EXPECT_TRUE(MakeSeries({4, 4, 4, 4, 4, 4}).Judge(0).isFlat);
}
