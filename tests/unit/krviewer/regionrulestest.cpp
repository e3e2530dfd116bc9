#include "region/regionrules.h"

#include <gmock/gmock.h>

#include <random>

using namespace krviewer;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// A sensor of 1000 pixels: offsets of 0, 4, 8 …, lengths of 16, 24, 32 ….
RegionAxis MakeAxis(RegionSpan aPresent = {0, 1000}) {
  return {.present = aPresent,
          .offsetMin = 0,
          .offsetIncrement = 4,
          .lengthMin = 16,
          .lengthIncrement = 8,
          .extent = 1000,
          .isOffsetFixed = false,
          .isLengthFixed = false};
}

bool IsValid(const RegionAxis& aAxis, const RegionSpan& aSpan) {
  return aSpan.offset >= aAxis.offsetMin && (aSpan.offset - aAxis.offsetMin) % aAxis.offsetIncrement == 0 &&
         aSpan.length >= aAxis.lengthMin && (aSpan.length - aAxis.lengthMin) % aAxis.lengthIncrement == 0 &&
         aSpan.offset + aSpan.length <= aAxis.extent;
}

} // namespace

TEST(FitSpan, EdgesBetweenIncrements_GoToTheNearest) {
  EXPECT_EQ(FitSpan(MakeAxis(), 101.9, 199.0), (RegionSpan{100, 96}));
  EXPECT_EQ(FitSpan(MakeAxis(), 102.1, 205.0), (RegionSpan{104, 104}));
}

TEST(FitSpan, EdgesBeyondTheSensor_AreCut) {
  EXPECT_EQ(FitSpan(MakeAxis(), -500, 5000), (RegionSpan{0, 1000}));
  EXPECT_EQ(FitSpan(MakeAxis(), 1e30, 1e31), (RegionSpan{984, 16}));
  EXPECT_EQ(FitSpan(MakeAxis(), -1e31, -1e30), (RegionSpan{0, 16}));
}

TEST(FitSpan, EdgesThatMeet_GiveTheShortestLength) {
  EXPECT_EQ(FitSpan(MakeAxis(), 500, 500), (RegionSpan{500, 16}));
}

TEST(FitSpan, LimitsThatAreNotOnTheIncrements_AreNeverExceeded) {
  RegionAxis axis = MakeAxis({3, 21});
  axis.offsetMin = 3;
  axis.offsetIncrement = 7;
  axis.lengthMin = 5;
  axis.lengthIncrement = 11;
  axis.extent = 100;

  EXPECT_EQ(FitSpan(axis, 0, 1000), (RegionSpan{3, 93})); // 5 + 8 * 11
  EXPECT_EQ(FitSpan(axis, 1000, 1000), (RegionSpan{94, 5}));
}

TEST(FitSpan, AxisWithoutAnOffset_KeepsItsBegin) {
  RegionAxis axis = MakeAxis();
  axis.isOffsetFixed = true;

  EXPECT_EQ(FitSpan(axis, 300, 503), (RegionSpan{0, 504}));
  EXPECT_EQ(MoveSpan(axis, {0, 504}, 5), (RegionSpan{0, 504}));
  EXPECT_EQ(MoveSpanTo(axis, 504, 77), (RegionSpan{0, 504}));
}

TEST(FitSpan, AxisWhoseLengthIsFixed_MovesAlone) {
  RegionAxis axis = MakeAxis({100, 400});
  axis.isLengthFixed = true;

  EXPECT_EQ(FitSpan(axis, 300, 310), (RegionSpan{300, 400}));
  EXPECT_EQ(FitSpan(axis, 900, 910), (RegionSpan{600, 400}));
  EXPECT_EQ(StretchSpan(axis, {100, 400}, -3), (RegionSpan{100, 400}));
  EXPECT_EQ(GetFullSpan(axis), (RegionSpan{0, 400}));
}

