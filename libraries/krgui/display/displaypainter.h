#pragma once
// Brings a display's frames onto its drawing surface: the whole of what changed and nothing else. What a frame looks
// like is the frame painter's business, when there is one the content's.

#include "display/framepainter.h"
#include "platform/drawingsurface.h"

#include <QImage>

#include <chrono>
#include <cstdint>
#include <utility>

namespace krgui {

/// Thread: any, one at a time, under the display lock.
class DisplayPainter final : public FrameTarget {
public:
  /// aStyle outlives the painter.
  explicit DisplayPainter(const DisplayStyle& aStyle) : mStyle(aStyle) {}

  /// Where frames go from now on; null for nowhere. Not owned.
  void SetSurface(DrawingSurface* aSurface);
  /// Frames look so from now on.
  void SetScreen(const ScreenLook& aScreen) { mScreen = aScreen; }

  Outcome Draw(const Frame& aFrame, Times& aTimes) override;
  /// Sends all of the window to the screen or, where the surface cannot, leaves the picture to be painted.
  Outcome Paint(const Frame& aFrame, Times& aTimes) override;
  /// What the last Paint left, once; null where nothing was drawn, or the surface has sent it itself. For the thread
  /// that paints, without the lock.
  QImage TakePicture() { return std::exchange(mPicture, {}); }

private:
  struct Shown {
    std::uint64_t frameNumber = 0;
    bool hasImage = false;
    ViewArea view;
    DisplayLook look;
    KrString overlayText;
    KrString refusalText;
    KrString cursorText;
    friend bool operator==(const Shown&, const Shown&) = default;
  };

  bool IsDrawable(const Frame& aFrame) const;
  bool IsPictureKind() const { return mSurface->GetKind() == SurfaceKind::Invalidation; }
  bool DrawWithin(const Frame& aFrame, std::chrono::milliseconds aLimit, Times& aTimes);
  bool DrawPicture(const Frame& aFrame, Times& aTimes);
  bool DrawToSurface(const Frame& aFrame, std::chrono::milliseconds aLimit, Times& aTimes);
  bool Present(const Frame& aFrame, bool aIsDecorated);
  std::uint64_t FindTag(const Frame& aFrame, const DisplayLook& aLook);

  const DisplayStyle& mStyle;
  FramePainter mPainter;
  DrawingSurface* mSurface = nullptr;
  ScreenLook mScreen;
  bool mIsWholeWanted = true; ///< The screen may hold anything.

  FramePainter::Decoration mDecoration; ///< What mTag numbers.
  std::uint64_t mTag = 0;
  std::uint64_t mScreenTag = 0; ///< Of the decoration that is on the screen; 0 with texts in it.
  Shown mShown;                 ///< What the surface's picture holds; number 0 for nothing known.
  QImage mPicture;              ///< What a paint is to paint; not used but by the thread that paints.
};

} // namespace krgui
