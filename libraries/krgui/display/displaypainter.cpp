#include "display/displaypainter.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace krgui {

namespace {

using Clock = std::chrono::steady_clock;

/// How long a call waits for the screen, counted from its begin. As the display lock is had in the order in which it
/// was asked for, whoever was before has ended its wait by then too: this is all that a call waits for the screen,
/// however many threads draw. A paint waits less, as it is repeated soon and holds up the user and cameras.
constexpr std::chrono::milliseconds kFrameLimit{80};
constexpr std::chrono::milliseconds kPaintLimit{20};

/// What is left of a limit that counts from the call's begin.
std::chrono::milliseconds FindRest(std::chrono::milliseconds aLimit, Clock::time_point aCallBegin) {
  const auto rest = std::chrono::duration_cast<std::chrono::milliseconds>(aCallBegin + aLimit - Clock::now());
  return std::clamp(rest, std::chrono::milliseconds(0), aLimit);
}

} // namespace

void DisplayPainter::SetSurface(DrawingSurface* aSurface) {
  mSurface = aSurface;
  mIsWholeWanted = true;
  mShown = {};
}

bool DisplayPainter::IsDrawable(const Frame& aFrame) const {
  return mSurface != nullptr && !aFrame.view.clientRect.IsEmpty();
}

FrameTarget::Outcome DisplayPainter::Draw(const Frame& aFrame, Times& aTimes) {
  if (!IsDrawable(aFrame))
    return Outcome::Deferred;
  const bool isDrawn = DrawWithin(aFrame, kFrameLimit, aTimes);
  if (IsPictureKind())
    return Outcome::Deferred; // Whether there is a picture now or not, a paint is needed.
  return isDrawn ? Outcome::Shown : Outcome::Dropped;
}

FrameTarget::Outcome DisplayPainter::Paint(const Frame& aFrame, Times& aTimes) {
  mPicture = {};
  if (!IsDrawable(aFrame))
    return Outcome::Deferred;
  mIsWholeWanted = true;
  if (!DrawWithin(aFrame, kPaintLimit, aTimes))
    return Outcome::Dropped;
  if (const QImage* picture = mSurface->GetPicture())
    mPicture = *picture;
  return Outcome::Shown;
}

bool DisplayPainter::DrawWithin(const Frame& aFrame, std::chrono::milliseconds aLimit, Times& aTimes) {
  const Clock::time_point begin = Clock::now();
  Times times;
  const bool isDrawn = IsPictureKind() ? DrawPicture(aFrame, times) : DrawToSurface(aFrame, aLimit, times);
  aTimes.conversion += times.conversion;
  aTimes.drawing += Clock::now() - begin - times.conversion;
  return isDrawn;
}

/// A picture that shows the frame already stays as it is.
bool DisplayPainter::DrawPicture(const Frame& aFrame, Times& aTimes) {
  Shown shown = {aFrame.number,      aFrame.image != nullptr, aFrame.view,      {mStyle, mScreen},
                 aFrame.overlayText, aFrame.refusalText,      aFrame.cursorText};
  if (aFrame.number != 0 && shown == mShown)
    return true;
  mShown = {};
  if (!DrawToSurface(aFrame, {}, aTimes)) // A picture is never waited for.
    return false;
  mShown = std::move(shown);
  return true;
}

bool DisplayPainter::DrawToSurface(const Frame& aFrame, std::chrono::milliseconds aLimit, Times& aTimes) {
  const PixelRect& client = aFrame.view.clientRect;
  const auto target = mSurface->Begin(client.GetWidth(), client.GetHeight(), FindRest(aLimit, aFrame.callBegin));
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
