#include "aravis/frameinbox.h"

#include <chrono>

namespace krtransport {

void FrameInbox::Open() {
  const std::lock_guard lock(mMutex);
  mBuffers.clear();
  mClosed = {};
  mCounts = {};
}

void FrameInbox::Close(const KrResult& aReason) {
  {
    const std::lock_guard lock(mMutex);
    mBuffers.clear();
    mClosed = aReason;
  }
  mChanged.notify_all();
}

void FrameInbox::Lend(KrBuffer& aBuffer) {
  const std::lock_guard lock(mMutex);
  aBuffer.SetStatus(KrBufferStatus::Empty);
}

void FrameInbox::Put(KrBuffer& aBuffer, const FrameDescription& aFrame) {
  {
    const std::lock_guard lock(mMutex);
    if (!mClosed.IsOK())
      return;
    DescribeFrame(aFrame, aBuffer);
    Count(aBuffer);
    mBuffers.push_back(&aBuffer);
  }
  mChanged.notify_one();
}

void FrameInbox::Count(const KrBuffer& aBuffer) {
  const KrBufferStatus status = aBuffer.GetStatus();
  if (status == KrBufferStatus::Complete) {
    ++mCounts.whole;
    mCounts.bytes += aBuffer.GetAcquiredSize();
  } else if (status == KrBufferStatus::Incomplete || status == KrBufferStatus::TooSmall) {
    ++mCounts.cutShort;
  }
}

KrResult FrameInbox::Take(KrBuffer*& aBuffer, std::uint32_t aTimeoutMs, const std::stop_token& aCancel) {
  std::unique_lock lock(mMutex);
  const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(aTimeoutMs);
  mChanged.wait_until(lock, aCancel, until, [this] { return !mBuffers.empty() || !mClosed.IsOK(); });
  if (!mClosed.IsOK())
    return mClosed;
  if (mBuffers.empty() && aCancel.stop_requested())
    return {KrResult::Code::Aborted, "Waiting for a frame was cancelled."};
  if (mBuffers.empty())
    return {KrResult::Code::TimeLimitExceeded,
            "No frame arrived within " + std::to_string(aTimeoutMs) + " milliseconds."};
  aBuffer = mBuffers.front();
  mBuffers.pop_front();
  return {};
}

FrameCounts FrameInbox::GetCounts() const {
  const std::lock_guard lock(mMutex);
  return mCounts;
}

std::size_t FrameInbox::CountFilled() const {
  const std::lock_guard lock(mMutex);
  return mBuffers.size();
}

} // namespace krtransport
