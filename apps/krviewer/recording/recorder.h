#pragma once
// Records a camera's frames: copies them as they come into a bounded memory, from which a thread of its own writes them
// to the disk. What the files look like is left to the folder, words and controls to the panel.

#include "acquisition/framesink.h"
#include "recording/framequeue.h"
#include "recording/recordingfolder.h"
#include "recording/recordingoptions.h"
#include "recording/recordingprogress.h"

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace krviewer {

/// One recording at a time.
///
/// It goes on through whatever happens to the camera: while that is lost or stopped its next frames are awaited, and
/// the index counts the acquisitions, as each numbers its frames anew. Frames of another size or pixel format are
/// recorded as they come. A frame that the file format cannot hold is counted as failed; a disk that takes no more ends
/// it.
///
/// Thread: OnFrame, OnAcquisitionStarted and OnAcquisitionEnded on the thread that takes the frames, which they never
/// keep for longer than a copy of a frame takes; the rest on one other.
/// Ownership: owns its thread; to be unregistered from the frames before it ends.
class Recorder : public FrameSink {
public:
  /// A steady clock in nanoseconds, which frames' arrival times do not go by.
  using Clock = std::function<std::uint64_t()>;

  explicit Recorder(Clock aClock = {});
  /// Ends at once, with what was in memory abandoned.
  ~Recorder() override;

  /// Begins; the folder is made on the recorder's thread, and the progress tells if it cannot be. WrongState while a
  /// recording is not over; InvalidInput for a folder without a name, every 0th frame, or no frame in memory.
  KrResult Start(const RecordingOptions& aOptions);
  /// Takes no more frames; those in memory are still written, which the progress tells. Nothing happens without one.
  void Stop();
  /// The same, but those in memory are abandoned; the one that is being written still is.
  void GiveUp();
  /// The same. Returns when the files are closed, which takes as long as one frame.
  void Abandon();
  /// Whether a recording is not over yet.
  bool IsBusy() const;
  RecordingProgress GetProgress() const;

  void OnFrame(const KrBuffer& aFrame, std::uint64_t aArrivalNs) override;
  void OnAcquisitionStarted() override;
  void OnAcquisitionEnded(const KrResult& aReason) override;

private:
  void Run();
  void WriteFrames(RecordingFolder& aFolder);
  std::unique_ptr<RecordedFrame> AwaitFrame();
  /// Null for a folder that could not be made.
  void Finish(RecordingFolder* aFolder);

  // What follows is done under the lock.

  std::unique_ptr<RecordedFrame> Accept(const KrBuffer& aFrame);
  void EndTaking(RecordingEnd aEnd);
  void EndByTime();
  void NoteFailure(const KrResult& aReason);
  void NoteRoom(const RecordingFolder& aFolder);
  bool NoteNoRoom(RecordingEnd aReason);
  bool NoteWritten(const KrResult& aWritten);
  void Fail(const KrResult& aReason);
  std::uint64_t GetElapsedNs() const { return mClock() - mBeginNs; }

  const Clock mClock;

  mutable std::mutex mMutex; ///< Guards everything below but the thread.
  std::condition_variable mChanged;
  RecordingOptions mOptions; ///< Changes between recordings alone, so that the recorder's thread reads it as it likes.
  FrameQueue mQueue;
  RecordingProgress mProgress; ///< Without what is filled in when it is asked for.
  std::uint64_t mBeginNs = 0;
  std::uint64_t mCandidates = 0; ///< Frames that could be recorded, of which every n-th is.
  std::uint64_t mTaken = 0;
  std::uint64_t mRun = 0;
  std::uint64_t mIncompleteBefore = 0;
  std::uint64_t mQueueFullBefore = 0;
  bool mIsCopying = false; ///< A frame is between room and queue.
  bool mIsFed = false;     ///< Known whether or not something is recorded.
  std::jthread mThread;
};

} // namespace krviewer
