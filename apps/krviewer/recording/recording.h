#pragma once
// One recording, shared by whoever takes the frames, whoever looks and the thread that writes, as a disk that does not
// answer may keep the last of them for ever. Which recording is the current one is left to the recorder.

#include "recording/framequeue.h"
#include "recording/recordingfolder.h"
#include "recording/recordingoptions.h"
#include "recording/recordingprogress.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>

namespace krviewer {

/// From its beginning until its files are closed, or it is left.
///
/// Thread: Take and NoteAcquisition on the thread that takes the frames, which they never keep for longer than a copy
/// of a frame takes; Write on one of its own; the rest on any.
class Recording {
public:
  /// A steady clock in nanoseconds.
  using Clock = std::function<std::uint64_t()>;

  Recording(const RecordingOptions& aOptions, Clock aClock);

  /// Takes a frame if it is to be recorded.
  void Take(const KrBuffer& aFrame, std::uint64_t aArrivalNs);
  /// The camera numbers its frames anew from now on.
  void NoteAcquisition();
  /// Makes the folder and writes until the recording is over.
  void Write();
  /// Takes no more frames; those in memory are still written.
  void Stop();
  /// The same, but those in memory are abandoned; the one that is being written still is.
  void GiveUp();
  /// The same, without waiting for that one either: the recording has failed, and once the disk answers it is given
  /// nothing more. Nothing happens where the files are closed.
  void Leave();
  bool IsBusy() const;
  /// Counts the bytes of frames' files as they get on, within a file, too.
  std::uint64_t GetBytesDone() const { return mBytesDone; }
  /// Whether the camera streams is left to who knows.
  RecordingProgress GetProgress() const;

private:
  void WriteFrames(RecordingFolder& aFolder);
  std::unique_ptr<RecordedFrame> AwaitFrame();
  /// Null for a folder that could not be made.
  void Finish(RecordingFolder* aFolder);

  // What follows is done under the lock.

  std::unique_ptr<RecordedFrame> Accept(const KrBuffer& aFrame);
  /// Whether nobody waits for the files any more.
  bool IsOver() const { return mProgress.state == RecordingState::Ended; }
  void EndTaking(RecordingEnd aEnd);
  void EndByTime();
  void NoteFailure(const KrResult& aReason);
  void NoteRoom(const RecordingFolder& aFolder);
  bool NoteNoRoom(RecordingEnd aReason);
  bool NoteWritten(const KrResult& aWritten);
  void Fail(const KrResult& aReason);
  std::uint64_t GetElapsedNs() const { return mClock() - mBeginNs; }

  const Clock mClock;
  const RecordingOptions mOptions;
  const std::uint64_t mBeginNs;
  std::atomic<std::uint64_t> mBytesDone = 0;

  mutable std::mutex mMutex; ///< Guards everything below.
  std::condition_variable mChanged;
  FrameQueue mQueue;
  RecordingProgress mProgress;   ///< Without what is filled in when it is asked for.
  std::uint64_t mCandidates = 0; ///< Frames that could be recorded, of which every n-th is.
  std::uint64_t mTaken = 0;
  std::uint64_t mRun = 1;
  std::uint64_t mIncompleteBefore = 0;
  std::uint64_t mQueueFullBefore = 0;
  bool mIsCopying = false; ///< A frame is between room and queue.
  bool mIsWriting = false; ///< One is between queue and disk.
};

} // namespace krviewer
