#include "display/framepainter.h"

namespace krgui {

namespace {

using Clock = std::chrono::steady_clock;

bool Contains(const PixelRect& aOuter, const PixelRect& aInner) {
  return aInner.IsEmpty() || (aInner.left >= aOuter.left && aInner.top >= aOuter.top && aInner.right <= aOuter.right &&
                              aInner.bottom <= aOuter.bottom);
}

} // namespace

bool FramePainter::Draw(const Canvas& aCanvas, const Frame& aFrame, const DisplayLook& aLook, bool aIsDecorated,
                        FrameTarget::Times& aTimes) {
  if (aFrame.image == nullptr) {
    DrawEmpty(aCanvas, aFrame, aLook);
    return false;
  }
  if (!aIsDecorated)
    DrawDecoration(aCanvas, aFrame.view, aLook);
  const Clock::time_point begin = Clock::now();
  mRenderer.DrawImage(aCanvas, aFrame.view, *aFrame.image);
  aTimes.conversion += Clock::now() - begin;
  const bool isDecorated = Contains(aFrame.view.destinationRect, mTexts.Draw(aCanvas, aFrame, aLook));
  if (!isDecorated)
    DrawCorner(aCanvas, aFrame.view, aLook);
  return isDecorated;
}

void FramePainter::DrawEmpty(const Canvas& aCanvas, const Frame& aFrame, const DisplayLook& aLook) {
  FrameRenderer::Fill(aCanvas, aFrame.view.clientRect, aLook.backgroundColor);
  if (!aFrame.refusalText.IsEmpty())
    FrameTexts::DrawRefusal(aCanvas, aFrame, aLook);
  DrawCorner(aCanvas, aFrame.view, aLook);
}

/// What lies under the scroll bars has their colour until they are placed.
void FramePainter::DrawDecoration(const Canvas& aCanvas, const ViewArea& aView, const DisplayLook& aLook) {
  const PixelRect& client = aView.clientRect;
  const PixelRect& view = aView.viewRect;
  FrameRenderer::Fill(aCanvas, {view.right, 0, client.right, client.bottom}, aLook.screen.cornerColor);
  FrameRenderer::Fill(aCanvas, {0, view.bottom, client.right, client.bottom}, aLook.screen.cornerColor);
  FrameRenderer::DrawBands(aCanvas, aView, aLook.backgroundColor);
  DrawCorner(aCanvas, aView, aLook);
}

void FramePainter::DrawCorner(const Canvas& aCanvas, const ViewArea& aView, const DisplayLook& aLook) {
  if (!aView.cornerRect.IsEmpty())
    FrameRenderer::Fill(aCanvas, aView.cornerRect, aLook.screen.cornerColor);
}

} // namespace krgui
