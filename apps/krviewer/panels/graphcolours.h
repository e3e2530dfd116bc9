#pragma once
// The colours of graphs and warnings, so that they can be told apart and read on light and on dark grounds. All others
// come from the palette.

#include <QColor>
#include <QPalette>

namespace krviewer {

/// Of the values of a colour, by the letter that KrPixelValue has for it; grey, luma and unknown ones have that of
/// text. Any thread.
QColor GetComponentColour(const QPalette& aPalette, char aComponent);
/// Of what went wrong, as text or as a mark. Any thread.
QColor GetWarningColour(const QPalette& aPalette);
/// Of lines that only help to read a graph. Any thread.
QColor GetGridColour(const QPalette& aPalette);
/// Whether text of this palette stands on a dark ground. Any thread.
bool HasDarkGround(const QPalette& aPalette);

} // namespace krviewer
