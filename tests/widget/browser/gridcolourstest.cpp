// The property grid's colours, light and dark.

#include "browser/gridcolours.h"

#include <QPalette>

#include <gtest/gtest.h>

#include <array>

namespace krgui {

namespace {

struct Theme {
  const char* name;
  QRgb window;
  QRgb text;
  QRgb greyText;
  QRgb face;
};

constexpr std::array kThemes = {
    Theme{"black on white", 0xFFFFFFFF, 0xFF000000, 0xFFBEBEBE, 0xFFEFEFEF},
    Theme{"white on black", 0xFF000000, 0xFFFFFFFF, 0xFF404040, 0xFF202020},
    Theme{"a dark desktop", 0xFF232629, 0xFFEFF0F1, 0xFF65686A, 0xFF31363B},
    Theme{"a dark desktop with soft text", 0xFF2B2B2B, 0xFFC8C8C8, 0xFF707070, 0xFF3C3F41},
    Theme{"yellow on blue", 0xFF000080, 0xFFFFFF00, 0xFF808000, 0xFF0000A0},
};

QPalette MakePalette(const Theme& aTheme) {
  QPalette palette;
  palette.setColor(QPalette::Base, QColor(aTheme.window));
  palette.setColor(QPalette::Text, QColor(aTheme.text));
  palette.setColor(QPalette::Disabled, QPalette::Text, QColor(aTheme.greyText));
  palette.setColor(QPalette::Window, QColor(aTheme.face));
  return palette;
}

} // namespace

TEST(GridColours, BlackOnWhite_HasTheTintsAsTheyAre) {
  const GridColours colours = MakeGridColours(MakePalette(kThemes[0]));

  EXPECT_EQ(colours.hasSelectors, QColor(0xCE, 0xDB, 0xEA));
  EXPECT_EQ(colours.isSelector, QColor(0x99, 0xB4, 0xD1));
  EXPECT_EQ(colours.match, QColor(0xFF, 0xFF, 0x00));
  EXPECT_EQ(colours.window, QColor(Qt::white));
  EXPECT_EQ(colours.face, QColor(0xEF, 0xEF, 0xEF));
}

TEST(GridColours, Tints_LeaveTextReadableInEveryTheme) {
  for (const Theme& theme : kThemes) {
    SCOPED_TRACE(theme.name);

    const GridColours colours = MakeGridColours(MakePalette(theme));

    for (const QColor& ground : {colours.hasSelectors, colours.isSelector, colours.match})
      EXPECT_GE(GetContrast(colours.text, ground), 4.5) << ground.name().toStdString();
  }
}

TEST(GridColours, DarkTints_AreDarkAndStillTellApart) {
  const GridColours colours = MakeGridColours(MakePalette(kThemes[2]));

  EXPECT_LT(qGray(colours.hasSelectors.rgb()), 128);
  EXPECT_LT(qGray(colours.isSelector.rgb()), 128);
  EXPECT_NE(colours.hasSelectors, colours.isSelector);
  EXPECT_NE(colours.isSelector, colours.window);
  EXPECT_NE(colours.match, colours.window);
}

TEST(GridColours, GreyText_CanBeReadOnEveryGround) {
  for (const Theme& theme : kThemes) {
    SCOPED_TRACE(theme.name);
    const GridColours colours = MakeGridColours(MakePalette(theme));

    for (const QColor& ground : {colours.window, colours.face, colours.hasSelectors, colours.isSelector})
      EXPECT_GE(GetContrast(MakeReadable(colours.greyText, ground), ground), 4.5) << ground.name().toStdString();
  }
}

TEST(GridColours, MakeReadable_LeavesWhatCanBeReadAsItIs) {
  EXPECT_EQ(MakeReadable(QColor(0x60, 0x60, 0x60), Qt::white), QColor(0x60, 0x60, 0x60));
  EXPECT_NE(MakeReadable(QColor(0xBE, 0xBE, 0xBE), Qt::white), QColor(0xBE, 0xBE, 0xBE));
}

TEST(GridColours, Contrast_GoesFromOneToTwentyOneInEitherOrder) {
  EXPECT_DOUBLE_EQ(GetContrast(Qt::white, Qt::white), 1.0);
  EXPECT_DOUBLE_EQ(GetContrast(Qt::black, Qt::white), 21.0);
  EXPECT_DOUBLE_EQ(GetContrast(Qt::white, Qt::black), 21.0);
}

} // namespace krgui
