#pragma once
// The colours of the property grid, made from the palette in force so that every text can be read on what is behind it.

#include <QColor>

class QPalette;

namespace krgui {

struct GridColours {
  QColor window;
  QColor text;
  QColor greyText;
  QColor face; ///< Of category rows, lines, and the selected row of a grid without the focus.
  QColor highlight;
  QColor highlightText;
  QColor hasSelectors; ///< Behind a feature that is selected by others.
  QColor isSelector;   ///< Behind a feature that selects others.
  QColor match;        ///< Behind what was searched for.
};

/// The least contrast between a text and what is behind it.
inline constexpr double kLeastContrast = 4.5;

GridColours MakeGridColours(const QPalette& aPalette);
/// From 1 to 21, by the relative luminance of both (WCAG 2.1).
double GetContrast(const QColor& aFirst, const QColor& aSecond);
/// The colour itself where it has the least contrast to the ground, else what of it goes towards black or white until
/// it has.
QColor MakeReadable(const QColor& aColour, const QColor& aGround);

} // namespace krgui
