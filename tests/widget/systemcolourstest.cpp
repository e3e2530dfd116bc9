#include "platform/systemcolours.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using krgui::SystemColour;

/// A palette whose colours all differ.
QPalette MakePalette() {
  QPalette palette;
  palette.setColor(QPalette::Active, QPalette::Window, QColor(200, 100, 0));
  palette.setColor(QPalette::Active, QPalette::Highlight, QColor(0, 0, 100));
  palette.setColor(QPalette::Active, QPalette::HighlightedText, QColor(241, 242, 243));
  palette.setColor(QPalette::Active, QPalette::Base, QColor(4, 5, 6));
  palette.setColor(QPalette::Active, QPalette::Text, QColor(7, 8, 9));
  palette.setColor(QPalette::Disabled, QPalette::Text, QColor(10, 11, 12));
  return palette;
}

} // namespace

TEST(SystemColours, EachColour_IsItsRoleOfThePalette) {
  struct Row {
    const char* name;
    SystemColour colour;
    QColor expected;
  };
  const Row rows[] = {
      {"button face is what dialogs are filled with", SystemColour::ButtonFace, QColor(200, 100, 0)},
      {"caption gradient is a tint of the highlight", SystemColour::GradientActiveCaption, QColor(140, 70, 30)},
      {"grey text is disabled text", SystemColour::GrayText, QColor(10, 11, 12)},
      {"highlight", SystemColour::Highlight, QColor(0, 0, 100)},
      {"highlighted text", SystemColour::HighlightText, QColor(241, 242, 243)},
      {"hot light is the highlight", SystemColour::HotLight, QColor(0, 0, 100)},
      {"window is the base", SystemColour::Window, QColor(4, 5, 6)},
      {"window text is text", SystemColour::WindowText, QColor(7, 8, 9)},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(krgui::GetSystemColour(MakePalette(), row.colour).name().toStdString(), row.expected.name().toStdString())
        << row.name;
  }
}

TEST(SystemColours, HighlightedTextThatCannotBeRead_IsBlackOrWhite) {
  QPalette palette = MakePalette();
  palette.setColor(QPalette::HighlightedText, QColor(1, 2, 3));
  EXPECT_EQ(krgui::GetSystemColour(palette, SystemColour::HighlightText), QColor(Qt::white));

  palette.setColor(QPalette::Highlight, QColor(0x30, 0x8C, 0xC6)); // On which white has a contrast of 3.6.
  palette.setColor(QPalette::HighlightedText, Qt::white);
  EXPECT_EQ(krgui::GetSystemColour(palette, SystemColour::HighlightText), QColor(Qt::black));
}

TEST(SystemColours, Blend_KeepsWithinItsColours) {
  const QColor black(0, 0, 0);
  const QColor white(255, 255, 255);

  EXPECT_EQ(krgui::BlendColours(white, black, 0), black);
  EXPECT_EQ(krgui::BlendColours(white, black, 50), QColor(128, 128, 128));
  EXPECT_EQ(krgui::BlendColours(white, black, 100), white);
  EXPECT_EQ(krgui::BlendColours(white, black, -5), black);
  EXPECT_EQ(krgui::BlendColours(white, black, 105), white);
}

TEST(SystemColours, Darkness_IsThatOfDialogs) {
  QPalette palette;
  palette.setColor(QPalette::Window, QColor(0x30, 0x30, 0x30));
  palette.setColor(QPalette::Base, Qt::white);
  EXPECT_TRUE(krgui::IsDarkPalette(palette));

  palette.setColor(QPalette::Window, QColor(0xEF, 0xEF, 0xEF));
  palette.setColor(QPalette::Base, Qt::black);
  EXPECT_FALSE(krgui::IsDarkPalette(palette));
}
