#include "logic/frame/dropdownplacement.h"

#include <gtest/gtest.h>

namespace krgui {

namespace {

/// A combo box at (100, 200), 20 high, whose list is offered 150 by 90 pixels; items of 18 pixels on a screen of
/// 1000 by 800.
DropDownRequest MakeRequest(int aItemCount) {
  return {{100, 200, 250, 290}, 20, 18, aItemCount, {0, 0, 1000, 800}};
}

TEST(PlaceDropDown, FewItems_OpensBelowAsHighAsTheyAreAndTheFrame) {
  const DropDownPlacement placement = PlaceDropDown(MakeRequest(3));

  EXPECT_EQ(placement.rect, (PixelRect{100, 220, 250, 220 + 3 * 18 + 4}));
  EXPECT_FALSE(placement.hasScrollBar);
}

TEST(PlaceDropDown, ItemsThatJustFit_NeedNoScrollBar) {
  const DropDownPlacement placement = PlaceDropDown(MakeRequest(5));

  EXPECT_EQ(placement.rect.GetHeight(), 5 * 18 + 4);
  EXPECT_FALSE(placement.hasScrollBar);
}

TEST(PlaceDropDown, MoreItemsThanFit_ShowsWholeItemsAndAScrollBar) {
  DropDownRequest request = MakeRequest(6);
  request.offered.bottom = request.offered.top + 100;

  const DropDownPlacement placement = PlaceDropDown(request);

  EXPECT_EQ(placement.rect.GetHeight(), 5 * 18 + 4) << "100 pixels hold five items of 18";
  EXPECT_TRUE(placement.hasScrollBar);
}

TEST(PlaceDropDown, RoomForNoItem_ShowsOneAllTheSame) {
  DropDownRequest request = MakeRequest(6);
  request.offered.bottom = request.offered.top + 10;

  const DropDownPlacement placement = PlaceDropDown(request);

  EXPECT_EQ(placement.rect.GetHeight(), 18 + 4);
  EXPECT_TRUE(placement.hasScrollBar);
}

TEST(PlaceDropDown, NoItems_IsTheFrameAlone) {
  const DropDownPlacement placement = PlaceDropDown(MakeRequest(0));

  EXPECT_EQ(placement.rect, (PixelRect{100, 220, 250, 224}));
  EXPECT_FALSE(placement.hasScrollBar);
}

TEST(PlaceDropDown, MillionsOfItems_StaysWithinTheOffer) {
  const DropDownPlacement placement = PlaceDropDown(MakeRequest(2'000'000'000));

  EXPECT_EQ(placement.rect.GetHeight(), 5 * 18 + 4);
}

TEST(PlaceDropDown, NearTheBottom_OpensAboveTheComboBox) {
  DropDownRequest request = MakeRequest(3);
  request.offered = {100, 750, 250, 840};

  const DropDownPlacement placement = PlaceDropDown(request);

  EXPECT_EQ(placement.rect, (PixelRect{100, 750 - 58, 250, 750}));
}

TEST(PlaceDropDown, EndingOnePixelAboveTheBottom_StillOpensBelow) {
  DropDownRequest request = MakeRequest(3);
  request.offered = {100, 800 - 1 - 58 - 20, 250, 900};

  EXPECT_EQ(PlaceDropDown(request).rect.bottom, 799);
}

TEST(PlaceDropDown, EndingAtTheBottom_OpensAbove) {
  DropDownRequest request = MakeRequest(3);
  request.offered = {100, 800 - 58 - 20, 250, 900};

  EXPECT_EQ(PlaceDropDown(request).rect.bottom, 800 - 58 - 20);
}

TEST(PlaceDropDown, RoomNeitherBelowNorAbove_OpensAboveAllTheSame) {
  DropDownRequest request = MakeRequest(3);
  request.desktop = {0, 0, 1000, 60};
  request.offered = {100, 20, 250, 110};

  EXPECT_EQ(PlaceDropDown(request).rect, (PixelRect{100, 20 - 58, 250, 20})) << "and reaches out of the screen";
}

TEST(PlaceDropDown, ScreenThatDoesNotBeginAtZero_CountsFromItsEdges) {
  DropDownRequest request = MakeRequest(3);
  request.desktop = {-1280, -200, 0, 300};
  request.offered = {-1000, 100, -850, 190};

  EXPECT_EQ(PlaceDropDown(request).rect.top, 120);

  request.offered = {-1000, 250, -850, 340};

  EXPECT_EQ(PlaceDropDown(request).rect.bottom, 250);
}

} // namespace

} // namespace krgui
