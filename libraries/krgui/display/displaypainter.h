#pragma once
// Draws a display window's frame with a painter: background, image, overlay. It keeps what the next drawing can use
// again: the scaled image's memory and the overlay's font.

#include "logic/display/displaycontent.h"
#include "logic/display/nearestscaler.h"

#include <QFont>
#include <QImage>

class QPainter;

namespace krgui {

/// Draws in device pixels, whatever the screen's pixel ratio.
///
/// Thread: user interface.
class DisplayPainter {
public:
  /// Gets ready for a style and a pixel ratio; before the display lock is taken, as making a font may take a while.
  void Prepare(const DisplayStyle& aStyle, double aPixelRatio);
  /// Fills the client area: the background alone without an image; otherwise bands, image and overlay. aPainter's unit
  /// is the device pixel. Call it under the display lock, from DisplayContent::Paint.
  void Draw(QPainter& aPainter, const DisplayContent::Frame& aFrame);

private:
  void DrawImage(QPainter& aPainter, const IKrImage& aImage, const ViewArea& aView);
  void DrawOverlay(QPainter& aPainter, const DisplayContent::Frame& aFrame) const;

  NearestScaler mScaler;
  QImage mScaled;
  QFont mFont;
  int mFontSize = 0;
  double mPixelRatio = 0; ///< 0 until the first use makes the font.
  ColorRef mBackground = 0;
  ColorRef mOverlayColor = 0;
  double mOffsetX = 0; ///< Device pixels.
  double mOffsetY = 0; ///< Device pixels.
};

} // namespace krgui
