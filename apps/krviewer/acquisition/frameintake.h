#pragma once
// The stream of an open camera and its frames: started and stopped, taken, shown, told to whoever hears of them, and
// counted over one stream after the other. When it streams is left to the acquisition.

#include "acquisition/acquisitionprogress.h"
#include "acquisition/framemeter.h"
#include "acquisition/framepicture.h"
#include "acquisition/framesink.h"
#include "acquisition/payloadwatch.h"
#include "krdevice/krstream.h"

#include <cstdint>
#include <mutex>
#include <optional>

namespace krviewer {

/// Thread: the one that opens and closes the device; AddTo, CountFrames, Wake and SetWanted of the picture any.
/// Ownership: borrows the window, the newest frame's keeper, and the device from Open to Close.
class FrameIntake {
public:
  /// As FramePicture.
  FrameIntake(KrDisplayWnd& aWindow, bool aHasText, NewestFrame* aNewest);

  /// Gets ready to stream from a device; nothing streams yet.
  void Open(KrDevice& aDevice);
  /// Lets go of the stream, which does not run, and of its frames' memory.
  void Close();
  /// The stream of the device, from Open to Close.
  KrStream& GetStream() { return *mStream; }
  bool IsRunning() const { return mStream && mStream->IsRunning(); }

  KrResult Start();
  /// Nothing where none runs.
  void Stop(const KrResult& aReason);
  /// Takes the next frame and passes it on; aIsWhole says whether one came, and whole. OK where none came for a while,
  /// or Wake ended the wait.
  KrResult Take(bool& aIsWhole);
  /// Ends the wait for a frame that runs.
  void Wake();

  /// Sees from now on, until Close, when frames outgrow the buffers.
  void FollowSize(KrGenParameterArray& aParameters) { mPayload.Follow(aParameters); }
  void NoteStart() { mPayload.NoteStart(); }
  /// Whether frames have become larger than the buffers of the stream, which runs.
  bool HasOutgrown() { return IsRunning() && mPayload.HasGrown(); }
  /// No change of what is followed is heard of any more.
  void LeaveSize() { mPayload.Leave(); }

  FramePicture& GetPicture() { return mPicture; }
  FrameSinks& GetSinks() { return mSinks; }
  /// Those that came, of all streams. Any thread.
  std::uint64_t CountFrames() const;
  /// Figures, counters, rates and the frame shown last.
  void AddTo(AcquisitionProgress& aProgress) const;

private:
  void PassOn(KrBuffer& aFrame);
  FrameMeter GetMeter() const;
  KrStreamStatistics CountStatistics() const;

  FrameSinks mSinks;
  FramePicture mPicture;
  PayloadWatch mPayload;
  std::optional<KrStream> mStream; ///< Stays, running or not, as long as the device is open.
  KrStreamStatistics mEnded;       ///< The counters of the streams that are over.

  std::mutex mWakeMutex;      ///< Guards mWoken, and is held while that is woken, which waits for nothing.
  KrStream* mWoken = nullptr; ///< The stream whose waits are ended.

  mutable std::mutex mMutex; ///< Guards the members from here on.
  krapps::StreamFigures mFigures;
  KrStreamStatistics mStatistics;
  std::uint64_t mLastFrameID = 0;
  FrameMeter mMeter;
};

} // namespace krviewer
