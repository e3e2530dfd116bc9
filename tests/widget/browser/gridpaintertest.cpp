// One row of the property grid, pixel by pixel.

#include "browser/gridpainter.h"

#include <QApplication>
#include <QPainter>
#include <QPalette>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <optional>

namespace krgui {

namespace {

constexpr int kWidth = 400;
constexpr int kHeight = 20;
constexpr int kColumn = 220;
constexpr QRgb kErrorRed = 0xFF112233;
constexpr QRgb kClosedBlue = 0xFF0000AA;
constexpr QRgb kOpenGreen = 0xFF00AA00;

QPixmap MakePlainPixmap(int aSide, QRgb aColour) {
  QPixmap pixmap(aSide, aSide);
  pixmap.fill(QColor(aColour));
  return pixmap;
}

GridLook MakeLook() {
  GridLook look;
  look.colours.window = Qt::white;
  look.colours.text = Qt::black;
  look.colours.greyText = QColor(0x70, 0x70, 0x70);
  look.colours.face = QColor(0xE0, 0xE0, 0xE0);
  look.colours.highlight = QColor(0x10, 0x40, 0x90);
  look.colours.highlightText = QColor(0xFF, 0xFF, 0xF0);
  look.colours.hasSelectors = QColor(0xCE, 0xDB, 0xEA);
  look.colours.isSelector = QColor(0x99, 0xB4, 0xD1);
  look.colours.match = Qt::yellow;
  look.font = QApplication::font();
  look.errorIcon = MakePlainPixmap(16, kErrorRed);
  look.closedGlyph = MakePlainPixmap(9, kClosedBlue);
  look.openGlyph = MakePlainPixmap(9, kOpenGreen);
  return look;
}

GridRow MakeRow() {
  GridRow row;
  row.geometry.row = {0, 0, kWidth, kHeight};
  row.geometry.level = 1;
  row.geometry.columnWidth = kColumn;
  return row;
}

GridRow MakeCategoryRow(int aLevel = 0) {
  GridRow row = MakeRow();
  row.geometry.level = aLevel;
  row.isCategory = true;
  row.hasGlyph = true;
  row.name = QStringLiteral("Category");
  return row;
}

QImage Paint(const GridLook& aLook, const GridRow& aRow) {
  QImage picture(kWidth, kHeight, QImage::Format_RGB32);
  picture.fill(Qt::magenta);
  QPainter painter(&picture);
  GridPainter(aLook).Paint(painter, aRow);
  return picture;
}

/// The columns in which a picture differs from another one, or that fulfil a condition.
struct Span {
  int first = -1;
  int last = -1;
};
Span FindColumns(const QImage& aPicture, const std::function<bool(QRgb, QPoint)>& aIsMeant) {
  Span span;
  for (int x = 0; x < aPicture.width(); ++x) {
    for (int y = 0; y < aPicture.height(); ++y) {
      if (!aIsMeant(aPicture.pixel(x, y), QPoint(x, y)))
        continue;
      span.first = span.first < 0 ? x : span.first;
      span.last = x;
    }
  }
  return span;
}
Span FindColour(const QImage& aPicture, const QColor& aColour) {
  return FindColumns(aPicture, [&](QRgb aPixel, QPoint) { return aPixel == aColour.rgb(); });
}
/// Where texts are: what an empty row has not.
Span FindText(const GridLook& aLook, const GridRow& aRow) {
  GridRow empty = aRow;
  empty.name.clear();
  empty.value.clear();
  empty.match.reset();
  const QImage without = Paint(aLook, empty);
  return FindColumns(Paint(aLook, aRow), [&](QRgb aPixel, QPoint aAt) { return aPixel != without.pixel(aAt); });
}
/// The ink of a text: the pixel that is least like its ground.
QColor FindInk(const QImage& aPicture, int aLeft, int aRight, const QColor& aGround) {
  QColor ink = aGround;
  for (int x = aLeft; x < aRight; ++x) {
    for (int y = 0; y < aPicture.height() - 1; ++y) {
      const QColor colour = aPicture.pixelColor(x, y);
      if (GetContrast(colour, aGround) > GetContrast(ink, aGround))
        ink = colour;
    }
  }
  return ink;
}
/// But for what the smoothing of edges makes of it.
bool IsNear(const QColor& aInk, const QColor& aExpected) {
  constexpr int kMostDifference = 16;
  return std::abs(aInk.red() - aExpected.red()) <= kMostDifference &&
         std::abs(aInk.green() - aExpected.green()) <= kMostDifference &&
         std::abs(aInk.blue() - aExpected.blue()) <= kMostDifference;
}

} // namespace

TEST(GridPainter, GridWithoutRows_SaysSoInReadableGreyInItsMiddle) {
  QImage picture(kWidth, 5 * kHeight, QImage::Format_RGB32);
  picture.fill(Qt::white);
  QPainter painter(&picture);

  GridPainter(MakeLook()).PaintEmpty(painter, picture.rect());
  painter.end();

  QRect text;
  double contrast = 1;
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) {
      const QColor pixel = picture.pixelColor(x, y);
      if (pixel == Qt::white)
        continue;
      text |= QRect(x, y, 1, 1);
      contrast = std::max(contrast, GetContrast(pixel, Qt::white));
    }
  }
  ASSERT_FALSE(text.isEmpty());
  EXPECT_NEAR(text.center().x(), kWidth / 2, 4);
  EXPECT_NEAR(text.center().y(), 5 * kHeight / 2, 6);
  EXPECT_GE(contrast, kLeastContrast - 0.5) << "smoothed letters have few whole pixels";
  EXPECT_LT(contrast, 10) << "not as dark as a row's text";
}

