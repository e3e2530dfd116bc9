#include "acquisition/framepicture.h"

#include "acquisition/overlaytext.h"

#include <chrono>
#include <utility>

namespace krviewer {

namespace {

constexpr std::uint64_t kTextPeriodNs = 100'000'000;
/// A copy for the window can be had at once, or not at all, unless somebody reads the frame.
constexpr std::chrono::seconds kCopyLimit{1};

} // namespace

FramePicture::~FramePicture() {
  LetGo();
}

std::shared_ptr<const KrBuffer> FramePicture::Hold(KrStream& aStream, KrBuffer& aFrame) {
  {
    const std::lock_guard lock(mMutex);
    ++mHeld;
  }
  return {&aFrame, [this, &aStream](KrBuffer* aGivenBack) {
            // What cannot be queued any more stays out of the round, as with a stream that ends.
            [[maybe_unused]] const KrResult released = aStream.Release(aGivenBack);
            const std::lock_guard lock(mMutex);
            --mHeld;
            mGivenBack.notify_all(); // Under the lock, as this may end when the last has been given back.
          }};
}

bool FramePicture::IsAnyHeld() const {
  const std::lock_guard lock(mMutex);
  return mHeld > 0;
}

bool FramePicture::Show(KrStream& aStream, KrBuffer& aFrame, std::uint64_t aNowNs,
                        const std::function<KrString()>& aMakeText) {
  mLatest = Hold(aStream, aFrame);
  if (mNewest)
    mNewest->Take(mLatest);
  if (!mIsWanted)
    return false;
  if (mHasText && (mTextNs == 0 || aNowNs - mTextNs >= kTextPeriodNs)) {
    mWindow.SetTextOverlay(aMakeText());
    mTextNs = aNowNs;
  }
  return mWindow.DisplayHeld(mLatest, false).IsOK();
}

void FramePicture::ShowLatest(const KrResult& aReason) {
  if (!mLatest)
    return;
  if (mHasText && !aReason.IsOK())
    mWindow.SetTextOverlay(BreakIntoSentences(aReason.GetDescription()));
  // Where it was shown before it is shown again; another one cannot be, as before.
  [[maybe_unused]] const KrResult shown = mWindow.DisplayHeld(mLatest, false);
}

void FramePicture::LetGo() {
  mTextNs = 0;
  if (!IsAnyHeld())
    return;
  if (mNewest)
    mNewest->Detach();
  // An image that cannot be shown replaces none: the wait below is for that, too.
  if (mLatest) [[maybe_unused]]
    const KrResult shown = mWindow.Display(*mLatest, false);
  mLatest.reset();
  std::unique_lock lock(mMutex);
  const auto areAllBack = [this] { return mHeld == 0; };
  if (mGivenBack.wait_for(lock, kCopyLimit, areAllBack))
    return;
  lock.unlock();
  mWindow.Clear();
  lock.lock();
  mGivenBack.wait(lock, areAllBack);
}

} // namespace krviewer
