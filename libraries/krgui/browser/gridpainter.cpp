#include "browser/gridpainter.h"

#include "platform/systemcolours.h"
#include "res/bitmaps.h"

#include <QPainter>
#include <QStyle>
#include <QWidget>

#include <algorithm>
#include <utility>

namespace krgui {

namespace {

/// Between the name and an error icon that it would run into.
constexpr int kIconGap = 2;
/// Around the name of a selected category.
constexpr int kSelectionMargin = 2;
constexpr int kGlyphSize = 9;

QRect ToQRect(const GridRect& aRect) {
  return {QPoint(aRect.left, aRect.top), QPoint(aRect.right - 1, aRect.bottom - 1)};
}

QFont MakeBold(QFont aFont) {
  aFont.setBold(true);
  return aFont;
}

QTextLine LayOutLine(QTextLayout& aLayout, int aWidth) {
  aLayout.beginLayout();
  QTextLine line = aLayout.createLine();
  line.setLineWidth(aWidth);
  aLayout.endLayout();
  return line;
}

/// A glyph that points at the name points the other way where the name is on the other side.
QPixmap CutGlyph(const QImage& aGlyphs, int aIndex, Qt::LayoutDirection aDirection) {
  const QImage glyph = CutBitmap(aGlyphs, QRect(aIndex * kGlyphSize, 0, kGlyphSize, kGlyphSize));
  return QPixmap::fromImage(glyph.mirrored(aDirection == Qt::RightToLeft, false));
}

} // namespace

GridLook MakeGridLook(const QWidget& aWidget, bool aHasFocus) {
  GridLook look;
  look.colours = MakeGridColours(aWidget.palette());
  look.font = aWidget.font();
  look.direction = aWidget.layoutDirection();
  look.hasFocus = aHasFocus;
  const double ratio = aWidget.devicePixelRatioF();
  const BitmapGround ground = IsDarkPalette(aWidget.palette()) ? BitmapGround::Dark : BitmapGround::Light;
  look.errorIcon = QPixmap::fromImage(LoadBitmap(kErrorBitmapID, ratio, ground));
  const QImage glyphs = LoadBitmap(kGlyphsBitmapID, ratio, ground);
  look.closedGlyph = CutGlyph(glyphs, 0, look.direction);
  look.openGlyph = CutGlyph(glyphs, 1, look.direction);
  return look;
}

GridPainter::GridPainter(GridLook aLook) : mLook(std::move(aLook)), mBoldFont(MakeBold(mLook.font)) {}

void GridPainter::Paint(QPainter& aPainter, const GridRow& aRow) const {
  aPainter.save();
  aPainter.setClipRect(ToQRect(aRow.geometry.row), Qt::IntersectClip);
  if (aRow.isCategory)
    PaintCategory(aPainter, aRow);
  else
    PaintFeature(aPainter, aRow);
  aPainter.restore();
}

void GridPainter::PaintEmpty(QPainter& aPainter, const QRect& aGrid) const {
  aPainter.setFont(mLook.font);
  aPainter.setPen(MakeReadable(mLook.colours.greyText, mLook.colours.window));
  aPainter.drawText(aGrid, Qt::AlignCenter | Qt::TextWordWrap, QStringLiteral("No features to show"));
}

QRect GridPainter::Place(const GridRow& aRow, const GridRect& aRect) const {
  return QStyle::visualRect(mLook.direction, ToQRect(aRow.geometry.row), ToQRect(aRect));
}

void GridPainter::PaintCategory(QPainter& aPainter, const GridRow& aRow) const {
  const GridColours& colours = mLook.colours;
  aPainter.fillRect(ToQRect(aRow.geometry.row), colours.face);
  if (aRow.hasGlyph)
    aPainter.drawPixmap(Place(aRow, aRow.geometry.GetGlyph()), aRow.isOpen ? mLook.openGlyph : mLook.closedGlyph);
  aPainter.setFont(mLook.font);
  const QRect nameRect = Place(aRow, aRow.geometry.GetCategoryName());
  if (aRow.isSelected) {
    const int width = std::min(QFontMetrics(mLook.font).horizontalAdvance(aRow.name), nameRect.width());
    const QSize size(width, nameRect.height());
    const QRect ground = QStyle::alignedRect(mLook.direction, Qt::AlignLeft | Qt::AlignVCenter, size, nameRect)
                             .adjusted(-kSelectionMargin, 0, kSelectionMargin, 0);
    aPainter.fillRect(ground, colours.highlight);
  }
  aPainter.setPen(aRow.isSelected ? colours.highlightText : MakeReadable(colours.greyText, colours.face));
  PaintText(aPainter, nameRect, aRow.name);
}

void GridPainter::PaintFeature(QPainter& aPainter, const GridRow& aRow) const {
  const QColor ground = FindGround(aRow);
  aPainter.fillRect(ToQRect(aRow.geometry.row), ground);
  PaintLines(aPainter, aRow);
  if (aRow.hasError)
    aPainter.drawPixmap(Place(aRow, aRow.geometry.GetErrorIcon()), mLook.errorIcon);
  PaintName(aPainter, aRow, ground);
  aPainter.setFont(mLook.font);
  aPainter.setPen(ChooseValueColour(aRow, ground));
  PaintText(aPainter, Place(aRow, aRow.geometry.GetValueText()), aRow.value);
}

QColor GridPainter::FindGround(const GridRow& aRow) const {
  const GridColours& colours = mLook.colours;
  if (aRow.isSelected)
    return mLook.hasFocus ? colours.highlight : colours.face;
  if (aRow.tint == RowTint::IsSelector)
    return colours.isSelector;
  return aRow.tint == RowTint::HasSelectors ? colours.hasSelectors : colours.window;
}

/// On the highlight the theme's own text is what can be read where the usual one cannot.
QColor GridPainter::ChooseValueColour(const GridRow& aRow, const QColor& aGround) const {
  const QColor& colour = aRow.isEditable ? mLook.colours.text : mLook.colours.greyText;
  if (aRow.isSelected && mLook.hasFocus && GetContrast(colour, aGround) < kLeastContrast)
    return mLook.colours.highlightText;
  return MakeReadable(colour, aGround);
}

void GridPainter::PaintLines(QPainter& aPainter, const GridRow& aRow) const {
  const GridRect& row = aRow.geometry.row;
  const int boundary = row.left + aRow.geometry.columnWidth;
  aPainter.fillRect(Place(aRow, {row.left, row.bottom - 1, row.right, row.bottom}), mLook.colours.face);
  aPainter.fillRect(Place(aRow, {boundary, row.top, boundary + 1, row.bottom}), mLook.colours.face);
}

void GridPainter::PaintName(QPainter& aPainter, const GridRow& aRow, const QColor& aGround) const {
  GridRect rect = aRow.geometry.GetNameText();
  if (aRow.hasError)
    rect.right = std::max(rect.left, std::min(rect.right, aRow.geometry.GetErrorIcon().left - kIconGap));
  const bool isHighlighted = aRow.isSelected && mLook.hasFocus;
  aPainter.setFont(aRow.isBold ? mBoldFont : mLook.font);
  aPainter.setPen(isHighlighted ? mLook.colours.highlightText : MakeReadable(mLook.colours.text, aGround));
  PaintText(aPainter, Place(aRow, rect), aRow.name, aRow.match);
}

/// Each text is shaped once, unless it has to be shortened. The three runs of a match are laid out as one text: a
/// script that joins its letters or runs from right to left stays whole.
void GridPainter::PaintText(QPainter& aPainter, const QRect& aRect, const QString& aText,
                            const std::optional<TextMatch>& aMatch) const {
  if (aRect.width() <= 0 || aText.isEmpty())
    return;
  QTextLayout layout(aText, aPainter.font());
  QTextOption option((mLook.direction == Qt::RightToLeft ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignAbsolute);
  option.setWrapMode(QTextOption::NoWrap);
  option.setTextDirection(Qt::LayoutDirectionAuto);
  layout.setTextOption(option);
  QTextLine line = LayOutLine(layout, aRect.width());
  if (line.naturalTextWidth() > aRect.width()) {
    layout.setText(QFontMetrics(aPainter.font()).elidedText(aText, Qt::ElideRight, aRect.width()));
    line = LayOutLine(layout, aRect.width());
  }
  QList<QTextLayout::FormatRange> formats;
  if (aMatch)
    formats.push_back(MakeMatchFormat(*aMatch, layout.text(), aPainter.pen().color()));
  aPainter.save();
  aPainter.setClipRect(aRect, Qt::IntersectClip);
  layout.draw(&aPainter, QPointF(aRect.left(), aRect.top() + (aRect.height() - line.height()) / 2), formats);
  aPainter.restore();
}

QTextLayout::FormatRange GridPainter::MakeMatchFormat(const TextMatch& aMatch, const QString& aText,
                                                      const QColor& aPen) const {
  const auto size = static_cast<std::size_t>(aText.size());
  const std::size_t start = std::min(aMatch.position, size);
  QTextLayout::FormatRange match;
  match.start = static_cast<int>(start);
  match.length = static_cast<int>(std::min(aMatch.length, size - start));
  match.format.setBackground(mLook.colours.match);
  match.format.setForeground(MakeReadable(aPen, mLook.colours.match));
  return match;
}

} // namespace krgui
