#pragma once
// Draws a display's frame into a picture, for whoever wants one of the window besides the screen.

#include "display/framepainter.h"

#include <QImage>

namespace krgui {

/// Thread: one at a time.
class PictureTarget final : public FrameTarget {
public:
  /// aStyle outlives the target.
  PictureTarget(const DisplayStyle& aStyle, const ScreenLook& aScreen) : mLook(aStyle, aScreen) {}

  Outcome Draw(const Frame& aFrame, Times& aTimes) override;
  /// The client area in device pixels; null when nothing was drawn.
  const QImage& GetPicture() const { return mPicture; }

private:
  const DisplayLook mLook;
  FramePainter mPainter;
  QImage mPicture;
};

} // namespace krgui
