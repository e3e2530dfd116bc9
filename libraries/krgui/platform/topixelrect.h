#pragma once
// The toolkit's rectangles as the rules know them.

#include "logic/pixelrect.h"

#include <QRect>

namespace krgui {

/// Any thread.
inline PixelRect ToPixelRect(const QRect& aRect) {
  return {aRect.left(), aRect.top(), aRect.left() + aRect.width(), aRect.top() + aRect.height()};
}

} // namespace krgui
