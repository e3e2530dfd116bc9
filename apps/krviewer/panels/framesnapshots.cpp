#include "panels/framesnapshots.h"

#include <utility>

namespace krviewer {

namespace {

/// At two frames a second, copying all of each costs next to nothing.
constexpr std::uint64_t kLongPauseNs = 500'000'000;

} // namespace

void FrameSnapshots::Ask(const CutoutRequest& aRequest) {
  {
    const std::lock_guard lock(mMutex);
    mRequest = aRequest;
  }
  mIsAsked = true;
}

bool FrameSnapshots::Take(Snapshot& aSnapshot) {
  const std::lock_guard lock(mMutex);
  if (!mHasReady)
    return false;
  std::swap(aSnapshot, mReady);
  mHasReady = false;
  return true;
}

void FrameSnapshots::OnFrame(const KrBuffer& aFrame, std::uint64_t aArrivalNs) {
  const std::optional<std::uint64_t> last = std::exchange(mLastArrivalNs, aArrivalNs);
  const bool isAlone = !last || aArrivalNs - *last >= kLongPauseNs;
  const IKrImage* const image = aFrame.GetImage();
  // Before the first whole frame an incomplete one is no image yet.
  if (!image || image->GetWidth() == 0 || !mIsAsked.exchange(false))
    return;
  {
    const std::lock_guard lock(mMutex);
    mCopying.request = mRequest;
  }
  mCopying.width = image->GetWidth();
  mCopying.height = image->GetHeight();
  const bool isWhole = isAlone && mCopying.request.kind != CutoutRequest::Kind::Sample;
  mCopying.cutout = PlanCutout(isWhole ? CutoutRequest{CutoutRequest::Kind::Whole} : mCopying.request, mCopying.width,
                               mCopying.height);
  mCopying.result = CopyCutout(*image, mCopying.cutout, mCopying.pixels);
  mCopying.frameID = aFrame.GetFrameID();
  mCopying.isWhole = aFrame.GetStatus() == KrBufferStatus::Complete;
  ++mCopied;
  const std::lock_guard lock(mMutex);
  std::swap(mCopying, mReady);
  mHasReady = true;
}

} // namespace krviewer
