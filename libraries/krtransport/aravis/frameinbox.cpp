#include "aravis/frameinbox.h"

#include <chrono>
#include <utility>

namespace krtransport {

void FrameInbox::Open() {
  const std::lock_guard lock(mMutex);
  mFrames.clear();
  mClosed = {};
  mWholeBytes = 0;
}

void FrameInbox::Close(const KrResult& aReason) {
  {
    const std::lock_guard lock(mMutex);
    mFrames.clear();
    mClosed = aReason;
  }
  mChanged.notify_all();
}

void FrameInbox::Put(GObjectPointer<ArvBuffer> aFrame) {
  {
    const std::lock_guard lock(mMutex);
    if (!mClosed.IsOK())
      return;
    std::size_t size = 0;
    arv_buffer_get_data(aFrame.get(), &size);
    if (arv_buffer_get_status(aFrame.get()) == ARV_BUFFER_STATUS_SUCCESS)
      mWholeBytes += size;
    mFrames.push_back(std::move(aFrame));
  }
  mChanged.notify_one();
}

KrResult FrameInbox::Take(GObjectPointer<ArvBuffer>& aFrame, std::uint32_t aTimeoutMs, const std::stop_token& aCancel) {
  std::unique_lock lock(mMutex);
  const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(aTimeoutMs);
  mChanged.wait_until(lock, aCancel, until, [this] { return !mFrames.empty() || !mClosed.IsOK(); });
  if (!mClosed.IsOK())
    return mClosed;
  if (mFrames.empty() && aCancel.stop_requested())
    return {KrResult::Code::Aborted, "Waiting for a frame was cancelled."};
  if (mFrames.empty())
    return {KrResult::Code::TimeLimitExceeded,
            "No frame arrived within " + std::to_string(aTimeoutMs) + " milliseconds."};
  aFrame = std::move(mFrames.front());
  mFrames.pop_front();
  return {};
}

std::uint64_t FrameInbox::GetWholeBytes() const {
  const std::lock_guard lock(mMutex);
  return mWholeBytes;
}

} // namespace krtransport
