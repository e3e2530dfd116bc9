#include "display/overlayfont.h"

#include <QFontInfo>
#include <QFontMetricsF>

#include <gtest/gtest.h>

#include <limits>

namespace {

constexpr double kDefaultLineHeight = 15.0;

QFont MakeFont(int aSize, double aPixelRatio = 1.0) {
  return krgui::MakeOverlayFont(krgui::FindOverlayPixelSize(aSize, aPixelRatio, kDefaultLineHeight));
}

} // namespace

TEST(OverlayFont, SizeAboveZero_IsTheHeightOfALine) {
  for (int size : {8, 12, 20, 33, 64})
    EXPECT_NEAR(QFontMetricsF(MakeFont(size)).height(), size, 1.5) << size;
}

TEST(OverlayFont, SizeBelowZero_IsTheHeightOfTheCharacters) {
  for (int size : {8, 12, 20, 33, 64})
    EXPECT_EQ(MakeFont(-size).pixelSize(), size);
}

TEST(OverlayFont, SizeZero_IsTheDefaultLine) {
  EXPECT_NEAR(QFontMetricsF(MakeFont(0)).height(), kDefaultLineHeight, 1.5);
}

TEST(OverlayFont, PixelRatio_MultipliesTheSize) {
  EXPECT_EQ(MakeFont(-10, 2.0).pixelSize(), 20);
}

TEST(OverlayFont, Face_IsTheOneNamedWithMediumWeightThoughTheSystemMayLackIt) {
  const QFont font = MakeFont(20);

  EXPECT_EQ(font.family(), QStringLiteral("Tahoma"));
  EXPECT_EQ(font.weight(), QFont::Medium);
  EXPECT_FALSE(font.italic() || font.underline() || font.strikeOut());
}

TEST(OverlayFont, FaceThatTheSystemLacks_IsSubstitutedByOneWithTheSameHeight) {
  const QFont font = MakeFont(20);

  EXPECT_FALSE(QFontInfo(font).family().isEmpty());
  EXPECT_GT(QFontMetricsF(font).horizontalAdvance("frames"), 20);
}

TEST(OverlayFont, ExtremeSizes_GiveAFont) {
  for (int size : {1, -1, 100000, -100000, std::numeric_limits<int>::min()})
    EXPECT_GE(MakeFont(size).pixelSize(), 1) << size;
}
