#pragma once
// Brings a display's frames onto its drawing surface: the whole of what changed and nothing else. What a frame looks
// like is the frame painter's business, when there is one the content's.

#include "display/framepainter.h"
#include "platform/drawingsurface.h"

#include <QImage>

#include <cstdint>

namespace krgui {

/// Thread: any, one at a time, under the display lock.
class DisplayPainter final : public FrameTarget {
public:
  /// aStyle outlives the painter.
  explicit DisplayPainter(const DisplayStyle& aStyle) : mStyle(aStyle) {}

  /// Where frames go from now on; null for nowhere. Not owned.
  void SetSurface(DrawingSurface* aSurface);
  /// A paint of the window begins: its drawing is shown by it, and all of the window is sent to the screen.
  void BeginPaint(const ScreenLook& aScreen);
  /// The paint's drawing is done; gives the picture to be painted, which is null where the surface has sent it itself.
  QImage EndPaint();

  Outcome Draw(const Frame& aFrame, Times& aTimes) override;

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

  Outcome DrawPicture(const Frame& aFrame, Times& aTimes);
  bool DrawToSurface(const Frame& aFrame, Times& aTimes);
  bool Present(const Frame& aFrame, bool aIsDecorated);
  std::uint64_t FindTag(const Frame& aFrame, const DisplayLook& aLook);

  const DisplayStyle& mStyle;
  FramePainter mPainter;
  DrawingSurface* mSurface = nullptr;
  ScreenLook mScreen;
  bool mIsPainting = false;
  bool mIsWholeWanted = true; ///< The screen may hold anything.

  FramePainter::Decoration mDecoration; ///< What mTag numbers.
  std::uint64_t mTag = 0;
  std::uint64_t mScreenTag = 0; ///< Of the decoration that is on the screen; 0 with texts in it.
  Shown mShown;                 ///< What the picture holds; number 0 for nothing known.
};

} // namespace krgui
