#include "display/displaypainter.h"

#include <chrono>
#include <utility>

namespace krgui {

namespace {

using Clock = std::chrono::steady_clock;

/// How long a frame waits for the screen; a camera is never held up for longer.
constexpr std::chrono::milliseconds kScreenLimit{100};

} // namespace

void DisplayPainter::SetSurface(DrawingSurface* aSurface) {
  mSurface = aSurface;
  mIsWholeWanted = true;
  mShown = {};
}

void DisplayPainter::BeginPaint(const ScreenLook& aScreen) {
  mScreen = aScreen;
  mIsPainting = true;
  mIsWholeWanted = true;
}

QImage DisplayPainter::EndPaint() {
  mIsPainting = false;
  const QImage* picture = mSurface == nullptr ? nullptr : mSurface->GetPicture();
  return picture == nullptr ? QImage() : *picture;
}

FrameTarget::Outcome DisplayPainter::Draw(const Frame& aFrame, Times& aTimes) {
  if (mSurface == nullptr || aFrame.view.clientRect.IsEmpty())
    return Outcome::Deferred;
  const Clock::time_point begin = Clock::now();
  Times times;
  const Outcome outcome = mSurface->GetKind() == SurfaceKind::Invalidation ? DrawPicture(aFrame, times)
                          : DrawToSurface(aFrame, times)                   ? Outcome::Shown
                                                                           : Outcome::Dropped;
  aTimes.conversion += times.conversion;
  aTimes.drawing += Clock::now() - begin - times.conversion;
  return outcome;
}

/// A picture that shows the frame already is painted as it is.
FrameTarget::Outcome DisplayPainter::DrawPicture(const Frame& aFrame, Times& aTimes) {
  const Outcome painted = mIsPainting ? Outcome::Shown : Outcome::Deferred;
  Shown shown = {aFrame.number,      aFrame.image != nullptr, aFrame.view,      {mStyle, mScreen},
                 aFrame.overlayText, aFrame.refusalText,      aFrame.cursorText};
  if (aFrame.number != 0 && shown == mShown)
    return painted;
  mShown = {};
  if (!DrawToSurface(aFrame, aTimes))
    return Outcome::Deferred;
  mShown = std::move(shown);
  return painted;
}

bool DisplayPainter::DrawToSurface(const Frame& aFrame, Times& aTimes) {
  const PixelRect& client = aFrame.view.clientRect;
  const auto target = mSurface->Begin(client.GetWidth(), client.GetHeight(), kScreenLimit);
  if (!target)
    return false;
  const DisplayLook look(mStyle, mScreen);
  const bool isDecorated = target->contentTag == FindTag(aFrame, look);
  return Present(aFrame, mPainter.Draw(target->canvas, aFrame, look, isDecorated, aTimes));
}

/// Sends the smallest part that makes the screen right.
bool DisplayPainter::Present(const Frame& aFrame, bool aIsDecorated) {
  const bool isWhole = mIsWholeWanted || !aIsDecorated || mScreenTag != mTag;
  const std::uint64_t tag = aIsDecorated ? mTag : 0;
  const bool isSent = mSurface->Present(isWhole ? aFrame.view.clientRect : aFrame.view.destinationRect, tag);
  mScreenTag = isSent ? tag : 0;
  mIsWholeWanted = !isSent;
  return isSent;
}

/// The number of the decoration that a frame has: another one than before has another number.
std::uint64_t DisplayPainter::FindTag(const Frame& aFrame, const DisplayLook& aLook) {
  if (const FramePainter::Decoration decoration(aFrame.view, aLook); mTag == 0 || decoration != mDecoration) {
    mDecoration = decoration;
    ++mTag;
  }
  return mTag;
}

} // namespace krgui
