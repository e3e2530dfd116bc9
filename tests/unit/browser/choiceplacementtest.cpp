// How much room the combo box editor's list is offered, by tables.

#include "logic/browser/choiceplacement.h"

#include "logic/browser/rowgeometry.h"

#include <gtest/gtest.h>

namespace krgui {

namespace {

constexpr PixelRect kDesktop{0, 0, 1000, 800};

TEST(ChoicePlacement, Width_IsTheLargerOfComboBoxAndWidestItemOnTheScreen) {
  struct Row {
    const char* name;
    PixelRect comboBox;
    int itemCount;
    int widestItem;
    bool isRightToLeft;
    int left;
    int right;
  };
  constexpr Row kRows[] = {
      {"narrow items", {100, 100, 300, 120}, 3, 50, false, 100, 300},
      {"a wide item", {100, 100, 300, 120}, 3, 260, false, 100, 360},
      {"a wide item from right to left", {100, 100, 300, 120}, 3, 260, true, 40, 300},
      {"room for the scroll bar", {100, 100, 300, 120}, 1000, 260, false, 100, 376},
      {"the screen's right edge", {700, 100, 900, 120}, 3, 500, false, 500, 1000},
      {"the screen's left edge", {100, 100, 300, 120}, 3, 500, true, 0, 500},
      {"wider than the screen", {100, 100, 300, 120}, 3, 5000, false, 0, 1000},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.name);
    const PixelRect offered =
        OfferChoiceList({row.comboBox, kDesktop, row.itemCount, 16, row.widestItem, 16, row.isRightToLeft});

    EXPECT_EQ(offered.left, row.left);
    EXPECT_EQ(offered.right, row.right);
    EXPECT_EQ(offered.top, row.comboBox.top);
  }
}

TEST(ChoicePlacement, Height_IsTheListsWhereTheScreenHasIt) {
  struct Row {
    const char* name;
    int top;
    int itemCount;
    int height;
  };
  constexpr Row kRows[] = {
      {"three items", 100, 3, 10 + 4 * 18},
      {"as many items as are shown", 100, 24, 10 + 25 * 18},
      {"more items than are shown", 100, 1000, 10 + 25 * 18},
      {"little room below, more above", 600, 1000, 10 + 25 * 18},
      {"too little room on either side", 390, 1000, 800 - 410 - 4},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.name);
    const PixelRect offered =
        OfferChoiceList({{100, row.top, 300, row.top + 20}, kDesktop, row.itemCount, 16, 50, 16, false});

    EXPECT_EQ(offered.GetHeight(), row.height);
  }
}

TEST(ChoicePlacement, TinyScreen_StillHasRoomForOneItem) {
  const PixelRect offered = OfferChoiceList({{0, 0, 50, 20}, {0, 0, 50, 25}, 1000, 16, 10, 16, false});

  EXPECT_EQ(offered.GetHeight(), 16);
}

} // namespace

} // namespace krgui