TEST(GridPainter, Category_FillsItsWholeRowWithTheFace) {
  const QImage picture = Paint(MakeLook(), MakeCategoryRow());

  for (const QPoint point : {QPoint(1, 0), QPoint(kColumn, 10), QPoint(kWidth - 1, kHeight - 1)})
    EXPECT_EQ(picture.pixelColor(point), MakeLook().colours.face);
}

TEST(GridPainter, Glyph_StandsAtItsLevelsPlaceAndSaysWhetherTheCategoryIsOpen) {
  GridRow row = MakeCategoryRow(2);
  const QImage closed = Paint(MakeLook(), row);
  row.isOpen = true;
  const QImage open = Paint(MakeLook(), row);

  const Span closedSpan = FindColour(closed, QColor(kClosedBlue));
  EXPECT_EQ(closedSpan.first, 2 * 20 + 3);
  EXPECT_EQ(closedSpan.last, 2 * 20 + 11);
  EXPECT_EQ(closed.pixel(45, kHeight / 2 - 4), kClosedBlue);
  EXPECT_EQ(closed.pixel(45, kHeight / 2 + 4), kClosedBlue);
  EXPECT_NE(closed.pixel(45, kHeight / 2 - 5), kClosedBlue);
  EXPECT_NE(closed.pixel(45, kHeight / 2 + 5), kClosedBlue);
  EXPECT_EQ(FindColour(open, QColor(kOpenGreen)).first, 2 * 20 + 3);
}

TEST(GridPainter, CategoryWithoutChildren_HasNoGlyph) {
  GridRow row = MakeCategoryRow();
  row.hasGlyph = false;

  EXPECT_EQ(FindColour(Paint(MakeLook(), row), QColor(kClosedBlue)).first, -1);
}

TEST(GridPainter, CategoryName_IsGreyFourteenPixelsRightOfTheGlyphsLeftEdge) {
  const GridRow row = MakeCategoryRow(1);

  const Span span = FindText(MakeLook(), row);

  EXPECT_GE(span.first, 20 + 3 + 14);
  EXPECT_LE(span.first, 20 + 3 + 14 + 2);
  EXPECT_LT(span.last, kColumn);
  const QColor ink = FindInk(Paint(MakeLook(), row), span.first, span.last, MakeLook().colours.face);
  EXPECT_TRUE(IsNear(ink, MakeReadable(MakeLook().colours.greyText, MakeLook().colours.face)));
}

TEST(GridPainter, SelectedCategory_HasItsNameOnTheHighlight) {
  GridRow row = MakeCategoryRow();
  row.isSelected = true;

  const QImage picture = Paint(MakeLook(), row);

  const Span span = FindColour(picture, MakeLook().colours.highlight);
  EXPECT_GT(span.first, 11);
  EXPECT_LT(span.last, kColumn);
  EXPECT_TRUE(IsNear(FindInk(picture, span.first, span.last + 1, MakeLook().colours.highlight),
                     MakeLook().colours.highlightText));
  EXPECT_EQ(picture.pixelColor(kWidth - 1, 5), MakeLook().colours.face);
}

