#include "logic/browser/rowgeometry.h"

#include <algorithm>

namespace krgui {

namespace {

constexpr int kIndentPerLevel = 20;
constexpr int kTextMargin = 3;
constexpr int kIconSize = 16;
constexpr int kIconFromColumn = 18;
constexpr int kGlyphSize = 9;
constexpr int kGlyphAboveCentre = 4;
constexpr int kGlyphBelowCentre = 4;
constexpr int kNameFromGlyph = 14;
constexpr int kBandReach = 3;
constexpr int kLeastColumnWidth = 100;
constexpr int kLeastValueWidth = 50;
constexpr int kListFrame = 10;
constexpr int kMostListItems = 25;
constexpr int kItemGap = 2;

/// As wide as there is room for; a column that is too narrow gets an empty rectangle, never a negative one.
GridRect SpanRow(const GridRect& aRow, int aLeft, int aRight) {
  return {aLeft, aRow.top, std::max(aLeft, aRight), aRow.bottom};
}

int GetCentre(const GridRect& aRow) {
  return aRow.top + (aRow.bottom - aRow.top) / 2;
}

int GetGlyphLeft(int aLevel) {
  return aLevel * kIndentPerLevel + kTextMargin;
}

} // namespace

GridRect RowGeometry::GetNameText() const {
  return SpanRow(row, std::max(level, 1) * kIndentPerLevel + kTextMargin, columnWidth - kTextMargin);
}

GridRect RowGeometry::GetValueText() const {
  return SpanRow(row, columnWidth + kTextMargin, row.right - kTextMargin);
}

GridRect RowGeometry::GetErrorIcon() const {
  const int left = columnWidth - kIconFromColumn;
  const int top = GetCentre(row) - kIconSize / 2;
  return {left, top, left + kIconSize, top + kIconSize};
}

GridRect RowGeometry::GetEditor() const {
  const GridRect cell = SpanRow(row, columnWidth + 1, row.right - 1);
  return {cell.left - 1, cell.top - 1, cell.right + 1, cell.bottom + 1};
}

bool RowGeometry::IsInValueCell(int aX) const {
  return aX > columnWidth && aX < row.right;
}

GridRect RowGeometry::GetGlyph() const {
  const int left = GetGlyphLeft(level);
  const int top = GetCentre(row) - kGlyphAboveCentre;
  return {left, top, left + kGlyphSize, top + kGlyphSize};
}

bool RowGeometry::IsInGlyphBox(int aX, int aY) const {
  const int left = GetGlyphLeft(level);
  const int centre = GetCentre(row);
  return aX >= left && aX <= left + kGlyphSize && aY >= centre - kGlyphAboveCentre && aY <= centre + kGlyphBelowCentre;
}

GridRect RowGeometry::GetCategoryName() const {
  return SpanRow(row, GetGlyphLeft(level) + kNameFromGlyph, row.right);
}

bool IsInColumnBand(int aX, int aColumnWidth) {
  return aX > aColumnWidth - kBandReach && aX < aColumnWidth + kBandReach;
}

int DragColumn(int aX, int aWindowWidth) {
  return std::max(kLeastColumnWidth, std::min(aX, aWindowWidth - kLeastValueWidth));
}

int GetChoiceListHeight(int aItemCount, int aItemHeight) {
  return kListFrame + (std::min(aItemCount, kMostListItems - 1) + 1) * (aItemHeight + kItemGap);
}

} // namespace krgui
