#pragma once
// The colours of the property grid, made from the palette in force so that every text can be read on what is behind it.

#include "platform/contrast.h"

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

GridColours MakeGridColours(const QPalette& aPalette);

} // namespace krgui