TEST(GridPainter, FeatureGround_SaysWhatTheFeatureIsAndWhetherItIsSelected) {
  const GridColours colours = MakeLook().colours;
  const struct {
    const char* name;
    RowTint tint;
    bool isSelected;
    bool hasFocus;
    QColor expected;
  } rows[] = {
      {"plain", RowTint::None, false, true, colours.window},
      {"has selectors", RowTint::HasSelectors, false, true, colours.hasSelectors},
      {"is a selector", RowTint::IsSelector, false, true, colours.isSelector},
      {"selected with the focus", RowTint::IsSelector, true, true, colours.highlight},
      {"selected without the focus", RowTint::IsSelector, true, false, colours.face},
  };
  for (const auto& expected : rows) {
    SCOPED_TRACE(expected.name);
    GridRow row = MakeRow();
    row.tint = expected.tint;
    row.isSelected = expected.isSelected;
    GridLook look = MakeLook();
    look.hasFocus = expected.hasFocus;

    const QImage picture = Paint(look, row);

    EXPECT_EQ(picture.pixelColor(0, 0), expected.expected);
    EXPECT_EQ(picture.pixelColor(kColumn - 18, kHeight / 2), expected.expected);
    EXPECT_EQ(picture.pixelColor(kWidth - 1, kHeight - 2), expected.expected);
  }
}

TEST(GridPainter, Lines_AreOnePixelAtTheBottomAndAtTheColumnsBoundary) {
  const QColor face = MakeLook().colours.face;

  const QImage picture = Paint(MakeLook(), MakeRow());

  EXPECT_EQ(picture.pixelColor(0, kHeight - 1), face);
  EXPECT_EQ(picture.pixelColor(kWidth - 1, kHeight - 1), face);
  EXPECT_EQ(picture.pixelColor(0, kHeight - 2), QColor(Qt::white));
  EXPECT_EQ(picture.pixelColor(kColumn, 0), face);
  EXPECT_EQ(picture.pixelColor(kColumn - 1, 0), QColor(Qt::white));
  EXPECT_EQ(picture.pixelColor(kColumn + 1, 0), QColor(Qt::white));
}

TEST(GridPainter, ErrorIcon_StandsBeforeTheBoundaryInTheMiddle) {
  GridRow row = MakeRow();
  row.hasError = true;

  const QImage picture = Paint(MakeLook(), row);

  const Span span = FindColour(picture, QColor(kErrorRed));
  EXPECT_EQ(span.first, kColumn - 18);
  EXPECT_EQ(span.last, kColumn - 3);
  EXPECT_EQ(picture.pixel(kColumn - 10, kHeight / 2 - 8), kErrorRed);
  EXPECT_NE(picture.pixel(kColumn - 10, kHeight / 2 - 9), kErrorRed);
  EXPECT_EQ(FindColour(Paint(MakeLook(), MakeRow()), QColor(kErrorRed)).first, -1);
}

TEST(GridPainter, Name_BeginsThreePixelsAfterItsIndentation) {
  for (const int level : {0, 1, 3}) {
    SCOPED_TRACE(level);
    GridRow row = MakeRow();
    row.geometry.level = level;
    row.name = QStringLiteral("Height");

    const Span span = FindText(MakeLook(), row);

    const int begin = std::max(level, 1) * 20 + 3;
    EXPECT_GE(span.first, begin);
    EXPECT_LE(span.first, begin + 2);
  }
}

TEST(GridPainter, Value_BeginsThreePixelsAfterTheBoundaryInTheColourOfItsAccess) {
  for (const bool isEditable : {true, false}) {
    GridRow row = MakeRow();
    row.value = QStringLiteral("HHHH");
    row.isEditable = isEditable;

    const Span span = FindText(MakeLook(), row);

    EXPECT_GE(span.first, kColumn + 3);
    EXPECT_LE(span.first, kColumn + 5);
    EXPECT_TRUE(IsNear(FindInk(Paint(MakeLook(), row), span.first, span.last, Qt::white),
                       isEditable ? MakeLook().colours.text : MakeLook().colours.greyText));
  }
}

TEST(GridPainter, SelectedNameWithTheFocus_HasTheHighlightsTextColour) {
  GridRow row = MakeRow();
  row.name = QStringLiteral("HHHH");
  row.isSelected = true;
  GridLook look = MakeLook();
  look.hasFocus = true;

  EXPECT_TRUE(IsNear(FindInk(Paint(look, row), 0, kColumn, look.colours.highlight), look.colours.highlightText));
  look.hasFocus = false;
  EXPECT_TRUE(IsNear(FindInk(Paint(look, row), 0, kColumn, look.colours.face), look.colours.text));
}

TEST(GridPainter, Selector_HasItsNameInBold) {
  GridRow row = MakeRow();
  row.name = QStringLiteral("GainSelector");
  const Span plain = FindText(MakeLook(), row);
  row.isBold = true;

  const Span bold = FindText(MakeLook(), row);

  EXPECT_GT(bold.last, plain.last);
}

