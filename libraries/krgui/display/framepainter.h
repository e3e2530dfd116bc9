#pragma once
// Draws a whole frame, or only what changed of it, into the pixels of a client area. Where these come from and where
// they go is left to the targets.

#include "display/displaylook.h"
#include "display/frametexts.h"
#include "logic/display/framerenderer.h"
#include "logic/display/frametarget.h"

namespace krgui {

/// Thread: any, one at a time.
class FramePainter {
public:
  /// What a canvas shows besides image and texts; a canvas with the same may be drawn over.
  struct Decoration {
    Decoration() = default;
    Decoration(const ViewArea& aView, const DisplayLook& aLook)
        : clientRect(aView.clientRect), viewRect(aView.viewRect), destinationRect(aView.destinationRect),
          cornerRect(aView.cornerRect), backgroundColor(aLook.backgroundColor), cornerColor(aLook.screen.cornerColor) {}

    PixelRect clientRect;
    PixelRect viewRect;
    PixelRect destinationRect;
    PixelRect cornerRect;
    std::uint32_t backgroundColor = 0;
    std::uint32_t cornerColor = 0;
    friend bool operator==(const Decoration&, const Decoration&) = default;
  };

  /// Draws a frame. With aIsDecorated the canvas has the frame's decoration already, which is then not drawn again.
  /// Returns whether nothing but the decoration lies outside the destination now: texts may.
  bool Draw(const Canvas& aCanvas, const Frame& aFrame, const DisplayLook& aLook, bool aIsDecorated,
            FrameTarget::Times& aTimes);

private:
  static void DrawEmpty(const Canvas& aCanvas, const Frame& aFrame, const DisplayLook& aLook);
  static void DrawDecoration(const Canvas& aCanvas, const ViewArea& aView, const DisplayLook& aLook);
  static void DrawCorner(const Canvas& aCanvas, const ViewArea& aView, const DisplayLook& aLook);

  FrameRenderer mRenderer;
  FrameTexts mTexts;
};

} // namespace krgui