TEST(MoveSpan, Steps_AreIncrementsAsFarAsThereIsRoom) {
  EXPECT_EQ(MoveSpan(MakeAxis(), {100, 400}, 3), (RegionSpan{112, 400}));
  EXPECT_EQ(MoveSpan(MakeAxis(), {100, 400}, -1000), (RegionSpan{0, 400}));
  EXPECT_EQ(MoveSpan(MakeAxis(), {100, 400}, INT64_MAX), (RegionSpan{600, 400}));
  EXPECT_EQ(MoveSpan(MakeAxis(), {0, 1000}, 1), (RegionSpan{0, 1000}));
}

TEST(MoveSpanTo, Place_IsTheNearestWhereTheLengthFits) {
  EXPECT_EQ(MoveSpanTo(MakeAxis(), 400, 333.3), (RegionSpan{332, 400}));
  EXPECT_EQ(MoveSpanTo(MakeAxis(), 400, 999), (RegionSpan{600, 400}));
  EXPECT_EQ(MoveSpanTo(MakeAxis(), 400, -1), (RegionSpan{0, 400}));
}

TEST(StretchSpan, Steps_AreIncrementsAsFarAsThereIsRoom) {
  EXPECT_EQ(StretchSpan(MakeAxis(), {100, 400}, 2), (RegionSpan{100, 416}));
  EXPECT_EQ(StretchSpan(MakeAxis(), {100, 400}, INT64_MIN), (RegionSpan{100, 16}));
  EXPECT_EQ(StretchSpan(MakeAxis(), {100, 400}, 1000), (RegionSpan{100, 896})); // 904 would be beyond 900.
}

TEST(StretchSpan, SpanThatIsNotOnTheIncrements_IsNotMadeLongerBySteppingBack) {
  // As a camera that rounds by rules of its own may have it.
  EXPECT_EQ(StretchSpan(MakeAxis(), {0, 1000}, 1), (RegionSpan{0, 1000}));
}

TEST(GetFullSpan, IsAllOfTheSensor) {
  EXPECT_EQ(GetFullSpan(MakeAxis({100, 400})), (RegionSpan{0, 1000}));
}

TEST(GetFullSpan, WithoutAnOffset_IsAllFromWhereItBegins) {
  RegionAxis axis = MakeAxis({40, 400});
  axis.isOffsetFixed = true;

  EXPECT_EQ(GetFullSpan(axis), (RegionSpan{40, 960}));
}

TEST(PlanSteps, SpanThatStays_NeedsNone) {
  EXPECT_THAT(PlanSteps({8, 16}, {8, 16}), IsEmpty());
}

TEST(PlanSteps, ShorterSpan_ShrinksBeforeItMoves) {
  EXPECT_THAT(PlanSteps({0, 1000}, {500, 400}), ElementsAre(RegionStep{false, 400}, RegionStep{true, 500}));
}

TEST(PlanSteps, LongerSpan_MovesBeforeItGrows) {
  EXPECT_THAT(PlanSteps({600, 400}, {0, 1000}), ElementsAre(RegionStep{true, 0}, RegionStep{false, 1000}));
  EXPECT_THAT(PlanSteps({0, 100}, {100, 400}), ElementsAre(RegionStep{true, 100}, RegionStep{false, 400}));
}

TEST(PlanSteps, BetweenAnyTwoSpans_StaysWithinTheSensor) {
  std::mt19937 random(11);
  const RegionAxis axis = MakeAxis();
  std::uniform_real_distribution<double> edge(0, 1000);
  const auto draw = [&] {
    const double first = edge(random);
    const double second = edge(random);
    return FitSpan(axis, std::min(first, second), std::max(first, second));
  };
  for (int i = 0; i < 5000; ++i) {
    const RegionSpan from = draw();
    const RegionSpan to = draw();
    ASSERT_TRUE(IsValid(axis, to)) << to.offset << " " << to.length;

    RegionSpan span = from;
    for (const RegionStep& step : PlanSteps(from, to)) {
      (step.isOffset ? span.offset : span.length) = step.value;
      ASSERT_TRUE(IsValid(axis, span)) << span.offset << " " << span.length;
    }

    ASSERT_EQ(span, to);
  }
}
