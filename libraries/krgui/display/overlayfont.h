#pragma once
// The overlay's font from its size as applications give it. Where the text goes is the painter's business.

#include <QFont>

namespace krgui {

/// The pixel size of an overlay's font: above 0 aSize is the height of a line, below 0 that of the characters, in
/// device-independent pixels, multiplied by aPixelRatio; for 0 a line is aDefaultLineHeight device pixels high.
/// Measures, which takes a while.
///
/// Thread: any, while there is an application object.
int FindOverlayPixelSize(int aSize, double aPixelRatio, double aDefaultLineHeight);

/// The overlay's face; one that the system lacks is substituted. A font is not to be shared by threads: each drawing
/// makes its own, which costs little.
QFont MakeOverlayFont(int aPixelSize);

} // namespace krgui
