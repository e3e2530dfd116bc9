#include "logic/browser/bandlayout.h"

#include "gridrectprinting.h"

#include <gmock/gmock.h>

namespace krgui {

namespace {

using testing::ElementsAre;

/// A band from 10 on, 20 high.
GridRect MakeBand(int aWidth) {
  return {10, 100, 10 + aWidth, 120};
}

/// A button of 20, a field of 50 that takes the rest and can go down to 30, a label of 40 that can go away.
constexpr BandItem kItems[] = {{20, 20, 20, 0}, {50, 30, 10, 5, true}, {40, 0, 30, 5}};

} // namespace

TEST(BandLayout, RoomAsWanted_GivesEachWhatItWantsInTheMiddleOfTheBand) {
  EXPECT_THAT(LayOutBand(MakeBand(120), kItems),
              ElementsAre(GridRect{10, 100, 30, 120}, GridRect{35, 105, 85, 115}, GridRect{90, 100, 130, 120}));
}

TEST(BandLayout, MoreRoom_GoesToTheOneThatTakesTheRest) {
  EXPECT_THAT(LayOutBand(MakeBand(220), kItems),
              ElementsAre(GridRect{10, 100, 30, 120}, GridRect{35, 105, 185, 115}, GridRect{190, 100, 230, 120}));
}

TEST(BandLayout, LessRoom_IsTakenFromTheLastOneThatCanGiveWay) {
  EXPECT_THAT(LayOutBand(MakeBand(100), kItems),
              ElementsAre(GridRect{10, 100, 30, 120}, GridRect{35, 105, 85, 115}, GridRect{90, 100, 110, 120}));
}

TEST(BandLayout, MuchLessRoom_IsTakenFromTheOnesBeforeItToo) {
  EXPECT_THAT(LayOutBand(MakeBand(70), kItems),
              ElementsAre(GridRect{10, 100, 30, 120}, GridRect{35, 105, 75, 115}, GridRect{80, 100, 80, 120}));
}

TEST(BandLayout, LabelThatWouldBeCut_GoesWithItsGapAndLeavesItsRoomToTheOthers) {
  constexpr BandItem kLabelled[] = {{40, 0, 20, 5, false, true}, {50, 30, 20, 5}};

  EXPECT_THAT(LayOutBand(MakeBand(80), kLabelled), ElementsAre(GridRect{15, 100, 55, 120}, GridRect{60, 100, 90, 120}));
  EXPECT_THAT(LayOutBand(MakeBand(79), kLabelled), ElementsAre(GridRect{10, 100, 10, 120}, GridRect{15, 100, 65, 120}));
}

TEST(BandLayout, LessRoomThanAnybodyCanGive_CutsTheLastOnes) {
  EXPECT_THAT(LayOutBand(MakeBand(40), kItems),
              ElementsAre(GridRect{10, 100, 30, 120}, GridRect{35, 105, 50, 115}, GridRect{50, 100, 50, 120}));
}

TEST(BandLayout, NoRoom_LeavesNothingOfAnybody) {
  const auto rects = LayOutBand({10, 100, 10, 100}, kItems);
  EXPECT_EQ(rects.size(), std::size(kItems));
  for (const GridRect& rect : rects) {
    EXPECT_EQ(rect.left, 10);
    EXPECT_EQ(rect.right, 10);
    EXPECT_EQ(rect.top, 100);
    EXPECT_EQ(rect.bottom, 100);
  }
}

TEST(BandLayout, BandWithNegativeExtent_LeavesNothingOfAnybody) {
  const auto rects = LayOutBand({10, 100, 5, 90}, kItems);
  EXPECT_EQ(rects.size(), std::size(kItems));
  for (const GridRect& rect : rects) {
    EXPECT_EQ(rect.left, rect.right);
    EXPECT_EQ(rect.top, rect.bottom);
  }
}

TEST(BandLayout, WithoutItems_IsEmpty) {
  EXPECT_TRUE(LayOutBand(MakeBand(100), {}).empty());
}

} // namespace krgui
