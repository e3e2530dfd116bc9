#include "logic/frame/dialogplacement.h"

#include <gtest/gtest.h>

namespace krgui {

namespace {

constexpr PixelRect kScreen = {0, 30, 1000, 800};

struct PlacementCase {
  const char* name;
  PixelSize size;
  PixelRect owner;
  PixelRect expected;
};

constexpr PlacementCase kCases[] = {
    {"SmallerThanItsOwner", {200, 100}, {100, 100, 500, 400}, {200, 200, 400, 300}},
    {"LargerThanItsOwner", {400, 300}, {300, 300, 400, 400}, {150, 200, 550, 500}},
    {"OwnerAtTheLeftEdge", {200, 100}, {-300, 100, 100, 400}, {0, 200, 200, 300}},
    {"OwnerAtTheTop", {200, 100}, {100, 0, 500, 40}, {200, 30, 400, 130}},
    {"OwnerAtTheRightEdge", {200, 100}, {900, 100, 1300, 400}, {800, 200, 1000, 300}},
    {"OwnerAtTheBottom", {200, 100}, {100, 700, 500, 1000}, {200, 700, 400, 800}},
    {"LargerThanTheScreen", {1200, 900}, {100, 100, 500, 400}, {0, 30, 1200, 930}},
};

class PlaceDialogTest : public testing::TestWithParam<PlacementCase> {};

TEST_P(PlaceDialogTest, Dialog_IsCentredAndOnTheScreen) {
  const PlacementCase& row = GetParam();

  EXPECT_EQ(PlaceDialog(row.size, row.owner, kScreen), row.expected);
}

INSTANTIATE_TEST_SUITE_P(Rows, PlaceDialogTest, testing::ValuesIn(kCases),
                         [](const auto& aInfo) { return aInfo.param.name; });

TEST(PlaceDialog, SecondScreen_KeepsTheDialogThere) {
  EXPECT_EQ(PlaceDialog({200, 100}, {1000, 0, 1100, 100}, {1000, 0, 2000, 800}), (PixelRect{1000, 0, 1200, 100}));
}

} // namespace

} // namespace krgui
