// What becomes of scroll positions and bars from one update of the view geometry to the next.

#include "logic/display/viewgeometry.h"

#include "onetooneview.h"

#include <gmock/gmock.h>

#include <limits>

using namespace krgui;

namespace {

constexpr std::int32_t kBar = ViewGeometry::kBarThickness;

} // namespace

TEST(ViewGeometry_Update, AnotherZoom_KeepsTheRelativePositions) {
  ViewGeometry view = MakeOneToOne(320, 240, 640, 480);
  view.Scroll(ViewAxis::Horizontal, ScrollCode::ThumbTrack, 69); // 69 / 338 * 978 = 199.65, of which 199 is taken.
  view.Scroll(ViewAxis::Vertical, ScrollCode::ThumbTrack, 40);   // 40 / 258 * 738 = 114.42, rounded to 114.
  view.ZoomIn(2);

  view.Update(640, 480);

  EXPECT_EQ(view.GetScrollPosition(ViewAxis::Horizontal), 199);
  EXPECT_EQ(view.GetScrollPosition(ViewAxis::Vertical), 114);
  EXPECT_EQ(view.GetBar(ViewAxis::Horizontal).GetPosition(), 199);
  EXPECT_EQ(view.GetBar(ViewAxis::Vertical).GetPosition(), 114);
}

TEST(ViewGeometry_Update, BarThatWasHidden_IsCentredWhenItIsNeededAgain) {
  ViewGeometry view = MakeOneToOne(320, 240, 640, 480);
  view.Scroll(ViewAxis::Horizontal, ScrollCode::Least, 0);
  view.Scroll(ViewAxis::Vertical, ScrollCode::Least, 0);
  view.ZoomFit();
  view.Update(640, 480);
  view.ZoomOneToOne();

  view.Update(640, 480);

  EXPECT_EQ(view.GetScrollPosition(ViewAxis::Horizontal), 169);
  EXPECT_EQ(view.GetScrollPosition(ViewAxis::Vertical), 129);
}

TEST(ViewGeometry_Update, BarThatTheOtherBarMadeNecessary_IsNotCentredAgain) {
  ViewGeometry view = MakeOneToOne(320, 240, 310, 400);
  view.Scroll(ViewAxis::Horizontal, ScrollCode::Most, 0);
  view.MarkDirty();

  view.Update(310, 400);

  EXPECT_EQ(view.GetScrollPosition(ViewAxis::Horizontal), 8);
}

TEST(ViewGeometry_Update, RangeOfNothing_IsCentredAnewByTheNextRange) {
  ViewGeometry view;
  view.SetClient(321, 100, kBar);
  view.ZoomIn(1.001);
  view.Update(321, 10); // 321.321 across, which counts as 321: no bar yet.
  view.ZoomOut(1.001);
  view.ZoomIn(321.6 / 321);

  view.Update(321, 10); // 321.6 counts as 322: a bar whose range is 0.
  EXPECT_EQ(view.GetBar(ViewAxis::Horizontal).GetMaximum(), 80);
  EXPECT_EQ(view.GetScrollPosition(ViewAxis::Horizontal), 0);
  view.ZoomIn(2);
  view.Update(321, 10);

  EXPECT_EQ(view.GetScrollPosition(ViewAxis::Horizontal), 161); // Half of the integer part of 643.2 - 321.
}

TEST(ViewGeometry_Update, RangeBeyond32Bits_EndsWhereThePageStillFits) {
  constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
  ViewGeometry view;
  view.SetClient(1018, 1018, kBar);
  view.ZoomIn(1e9);
  view.Update(65535, 65535);
  for (const ViewAxis axis : {ViewAxis::Horizontal, ViewAxis::Vertical}) {
    EXPECT_EQ(view.GetBar(axis).GetMaximum(), kMost);
    EXPECT_EQ(view.GetBar(axis).GetPage(), 250);
    EXPECT_EQ(view.GetScrollPosition(axis), (kMost - 250) / 2);

    view.Scroll(axis, ScrollCode::Most, 0);

    EXPECT_EQ(view.GetScrollPosition(axis), kMost - 250);
  }
}

TEST(ViewGeometry_Update, SourceOutsideTheImage_IsCorrectedWithWarnings) {
  struct Row {
    const char* name;
    ViewAxis axis;
    int thumb;
    const char* warning;
    PixelRect source;
  };
  // 640 x 480 one to one in 320 x 240: ranges of 338 and 258, views of 302 and 222.
  for (const Row& row : {
           Row{"left", ViewAxis::Horizontal, -10, "Coordinates out of bounds left=-9", {0, 129, 292, 351}},
           Row{"right",
               ViewAxis::Horizontal,
               350,
               "Coordinates out of bounds right=652 mBufferWidth=640",
               {350, 129, 640, 351}},
           Row{"top", ViewAxis::Vertical, 270, "Coordinates out of bounds top=-11", {169, 0, 471, 210}},
           Row{"bottom",
               ViewAxis::Vertical,
               -10,
               "Coordinates out of bounds bottom=490 mBufferHeight=480",
               {169, 268, 471, 480}},
       }) {
    SCOPED_TRACE(row.name);
    ViewGeometry view = MakeOneToOne(320, 240, 640, 480);
    view.Scroll(row.axis, ScrollCode::ThumbPosition, row.thumb);
    const KrLogCapture log;

    view.Update(640, 480);

    EXPECT_THAT(CollectWarnings(log), testing::ElementsAre(row.warning));
    EXPECT_EQ(view.GetArea().sourceRect, row.source);
  }
}

