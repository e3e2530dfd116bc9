#pragma once
// The overlay's font from its size as applications give it. Where the text goes is the painter's business.

#include <QFont>

namespace krgui {

/// The font of an overlay size: above 0 the height of a line, below 0 that of the characters, 0 the application's own
/// height; in device-independent pixels, multiplied by aPixelRatio. A face that the system lacks is substituted.
/// Needs a running QGuiApplication.
QFont MakeOverlayFont(int aSize, double aPixelRatio);

} // namespace krgui
