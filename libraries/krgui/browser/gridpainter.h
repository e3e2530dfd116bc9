#pragma once
// Paints one row of the property grid from a plain description of it. Where things are is left to
// logic/browser/rowgeometry.h, colours to gridcolours.h; nothing is asked of nodes or devices.

#include "browser/gridcolours.h"
#include "logic/browser/featuresearch.h"
#include "logic/browser/rowgeometry.h"

#include <QFont>
#include <QPixmap>
#include <QString>
#include <QTextLayout>

#include <optional>

class QPainter;
class QRect;
class QWidget;

namespace krgui {

enum class RowTint { None, HasSelectors, IsSelector };

/// A row as it is to be painted.
struct GridRow {
  RowGeometry geometry;
  QString name;                   ///< One line.
  QString value;                  ///< One line; empty for a category and where an editor covers it.
  std::optional<TextMatch> match; ///< What of the name was searched for.
  RowTint tint = RowTint::None;
  bool isCategory = false;
  bool hasGlyph = false; ///< A category has children.
  bool isOpen = false;   ///< They are shown.
  bool isSelected = false;
  bool isEditable = false;
  bool isBold = false;
  bool hasError = false;
};

/// How all rows of a grid are painted.
struct GridLook {
  GridColours colours;
  QFont font;
  QPixmap errorIcon;   ///< 16 x 16, in device-independent pixels.
  QPixmap closedGlyph; ///< 9 x 9.
  QPixmap openGlyph;
  Qt::LayoutDirection direction = Qt::LeftToRight;
  bool hasFocus = false;
};

/// As a widget's palette, font, direction and screen want it.
GridLook MakeGridLook(const QWidget& aWidget, bool aHasFocus);

class GridPainter {
public:
  explicit GridPainter(GridLook aLook);

  void Paint(QPainter& aPainter, const GridRow& aRow) const;
  /// What stands in a grid of this size that has no rows.
  void PaintEmpty(QPainter& aPainter, const QRect& aGrid) const;
  /// How many characters of a text can be seen in so many pixels: longer texts are cut before they are measured.
  static int GetMostCharacters(int aWidth) { return aWidth > 0 ? aWidth + 1 : 1; }

private:
  void PaintCategory(QPainter& aPainter, const GridRow& aRow) const;
  void PaintFeature(QPainter& aPainter, const GridRow& aRow) const;
  void PaintLines(QPainter& aPainter, const GridRow& aRow) const;
  void PaintName(QPainter& aPainter, const GridRow& aRow, const QColor& aGround) const;
  void PaintText(QPainter& aPainter, const QRect& aRect, const QString& aText,
                 const std::optional<TextMatch>& aMatch = std::nullopt) const;
  QTextLayout::FormatRange MakeMatchFormat(const TextMatch& aMatch, const QString& aText, const QColor& aPen) const;
  QColor ChooseValueColour(const GridRow& aRow, const QColor& aGround) const;
  QColor FindGround(const GridRow& aRow) const;
  /// A rectangle of the row where it is on the screen, in either layout direction.
  QRect Place(const GridRow& aRow, const GridRect& aRect) const;

  GridLook mLook;
  QFont mBoldFont;
};

} // namespace krgui