TEST(ViewGeometry_Update, ClientAreaSmallerThanItsBars_ShowsNothingAndWarns) {
  const KrLogCapture log;

  const ViewGeometry view = MakeOneToOne(10, 10, 100, 100);

  EXPECT_THAT(CollectWarnings(log),
              testing::ElementsAre("Invalid rect: left=54, right=46", "Invalid rect. top=54 bottom=46"));
  EXPECT_EQ(view.GetArea().sourceRect, (PixelRect{0, 0, 100, 100}));
  EXPECT_TRUE(view.GetArea().GetCopyRect().IsEmpty());
}

TEST(ViewGeometry_CentreOn, Point_ComesIntoTheMiddleOfTheClientArea) {
  ViewGeometry view = MakeOneToOne(321, 241, 640, 480);
  const std::int32_t across = view.GetBar(ViewAxis::Horizontal).GetPosition();
  const std::int32_t down = view.GetBar(ViewAxis::Vertical).GetPosition();

  view.CentreOn({100, 200});

  EXPECT_EQ(view.GetScrollPosition(ViewAxis::Horizontal), 100 - 160 + across);
  EXPECT_EQ(view.GetScrollPosition(ViewAxis::Vertical), 200 - 120 + down);
  EXPECT_EQ(view.GetBar(ViewAxis::Horizontal).GetPosition(), 100 - 160 + across);
  EXPECT_EQ(view.GetBar(ViewAxis::Vertical).GetPosition(), 200 - 120 + down);
}

TEST(ViewGeometry_CentreOn, PointNearTheEdge_IsStoredAsItIsWhileTheBarStops) {
  ViewGeometry view = MakeOneToOne(320, 240, 640, 480);
  view.Scroll(ViewAxis::Horizontal, ScrollCode::Least, 0);

  view.CentreOn({10, 120});

  EXPECT_EQ(view.GetScrollPosition(ViewAxis::Horizontal), -150);
  EXPECT_EQ(view.GetBar(ViewAxis::Horizontal).GetPosition(), 0);
}

TEST(ViewGeometry_CentreOn, Point_KeepsItsRelativePositionAtTheNextZoom) {
  ViewGeometry view = MakeOneToOne(320, 240, 640, 480);
  view.CentreOn({100, 200}); // To 109 of 338 and to 209 of 258.
  view.ZoomIn(2);

  view.Update(640, 480);

  EXPECT_EQ(view.GetScrollPosition(ViewAxis::Horizontal), 315); // 109 / 338 * 978 = 315.4.
  EXPECT_EQ(view.GetScrollPosition(ViewAxis::Vertical), 598);   // 209 / 258 * 738 = 597.8, rounded.
}

TEST(ViewGeometry_CentreOn, BeforeAnyRange_IsForgottenByTheFirst) {
  ViewGeometry view;
  view.SetClient(320, 240, kBar);
  view.CentreOn({10, 10});
  view.ZoomOneToOne();

  view.Update(640, 480);

  EXPECT_EQ(view.GetScrollPosition(ViewAxis::Horizontal), 169);
  EXPECT_EQ(view.GetScrollPosition(ViewAxis::Vertical), 129);
}

TEST(ViewGeometry_SetBarPosition, InsideTheRange_MovesTheBarAlone) {
  ViewGeometry view = MakeOneToOne(320, 240, 640, 480);

  EXPECT_TRUE(view.SetBarPosition(ViewAxis::Horizontal, 338 + 75));

  EXPECT_EQ(view.GetBar(ViewAxis::Horizontal).GetPosition(), 338 + 75);
  EXPECT_EQ(view.GetScrollPosition(ViewAxis::Horizontal), 169);
  EXPECT_EQ(view.GetBar(ViewAxis::Vertical).GetPosition(), 129);
  view.Update(640, 480);
  EXPECT_EQ(view.GetArea().sourceRect, (PixelRect{169, 129, 471, 351}));
}

TEST(ViewGeometry_SetBarPosition, InsideTheRange_IsForgottenByTheNextZoom) {
  ViewGeometry view = MakeOneToOne(320, 240, 640, 480);
  ASSERT_TRUE(view.SetBarPosition(ViewAxis::Horizontal, 300));
  ASSERT_TRUE(view.SetBarPosition(ViewAxis::Vertical, 20));
  view.ZoomIn(2);

  view.Update(640, 480);

  // Still half of the ranges, of 978 and 738.
  EXPECT_EQ(view.GetScrollPosition(ViewAxis::Horizontal), 489);
  EXPECT_EQ(view.GetBar(ViewAxis::Horizontal).GetPosition(), 489);
  EXPECT_EQ(view.GetScrollPosition(ViewAxis::Vertical), 369);
  EXPECT_EQ(view.GetBar(ViewAxis::Vertical).GetPosition(), 369);
}

TEST(ViewGeometry_SetBarPosition, OutsideTheRange_ChangesNothing) {
  ViewGeometry view = MakeOneToOne(320, 240, 640, 480);

  EXPECT_FALSE(view.SetBarPosition(ViewAxis::Vertical, 258 + 55 + 1));
  EXPECT_FALSE(view.SetBarPosition(ViewAxis::Vertical, -1));

  EXPECT_EQ(view.GetBar(ViewAxis::Vertical).GetPosition(), 129);
}