TEST(GridPainter, NamesWithAmpersand_AreShownAsTheyAre) {
  GridRow row = MakeRow();
  row.name = QStringLiteral("A&B");
  const Span span = FindText(MakeLook(), row);
  row.name = QStringLiteral("AB");

  EXPECT_GT(span.last, FindText(MakeLook(), row).last);
}

TEST(GridPainter, LongTexts_StayInTheirCells) {
  GridRow row = MakeRow();
  row.name = QString(10000, QLatin1Char('W'));
  EXPECT_LT(FindText(MakeLook(), row).last, kColumn - 3);
  row.hasError = true;
  EXPECT_LT(FindText(MakeLook(), row).last, kColumn - 18);
  row.match = TextMatch{0, 5000};
  EXPECT_LT(FindText(MakeLook(), row).last, kColumn - 18);

  row = MakeRow();
  row.value = QString(10000, QLatin1Char('W'));
  const Span value = FindText(MakeLook(), row);
  EXPECT_GE(value.first, kColumn + 3);
  EXPECT_LT(value.last, kWidth - 3);
}

TEST(GridPainter, ColumnsWithoutRoom_PaintNoText) {
  GridRow row = MakeRow();
  row.geometry.level = 30;
  row.name = QStringLiteral("Height");

  EXPECT_EQ(FindText(MakeLook(), row).first, -1);
}

TEST(GridPainter, Match_IsOnYellowAndTheRestIsNot) {
  GridRow row = MakeRow();
  row.name = QStringLiteral("ExposureTime");
  row.match = TextMatch{8, 4};
  const QFontMetrics metrics(QApplication::font());

  const QImage picture = Paint(MakeLook(), row);

  const Span yellow = FindColour(picture, Qt::yellow);
  const int begin = 20 + 3 + metrics.horizontalAdvance(QStringLiteral("Exposure"));
  EXPECT_NEAR(yellow.first, begin, 2);
  EXPECT_NEAR(yellow.last, begin + metrics.horizontalAdvance(QStringLiteral("Time")), 2);
  EXPECT_TRUE(IsNear(FindInk(picture, 20, begin - 2, Qt::white), Qt::black));
}

TEST(GridPainter, MatchOfTheSelectedRow_CanBeRead) {
  GridRow row = MakeRow();
  row.name = QStringLiteral("HHHH");
  row.match = TextMatch{0, 4};
  row.isSelected = true;
  GridLook look = MakeLook();
  look.hasFocus = true;

  const QImage picture = Paint(look, row);

  const Span yellow = FindColour(picture, Qt::yellow);
  EXPECT_GE(GetContrast(FindInk(picture, yellow.first, yellow.last, Qt::yellow), Qt::yellow), 4.5);
}

TEST(GridPainter, MatchAtTheEndOfALongName_PaintsNothingOutsideTheCell) {
  GridRow row = MakeRow();
  row.name = QString(300, QLatin1Char('W'));
  row.match = TextMatch{290, 5};

  const QImage picture = Paint(MakeLook(), row);

  EXPECT_EQ(FindColour(picture, Qt::yellow).first, -1);
}

TEST(GridPainter, NameFromRightToLeft_StaysAtTheLeadingEdge) {
  GridRow row = MakeRow();
  row.name = QStringLiteral("שלום");
  const QFontMetrics metrics(QApplication::font());

  const Span span = FindText(MakeLook(), row);

  EXPECT_NEAR(span.first, 20 + 3, 3);
  EXPECT_LE(span.last, 20 + 3 + metrics.horizontalAdvance(row.name) + 1);
}

TEST(GridPainter, MirroredLayout_HasEverythingAtTheOtherEdge) {
  GridLook look = MakeLook();
  look.direction = Qt::RightToLeft;
  GridRow row = MakeRow();
  row.hasError = true;
  row.name = QStringLiteral("Height");

  const QImage picture = Paint(look, row);

  EXPECT_EQ(FindColour(picture, QColor(kErrorRed)).last, kWidth - 1 - (kColumn - 18));
  EXPECT_EQ(picture.pixelColor(kWidth - 1 - kColumn, 0), look.colours.face);
  EXPECT_NEAR(FindText(look, row).last, kWidth - 1 - (20 + 3), 3);
  EXPECT_EQ(FindColour(Paint(look, MakeCategoryRow()), QColor(kClosedBlue)).last, kWidth - 1 - 3);
}

} // namespace krgui
