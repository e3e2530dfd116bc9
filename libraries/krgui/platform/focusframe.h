#pragma once
// How flat buttons show that they have the keyboard's focus. When they do is left to them.

class QPainter;
class QPalette;
class QRect;

namespace krgui {

/// Draws a dotted frame within a button, apart from its border. Thread: user interface.
void DrawFocusFrame(QPainter& aPainter, const QRect& aButton, const QPalette& aPalette);

} // namespace krgui
