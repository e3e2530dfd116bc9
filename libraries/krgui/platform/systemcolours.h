#pragma once
// The system's colours by the names that the windows' descriptions know them by, as roles of the palette in force, so
// that windows follow light and dark themes. Colours that are the browser's own are left to its painting.

#include <QColor>
#include <QPalette>

namespace krgui {

enum class SystemColour {
  ButtonFace,            ///< COLOR_BTNFACE: of dialogs, of category rows, of lines between cells.
  GradientActiveCaption, ///< COLOR_GRADIENTACTIVECAPTION: of a tool button under the mouse.
  GrayText,              ///< COLOR_GRAYTEXT: text that cannot be changed.
  Highlight,             ///< COLOR_HIGHLIGHT: behind what is selected.
  HighlightText,         ///< COLOR_HIGHLIGHTTEXT: text that is selected, or what can be read where that cannot.
  HotLight,              ///< COLOR_HOTLIGHT: the frame of a checked tool button.
  Window,                ///< COLOR_WINDOW: behind text and rows.
  WindowText,            ///< COLOR_WINDOWTEXT: text and values.
};

/// Any thread.
QColor GetSystemColour(const QPalette& aPalette, SystemColour aColour);
/// A colour of which aPercent (0 to 100) come from the first and the rest from the second. Opaque. Any thread.
QColor BlendColours(const QColor& aFirst, const QColor& aSecond, int aPercent);
/// Whether what is drawn on dialogs lies on a dark ground. Any thread.
bool IsDarkPalette(const QPalette& aPalette);

} // namespace krgui
