#pragma once
// Records a camera's frames: copies them as they come into a bounded memory, from which a thread of its own writes them
// to the disk. What is recorded and how far it has come is the recording's, words and controls are left to the panel.

#include "acquisition/framesink.h"
#include "recording/recording.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

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
/// Ownership: owns its thread, but for one that was left; to be unregistered from the frames before it ends.
class Recorder : public FrameSink {
public:
  /// Which frames' arrival times do not go by.
  using Clock = Recording::Clock;

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
  /// Ends a recording whose disk does not answer, without waiting for that: it has failed, and another may be started.
  /// Once the disk answers it is given nothing more. Nothing happens to one that is over.
  void Leave();
  /// Whether a recording is not over yet.
  bool IsBusy() const;
  RecordingProgress GetProgress() const;
  /// What has come of the recordings that have ended since the last call.
  std::vector<RecordingProgress> TakeEnded();
  /// Whether there is a recording that TakeEnded has not given: it is not over, or has been since the last call.
  bool HasUntaken() const { return mIsUntaken; }
  /// Changes as the files of a recording get on, within a file, too.
  std::uint64_t GetBytesDone() const;

  void OnFrame(const KrBuffer& aFrame, std::uint64_t aArrivalNs) override;
  void OnAcquisitionStarted() override;
  void OnAcquisitionEnded(const KrResult& aReason) override;

private:
  std::shared_ptr<Recording> Get() const;
  /// Gives the recording, too.
  std::shared_ptr<Recording> SetFed(bool aIsFed);

  const Clock mClock;

  mutable std::mutex mMutex;             ///< Guards both.
  std::shared_ptr<Recording> mRecording; ///< The last one; null before the first.
  bool mIsFed = false;                   ///< The camera streams, whether or not something is recorded.
  std::thread mThread;
  std::vector<RecordingProgress> mEnded; ///< Not taken, of recordings before the last one.
  bool mIsUntaken = false;               ///< The last one was not.
};

} // namespace krviewer
