#include "logic/frame/dialoglayout.h"

#include <gmock/gmock.h>

#include <ostream>

namespace krgui {

void PrintTo(const PixelRect& aRect, std::ostream* aStream) {
  *aStream << "(" << aRect.left << ", " << aRect.top << ", " << aRect.right << ", " << aRect.bottom << ")";
}

namespace {

using testing::ElementsAre;

constexpr PixelSize kNoLimit = {32768, 32768};
/// One pixel per unit: rectangles can be read as they stand.
constexpr DialogUnit kOneToOne = {1, 1};

struct UnitRow {
  const char* name;
  DialogFont font;
  UnitSize dialog;
  PixelSize maximum;
  DialogUnit expected;
};

constexpr UnitRow kUnitRows[] = {
    {"the font decides", {6, 16}, {100, 100}, kNoLimit, {1.5, 2}},
    {"the font decides, no whole unit", {7.5, 13}, {100, 100}, kNoLimit, {1.875, 1.625}},
    {"the maximum width decides", {8, 16}, {400, 100}, {608, 2000}, {1.52, 2}},
    {"the maximum height decides", {8, 16}, {100, 400}, {800, 600}, {2, 1.5}},
    {"both maxima decide", {8, 16}, {500, 400}, {800, 600}, {1.6, 1.5}},
    {"exactly the maximum", {8, 16}, {400, 300}, {800, 600}, {2, 2}},
    {"template without extent", {8, 16}, {0, 0}, {800, 600}, {2, 2}},
};

struct FollowRow {
  const char* name;
  std::uint8_t follow;
  PixelSize dialog;
  PixelRect expected;
};

/// A control at (40, 30) of 20 x 10 in a dialog of 100 x 80.
constexpr FollowRow kFollowRows[] = {
    {"stays", kStay, {150, 100}, {40, 30, 60, 40}},
    {"moves right", kMoveRight, {150, 100}, {90, 30, 110, 40}},
    {"moves down", kMoveDown, {150, 100}, {40, 50, 60, 60}},
    {"moves right and down", kMoveRight | kMoveDown, {150, 100}, {90, 50, 110, 60}},
    {"grows right", kGrowRight, {150, 100}, {40, 30, 110, 40}},
    {"grows down", kGrowDown, {150, 100}, {40, 30, 60, 60}},
    {"grows right, moves down", kGrowRight | kMoveDown, {150, 100}, {40, 50, 110, 60}},
    {"moves right, grows down", kMoveRight | kGrowDown, {150, 100}, {90, 30, 110, 60}},
    {"dialog as in the template", kMoveRight | kGrowDown, {100, 80}, {40, 30, 60, 40}},
    {"moves left in a narrower dialog", kMoveRight, {90, 80}, {30, 30, 50, 40}},
    {"shrinks in a smaller dialog", kGrowRight | kGrowDown, {95, 75}, {40, 30, 55, 35}},
    {"never shrinks below nothing", kGrowRight | kGrowDown, {10, 10}, {40, 30, 40, 30}},
};

LayoutControl Plain(const UnitRect& aRect, std::uint8_t aFollow = kStay) {
  return {aRect, aFollow, {}};
}

LayoutControl WithText(const UnitRect& aRect, int aTextWidth, int aTextHeight = 0, std::uint8_t aFollow = kStay) {
  return {aRect, aFollow, {aTextWidth, aTextHeight}};
}

} // namespace

TEST(ComputeDialogUnit, Rows_GiveTheUnitExpected) {
  for (const UnitRow& row : kUnitRows) {
    const DialogUnit unit = ComputeDialogUnit(row.font, row.dialog, row.maximum);

    EXPECT_DOUBLE_EQ(unit.horizontal, row.expected.horizontal) << row.name;
    EXPECT_DOUBLE_EQ(unit.vertical, row.expected.vertical) << row.name;
  }
}

TEST(ComputeDialogUnit, LargeFont_FitsTheTemplateExactlyIntoTheMaximum) {
  const UnitSize finder = {535, 365};
  const DialogUnit unit = ComputeDialogUnit({40, 80}, finder, {800, 600});

  const PixelSize size = DialogLayout(finder, unit, {}).GetTemplateSize();

  EXPECT_EQ(size, (PixelSize{800, 600}));
}

TEST(DialogLayout, TemplateSize_IsRoundedToPixels) {
  const DialogLayout layout({253, 330}, {1.85, 1.745}, {});

  EXPECT_EQ(layout.GetTemplateSize(), (PixelSize{468, 576}));
}

TEST(DialogLayout, NoWholeUnits_TouchingControlsStillTouch) {
  const DialogLayout layout({30, 20}, {1.5, 1.3}, {Plain({0, 0, 7, 5}), Plain({7, 0, 8, 5}), Plain({0, 5, 7, 5})});

  const std::vector<PixelRect> rects = layout.Arrange(layout.GetTemplateSize());

  EXPECT_THAT(rects, ElementsAre(PixelRect{0, 0, 11, 7}, PixelRect{11, 0, 23, 7}, PixelRect{0, 7, 11, 13}));
}

TEST(DialogLayout, FollowRows_GiveTheRectangleExpected) {
  for (const FollowRow& row : kFollowRows) {
    const DialogLayout layout({100, 80}, kOneToOne, {Plain({40, 30, 20, 10}, row.follow)});

    const std::vector<PixelRect> rects = layout.Arrange(row.dialog);

    EXPECT_THAT(rects, ElementsAre(row.expected)) << row.name;
  }
}

TEST(DialogLayout, ManyResizes_LeaveNoTrace) {
  const DialogLayout layout({100, 80}, {1.37, 1.71}, {Plain({40, 30, 20, 10}, kMoveRight | kGrowDown)});
  const std::vector<PixelRect> first = layout.Arrange({140, 140});

  for (int width = 0; width < 300; ++width) {
    layout.Arrange({width, 300 - width});
  }

  EXPECT_EQ(layout.Arrange({140, 140}), first);
}

TEST(DialogLayout, TextFits_ControlKeepsItsRectangle) {
  const DialogLayout layout({100, 80}, kOneToOne, {WithText({10, 10, 30, 10}, 30, 10)});

  EXPECT_THAT(layout.Arrange({100, 80}), ElementsAre(PixelRect{10, 10, 40, 20}));
}

TEST(DialogLayout, TextIsWiderAndNothingIsBeside_GrowsRightAsFarAsNeeded) {
  const DialogLayout layout({100, 80}, kOneToOne, {WithText({10, 10, 30, 10}, 55), Plain({50, 20, 20, 10})});

  EXPECT_THAT(layout.Arrange({100, 80}), ElementsAre(PixelRect{10, 10, 65, 20}, PixelRect{50, 20, 70, 30}));
}

TEST(DialogLayout, TextIsWiderThanTheSpaceUpToItsNeighbour_StopsJustBeforeIt) {
  const DialogLayout layout({100, 80}, kOneToOne,
                            {WithText({10, 10, 30, 10}, 80), Plain({70, 15, 20, 10}), Plain({50, 5, 20, 10})});

  EXPECT_EQ(layout.Arrange({100, 80})[0], (PixelRect{10, 10, 48, 20}));
}

TEST(DialogLayout, TextIsWiderThanTheDialog_StopsAtItsEdge) {
  const DialogLayout layout({100, 80}, kOneToOne, {WithText({10, 10, 30, 10}, 200)});

  EXPECT_THAT(layout.Arrange({100, 80}), ElementsAre(PixelRect{10, 10, 100, 20}));
}

TEST(DialogLayout, NeighbourMovesAway_TextUsesTheSpaceItLeaves) {
  const DialogLayout layout({100, 80}, kOneToOne,
                            {WithText({10, 10, 30, 10}, 80), Plain({45, 10, 20, 10}, kMoveRight)});

  EXPECT_EQ(layout.Arrange({120, 80})[0], (PixelRect{10, 10, 63, 20}));
}

TEST(DialogLayout, NeighbourTouches_TextDoesNotShrinkItsControl) {
  const DialogLayout layout({100, 80}, kOneToOne, {WithText({10, 10, 30, 10}, 80), Plain({40, 10, 20, 10})});

  EXPECT_EQ(layout.Arrange({100, 80})[0], (PixelRect{10, 10, 40, 20}));
}

TEST(DialogLayout, InsideAGroupBox_TextStopsBeforeTheBoxsFrame) {
  const DialogLayout layout({100, 80}, kOneToOne, {Plain({5, 5, 60, 40}), WithText({10, 10, 30, 10}, 80)});

  EXPECT_EQ(layout.Arrange({100, 80})[1], (PixelRect{10, 10, 63, 20}));
}

TEST(DialogLayout, GroupBoxTitle_IsNotHeldBackByWhatIsInside) {
  const DialogLayout layout({100, 80}, kOneToOne, {WithText({5, 5, 40, 40}, 70), Plain({10, 10, 30, 10})});

  EXPECT_EQ(layout.Arrange({100, 80})[0], (PixelRect{5, 5, 75, 45}));
}

TEST(DialogLayout, TextIsHigher_GrowsDownIntoFreeSpace) {
  const DialogLayout layout({100, 80}, kOneToOne, {WithText({10, 10, 30, 10}, 20, 15), Plain({10, 30, 30, 10})});

  EXPECT_EQ(layout.Arrange({100, 80})[0], (PixelRect{10, 10, 40, 25}));
}

TEST(DialogLayout, TextIsHigherThanTheSpaceBelow_GrowsUpForTheRest) {
  const DialogLayout layout({100, 80}, kOneToOne,
                            {Plain({10, 0, 30, 5}), WithText({10, 10, 30, 10}, 20, 15), Plain({10, 22, 30, 10})});

  EXPECT_EQ(layout.Arrange({100, 80})[1], (PixelRect{10, 7, 40, 22}));
}

TEST(DialogLayout, TextsAboveEachOther_DoNotOverlapAfterGrowing) {
  const DialogLayout layout({100, 80}, kOneToOne,
                            {WithText({10, 10, 30, 8}, 20, 14), WithText({10, 20, 30, 8}, 20, 14)});

  EXPECT_THAT(layout.Arrange({100, 80}), ElementsAre(PixelRect{10, 6, 40, 20}, PixelRect{10, 20, 40, 34}));
}

TEST(DialogLayout, LeastWidth_LeavesButtonsTheRoomOfTheirTexts) {
  LayoutControl left = WithText({10, 10, 30, 10}, 50);
  LayoutControl right = WithText({80, 10, 15, 10}, 15);
  right.follow = kMoveRight;
  left.isKeptWhole = right.isKeptWhole = true;
  const DialogLayout layout({100, 80}, kOneToOne, {left, right});

  const int least = layout.FindLeastWidth(60, 100);

  EXPECT_EQ(layout.Arrange({least, 80})[0].GetWidth(), 50);
  EXPECT_LT(layout.Arrange({least - 1, 80})[0].GetWidth(), 50);
}

TEST(DialogLayout, LeastWidth_LeavesNoButtonOverAnother) {
  LayoutControl left = Plain({10, 10, 30, 10});
  LayoutControl right = Plain({80, 10, 15, 10}, kMoveRight);
  left.isKeptWhole = right.isKeptWhole = true;
  const DialogLayout layout({100, 80}, kOneToOne, {left, right});

  EXPECT_EQ(layout.FindLeastWidth(20, 100), 60);
}

TEST(DialogLayout, LeastWidthWithRoomForAllButtons_IsThatAskedFor) {
  LayoutControl button = WithText({10, 10, 30, 10}, 50);
  const DialogLayout layout({100, 80}, kOneToOne, {button, Plain({50, 10, 20, 10})});
  EXPECT_EQ(layout.FindLeastWidth(20, 100), 20) << "only a button has to be whole";

  button.isKeptWhole = true;
  EXPECT_EQ(DialogLayout({100, 80}, kOneToOne, {button}).FindLeastWidth(70, 100), 70);
}

TEST(DialogLayout, LeastWidthWhereNoWidthIsEnough_LeavesWhatTheWidestDoes) {
  LayoutControl button = WithText({10, 10, 30, 10}, 200);
  button.isKeptWhole = true;

  EXPECT_EQ(DialogLayout({100, 80}, kOneToOne, {button}).FindLeastWidth(20, 100), 100);
}

TEST(DialogLayout, LeastWidthWhereButtonsOverlapInAny_IsThatAskedFor) {
  LayoutControl button = Plain({10, 10, 30, 10});
  button.isKeptWhole = true;

  EXPECT_EQ(DialogLayout({100, 80}, kOneToOne, {button, button}).FindLeastWidth(20, 100), 20);
}

} // namespace krgui
