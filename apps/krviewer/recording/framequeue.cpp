#include "recording/framequeue.h"

#include <new>
#include <utility>

namespace krviewer {

void FrameQueue::Reset(std::uint64_t aMostBytes, std::uint64_t aMostFrames) {
  mWaiting.clear();
  mFree.clear();
  mFrames = 0;
  mBytes = 0;
  mMostBytes = aMostBytes;
  mMostFrames = aMostFrames;
}

// What was kept for frames of another size makes room for those that come now.
std::unique_ptr<RecordedFrame> FrameQueue::FindFree(std::size_t aBytes) {
  if (!mFree.empty() && mFree.back()->room != aBytes)
    mFree.clear();
  if (mFree.empty())
    return nullptr;
  std::unique_ptr<RecordedFrame> frame = std::move(mFree.back());
  mFree.pop_back();
  return frame;
}

std::unique_ptr<RecordedFrame> FrameQueue::TakeRoom(std::size_t aBytes) {
  const bool isAllowed = mFrames < mMostFrames && mBytes <= mMostBytes && aBytes <= mMostBytes - mBytes;
  if (!isAllowed && mFrames > 0)
    return nullptr;
  std::unique_ptr<RecordedFrame> frame = FindFree(aBytes);
  if (!frame) {
    frame.reset(new (std::nothrow) RecordedFrame);
    if (!frame || !frame->frame.Alloc(aBytes).IsOK())
      return nullptr;
    frame->room = aBytes;
  }
  ++mFrames;
  mBytes += aBytes;
  return frame;
}

void FrameQueue::Push(std::unique_ptr<RecordedFrame> aFrame) {
  mWaiting.push_back(std::move(aFrame));
}

std::unique_ptr<RecordedFrame> FrameQueue::Pop() {
  if (mWaiting.empty())
    return nullptr;
  std::unique_ptr<RecordedFrame> frame = std::move(mWaiting.front());
  mWaiting.pop_front();
  return frame;
}

void FrameQueue::GiveBack(std::unique_ptr<RecordedFrame> aFrame) {
  --mFrames;
  mBytes -= aFrame->room;
  if (mFree.empty() || mFree.back()->room == aFrame->room)
    mFree.push_back(std::move(aFrame));
}

std::uint64_t FrameQueue::Clear() {
  const std::uint64_t count = mWaiting.size();
  while (std::unique_ptr<RecordedFrame> frame = Pop())
    GiveBack(std::move(frame));
  mFree.clear();
  return count;
}

} // namespace krviewer
