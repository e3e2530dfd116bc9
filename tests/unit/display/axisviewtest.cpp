#include "logic/display/axisview.h"

#include <gmock/gmock.h>

using namespace krgui;

namespace {

/// An axis of 400 pixels in a view of aView: a range of 400 - aView, a page of a quarter of the view.
AxisView MakeAxis(ViewAxis aAxis, std::int32_t aView) {
  AxisView axis(aAxis);
  axis.Update({aView, aView, 400, 1.0}, true);
  return axis;
}

struct ScrollRow {
  const char* name;
  std::int32_t view;
  std::int32_t from; ///< Where the bar is.
  ScrollCode code;
  std::int32_t thumb;
  std::int32_t stored, shown;
};

constexpr ScrollRow kScrolls[] = {
    {"a line less", 300, 50, ScrollCode::LineLess, 7, 49, 49},
    {"a line less than the least", 300, 0, ScrollCode::LineLess, 7, 0, 0},
    {"a line more", 300, 50, ScrollCode::LineMore, 7, 51, 51},
    {"a line more than the range", 300, 100, ScrollCode::LineMore, 7, 100, 100},
    {"a line more from inside the page", 300, 160, ScrollCode::LineMore, 7, 160, 160},
    {"a line less from inside the page", 300, 160, ScrollCode::LineLess, 7, 159, 159},
    {"a page less", 300, 80, ScrollCode::PageLess, 7, 5, 5},
    {"a page less than the least, which is stored as it is", 300, 50, ScrollCode::PageLess, 7, -25, 0},
    {"a page more", 300, 10, ScrollCode::PageMore, 7, 85, 85},
    {"a page more than the range", 300, 50, ScrollCode::PageMore, 7, 100, 100},
    {"a page more from inside the page", 300, 160, ScrollCode::PageMore, 7, 100, 100},
    {"the thumb put somewhere", 300, 50, ScrollCode::ThumbPosition, 33, 33, 33},
    {"the thumb on its way", 300, 50, ScrollCode::ThumbTrack, 34, 34, 34},
    {"the thumb inside the page", 300, 50, ScrollCode::ThumbTrack, 175, 175, 175},
    {"the thumb outside, which is stored as it is", 300, 50, ScrollCode::ThumbTrack, 500, 500, 175},
    {"to the least", 300, 50, ScrollCode::Least, 7, 0, 0},
    {"to the most", 300, 50, ScrollCode::Most, 7, 100, 100},
    {"the end of scrolling, which is no part of the bar", 300, 60, static_cast<ScrollCode>(8), 7, 60, 60},
};

} // namespace

TEST(AxisView_Scroll, EachPartOfTheBar_MovesFromWhereTheBarIs) {
  for (const ViewAxis side : {ViewAxis::Horizontal, ViewAxis::Vertical})
    for (const ScrollRow& row : kScrolls) {
      SCOPED_TRACE(row.name);
      AxisView axis = MakeAxis(side, row.view);
      ASSERT_TRUE(axis.SetBarPosition(row.from));

      axis.Scroll(row.code, row.thumb);

      EXPECT_EQ(axis.GetPosition(), row.stored);
      EXPECT_EQ(axis.GetBar().GetPosition(), row.shown);
    }
}

TEST(AxisView_Scroll, Position_IsKeptRelativeToTheRange) {
  for (const ViewAxis side : {ViewAxis::Horizontal, ViewAxis::Vertical}) {
    AxisView axis = MakeAxis(side, 300);
    axis.Scroll(ScrollCode::ThumbTrack, 25);

    axis.Update({300, 300, 400, 2.0}, true);

    EXPECT_EQ(axis.GetPosition(), 125); // A quarter of 500.
  }
}

TEST(AxisView_Scroll, WithoutARange_ChangesNothing) {
  AxisView axis(ViewAxis::Horizontal);

  axis.Scroll(ScrollCode::ThumbTrack, 25);

  EXPECT_EQ(axis.GetPosition(), AxisView::kNoPosition);
  EXPECT_EQ(axis.GetBar().GetPosition(), 0);
}

TEST(AxisView_Update, Positions_GoFromLeftToRightAndFromBottomToTop) {
  struct Row {
    const char* name;
    ViewAxis axis;
    ScrollCode code;
    std::int32_t begin, end;
  };
  for (const Row& row : {Row{"left end", ViewAxis::Horizontal, ScrollCode::Least, 0, 300},
                         Row{"right end", ViewAxis::Horizontal, ScrollCode::Most, 100, 400},
                         Row{"upper end", ViewAxis::Vertical, ScrollCode::Least, 100, 400},
                         Row{"lower end", ViewAxis::Vertical, ScrollCode::Most, 0, 300}}) {
    SCOPED_TRACE(row.name);
    AxisView axis = MakeAxis(row.axis, 300);
    axis.Scroll(row.code, 0);

    const AxisView::Layout layout = axis.Update({300, 300, 400, 1.0}, false);

    EXPECT_EQ(layout.source.begin, row.begin);
    EXPECT_EQ(layout.source.end, row.end);
    EXPECT_EQ(layout.destination.begin, 0);
    EXPECT_EQ(layout.destination.end, 300);
    EXPECT_FALSE(layout.isBarHidden);
    EXPECT_FALSE(layout.isBarPlaced);
  }
}

TEST(AxisView_Update, OddRanges_AreHalvedTowardsTheEndOnTheVerticalAxisAlone) {
  AxisView across = MakeAxis(ViewAxis::Horizontal, 299);
  AxisView down = MakeAxis(ViewAxis::Vertical, 299);

  const AxisView::Layout x = across.Update({299, 299, 400, 1.0}, false); // 50.5 - 0 across from a position of 50,
  const AxisView::Layout y = down.Update({299, 299, 400, 1.0}, false);   // 50.5 + 1 down.

  EXPECT_EQ(across.GetPosition(), 50);
  EXPECT_EQ(down.GetPosition(), 50);
  EXPECT_EQ(x.source.begin, 51);
  EXPECT_EQ(x.source.end, 350);
  EXPECT_EQ(y.source.begin, 52);
  EXPECT_EQ(y.source.end, 351);
}
