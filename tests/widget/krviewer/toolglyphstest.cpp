// The pictures of the tool bar and of messages: whether they can be seen on light and on dark windows.

#include "window/toolglyphs.h"

#include "contrast.h"
#include "darkpalette.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QIcon>
#include <QPainter>

using krviewer::ToolGlyph;

namespace {

constexpr int kSide = 24;
/// What pictures without which a window cannot be used are to have.
constexpr double kLeastContrast = 3;

QImage Draw(ToolGlyph aGlyph) {
  QImage image(kSide, kSide, QImage::Format_RGB32);
  image.fill(QApplication::palette().color(QPalette::Window));
  QPainter painter(&image);
  krviewer::MakeToolIcon(aGlyph).paint(&painter, image.rect());
  return image;
}

class ToolGlyphsTest : public testing::Test {
protected:
  ~ToolGlyphsTest() override { QApplication::setPalette(mPalette); }

  const QPalette mPalette = QApplication::palette();
};

} // namespace

TEST_F(ToolGlyphsTest, Glyphs_CanBeSeenOnLightAndOnDark) {
  for (const QPalette& palette : {QPalette(QColor(239, 239, 239), QColor(239, 239, 239)), krgui::MakeDarkPalette()}) {
    QApplication::setPalette(palette);
    for (const ToolGlyph glyph : {ToolGlyph::Find, ToolGlyph::Start, ToolGlyph::Record, ToolGlyph::Close})
      EXPECT_GE(krgui::GetContrast(Draw(glyph)), kLeastContrast)
          << static_cast<int>(glyph) << " on " << palette.color(QPalette::Window).name().toStdString();
  }
}
