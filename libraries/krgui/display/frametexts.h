#pragma once
// Writes a display's texts onto a frame: the application's overlay, the line about the pixel under the cursor, and why
// nothing is shown. Which of them a frame has is the content's decision.

#include "display/displaylook.h"
#include "logic/display/framerenderer.h"
#include "logic/display/frametarget.h"

namespace krgui {

/// Thread: any, one at a time.
class FrameTexts {
public:
  /// Writes the texts that a frame with an image has and returns a rectangle of the canvas around them; empty when
  /// there was nothing to write.
  PixelRect Draw(const Canvas& aCanvas, const Frame& aFrame, const DisplayLook& aLook);
  /// Writes why nothing is shown into the middle of an empty window.
  static void DrawRefusal(const Canvas& aCanvas, const Frame& aFrame, const DisplayLook& aLook);

private:
  PixelRect DrawOverlay(const Canvas& aCanvas, const Frame& aFrame, const DisplayLook& aLook);
  static PixelRect DrawCursorLine(const Canvas& aCanvas, const Frame& aFrame, const DisplayLook& aLook);

  // The font size found last, and what it was found for.
  int mPixelSize = 0; ///< 0 until the first text.
  int mOverlaySize = 0;
  double mPixelRatio = 0;
  double mLineHeight = 0;
};

} // namespace krgui
