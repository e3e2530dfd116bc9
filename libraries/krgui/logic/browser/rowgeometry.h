#pragma once
// Where things are in a row of the property grid, and what a point of it hits. In device-independent pixels of the
// grid's viewport.

#include <optional>

namespace krgui {

inline constexpr int kInitialNameColumnWidth = 220;

/// From left and top up to, not including, right and bottom.
struct GridRect {
  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;
  friend bool operator==(const GridRect&, const GridRect&) = default;
};

/// One row; aRow spans the viewport's width.
struct RowGeometry {
  GridRect row;
  int level = 0;
  int columnWidth = kInitialNameColumnWidth;

  /// A feature's name and value texts.
  GridRect GetNameText() const;
  GridRect GetValueText() const;
  GridRect GetErrorIcon() const;
  /// The cell that an open editor covers.
  GridRect GetEditor() const;
  bool IsInValueCell(int aX) const;
  /// A category's glyph as it is painted, the box that a click toggles it in, and its name.
  GridRect GetGlyph() const;
  bool IsInGlyphBox(int aX, int aY) const;
  GridRect GetCategoryName() const;
};

/// Whether a point is where the columns' boundary can be taken.
bool IsInColumnBand(int aX, int aColumnWidth);
/// The name column's width while the pointer drags it: at least 100, at most 50 less than the window.
int DragColumn(int aX, int aWindowWidth);

/// What a tooltip is asked for.
inline constexpr int kErrorToolFlag = 0x8000;
inline constexpr int kCategoryToolBase = 0x4000;

/// How much of a tooltip is shown, in characters.
inline constexpr int kMostToolTipCharacters = 1023;

/// The height of the combo box's list for its items.
int GetChoiceListHeight(int aItemCount, int aItemHeight);

} // namespace krgui
