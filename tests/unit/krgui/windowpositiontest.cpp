#include "logic/frame/windowposition.h"
#include "res/templates.h"

#include <gmock/gmock.h>

#include <limits>
#include <ostream>

namespace krgui {

void PrintTo(const WindowRect& aRect, std::ostream* aStream) {
  *aStream << "(" << aRect.left << ", " << aRect.top << ", " << aRect.right << ", " << aRect.bottom << ")";
}

namespace {

constexpr int kMost = std::numeric_limits<std::int32_t>::max();
constexpr int kLeast = std::numeric_limits<std::int32_t>::min();

WindowLimits LimitsOf(const WindowTraits& aTraits) {
  return {aTraits.minWidth, aTraits.maxWidth, aTraits.minHeight, aTraits.maxHeight};
}

struct ClampRow {
  const char* name;
  WindowTraits window;
  int x, y, width, height;
  WindowRect expected;
};

constexpr ClampRow kClampRows[] = {
    {"display, smaller than its minimum", kDisplayTraits, 10, 20, 5, 5, {10, 20, 40, 40}},
    {"display, at its minimum", kDisplayTraits, 10, 20, 30, 20, {10, 20, 40, 40}},
    {"display, larger than its maximum", kDisplayTraits, -5, -6, 40000, 40000, {-5, -6, 32763, 32762}},
    {"display, within its limits", kDisplayTraits, 100, 200, 640, 480, {100, 200, 740, 680}},
    {"display, negative size", kDisplayTraits, 50, 60, -70, -80, {50, 60, 80, 80}},
    {"display, only the width is too small", kDisplayTraits, 0, 0, 1, 500, {0, 0, 30, 500}},
    {"display, only the height is too small", kDisplayTraits, 0, 0, 500, 1, {0, 0, 500, 20}},
    {"finder, smaller", kDeviceFinderTraits, 1, 2, 100, 100, {1, 2, 501, 302}},
    {"finder, larger", kDeviceFinderTraits, 1, 2, 1000, 1000, {1, 2, 801, 602}},
    {"finder, within", kDeviceFinderTraits, 1, 2, 600, 400, {1, 2, 601, 402}},
    {"browser, smaller", kGenBrowserTraits, 0, 0, 299, 299, {0, 0, 300, 300}},
    {"browser, larger", kGenBrowserTraits, 0, 0, 32769, 32769, {0, 0, 32768, 32768}},
    {"serial terminal, narrower", kSerialTerminalTraits, 7, 8, 10, 400, {7, 8, 615, 408}},
    {"serial terminal, wider", kSerialTerminalTraits, 7, 8, 5000, 400, {7, 8, 615, 408}},
    {"serial terminal, one pixel narrower", kSerialTerminalTraits, 7, 8, 607, 349, {7, 8, 615, 358}},
    {"serial terminal, higher", kSerialTerminalTraits, 7, 8, 608, 2001, {7, 8, 615, 2008}},
    {"serial bridge manager, smaller", kSerialBridgeManagerTraits, 0, 0, 499, 299, {0, 0, 500, 300}},
    {"serial bridge manager, larger", kSerialBridgeManagerTraits, 0, 0, 801, 601, {0, 0, 800, 600}},
    {"camera bridge manager, smaller", kCameraBridgeManagerTraits, 0, 0, 774, 581, {0, 0, 775, 582}},
    {"camera bridge manager, larger", kCameraBridgeManagerTraits, 0, 0, 1601, 2501, {0, 0, 1600, 2500}},
};

} // namespace

TEST(ClampToLimits, RowsOfWindows_GiveTheRectangleExpected) {
  for (const ClampRow& row : kClampRows) {
    const WindowRect wanted = MakeWindowRect(row.x, row.y, row.width, row.height);

    const WindowRect clamped = ClampToLimits(wanted, LimitsOf(row.window));

    EXPECT_EQ(clamped, row.expected) << row.name;
  }
}

TEST(ClampToLimits, EdgesFarApart_DoesNotOverflow) {
  const WindowRect everything = {kLeast, kLeast, kMost, kMost};

  const WindowRect clamped = ClampToLimits(everything, {30, 608, 20, 2000});

  EXPECT_EQ(clamped, (WindowRect{kLeast, kLeast, kLeast + 608, kLeast + 2000}));
}

TEST(ClampToLimits, EdgesFarApartTheWrongWayRound_CountAsTooSmall) {
  const WindowRect inverted = {kMost - 100, kMost - 100, kLeast, kLeast};

  const WindowRect clamped = ClampToLimits(inverted, {30, 608, 20, 2000});

  EXPECT_EQ(clamped, (WindowRect{kMost - 100, kMost - 100, kMost - 70, kMost - 80}));
}

TEST(ClampToLimits, MinimumWouldLeave32Bits_StaysAtTheEnd) {
  const WindowRect atTheEnd = {kMost - 5, kMost - 5, kMost, kMost};

  const WindowRect clamped = ClampToLimits(atTheEnd, {30, 608, 20, 2000});

  EXPECT_EQ(clamped, (WindowRect{kMost - 5, kMost - 5, kMost, kMost}));
}

TEST(MakeWindowRect, EdgeWouldLeave32Bits_StaysAtTheEnd) {
  const WindowRect rect = MakeWindowRect(kMost - 1, kLeast + 1, 10, -10);

  EXPECT_EQ(rect, (WindowRect{kMost - 1, kLeast + 1, kMost, kLeast}));
}

TEST(WindowRect, WidthAndHeight_AreTheDistancesOfTheEdges) {
  const WindowRect rect = MakeWindowRect(-10, 20, 300, 400);

  EXPECT_EQ(GetWidth(rect), 300);
  EXPECT_EQ(GetHeight(rect), 400);
  EXPECT_EQ(GetWidth({kLeast, 0, kMost, 0}), kMost) << "as far as 32 bits reach";
}

} // namespace krgui
