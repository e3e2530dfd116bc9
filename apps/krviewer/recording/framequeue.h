#pragma once
// The memory between a camera, which does not wait, and a disk, which may: copies of frames in the order in which they
// came, bounded in frames and in bytes. Who waits for whom, and the lock around it, are left to the recorder.

#include "recording/recordedframe.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

namespace krviewer {

/// Memory of frames that were written is used again for the next ones of the same size.
///
/// Thread: one at a time. Ownership: owns the frames in it; those handed out are to be given back.
class FrameQueue {
public:
  /// Drops all frames, and says what the next ones may take in all, those handed out included. One frame is always
  /// allowed.
  void Reset(std::uint64_t aMostBytes, std::uint64_t aMostFrames);

  /// Room for so many bytes, more than 0; null when that is more than allowed now, or there is no memory.
  std::unique_ptr<RecordedFrame> TakeRoom(std::size_t aBytes);
  /// Appends a frame whose room was taken.
  void Push(std::unique_ptr<RecordedFrame> aFrame);
  /// Takes the oldest frame out; null when there is none.
  std::unique_ptr<RecordedFrame> Pop();
  /// Takes back room that is not needed any more.
  void GiveBack(std::unique_ptr<RecordedFrame> aFrame);
  /// Drops the frames that wait and the memory kept for others; gives the number of those that waited.
  std::uint64_t Clear();

  bool IsEmpty() const { return mWaiting.empty(); }
  /// Frames taken and not given back, and their bytes.
  std::uint64_t GetFrames() const { return mFrames; }
  std::uint64_t GetBytes() const { return mBytes; }

private:
  std::unique_ptr<RecordedFrame> FindFree(std::size_t aBytes);

  std::uint64_t mMostBytes = 0;
  std::uint64_t mMostFrames = 0;
  std::uint64_t mFrames = 0; ///< In use.
  std::uint64_t mBytes = 0;  ///< The same.
  std::deque<std::unique_ptr<RecordedFrame>> mWaiting;
  std::vector<std::unique_ptr<RecordedFrame>> mFree; ///< All of one size.
};

} // namespace krviewer
