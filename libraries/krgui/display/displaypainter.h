#pragma once
// Draws a display window's frame with a painter whose unit is the device pixel: background, image, overlay.

#include "logic/display/displaycontent.h"

#include <QFont>

class QPainter;

namespace krgui {

/// What drawing takes from the style at one moment.
struct OverlayStyle {
  QFont font;
  ColorRef color = 0;
  double offsetX = 0; ///< Device pixels.
  double offsetY = 0; ///< Device pixels.
};

/// Fills the client area: the background alone without an image; otherwise bands, image and overlay. Call it under the
/// display lock, from DisplayContent::Paint.
void DrawFrame(QPainter& aPainter, const DisplayContent::Frame& aFrame, ColorRef aBackground,
               const OverlayStyle& aOverlay);

} // namespace krgui
