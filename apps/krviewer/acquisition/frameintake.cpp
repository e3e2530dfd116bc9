#include "acquisition/frameintake.h"

#include "acquisition/overlaytext.h"
#include "krbase/krsteadytime.h"

namespace krviewer {

namespace {

constexpr std::uint32_t kRetrieveTimeoutMs = 100;

KrStreamStatistics Add(const KrStreamStatistics& aFirst, const KrStreamStatistics& aSecond) {
  return {.received = aFirst.received + aSecond.received,
          .incomplete = aFirst.incomplete + aSecond.incomplete,
          .missingPackets = aFirst.missingPackets + aSecond.missingPackets,
          .resentPackets = aFirst.resentPackets + aSecond.resentPackets,
          .discarded = aFirst.discarded + aSecond.discarded,
          .bytes = aFirst.bytes + aSecond.bytes,
          .missingFrames = aFirst.missingFrames + aSecond.missingFrames,
          .shown = aFirst.shown + aSecond.shown};
}

} // namespace

FrameIntake::FrameIntake(KrDisplayWnd& aWindow, bool aHasText, NewestFrame* aNewest)
    : mSinks("a frame sink", "krviewer", {"Acquisition::Notify", "acquisition"}), mPicture(aWindow, aHasText, aNewest) {
}

void FrameIntake::Open(KrDevice& aDevice) {
  mStream.emplace(aDevice);
  const std::lock_guard lock(mWakeMutex);
  mWoken = &*mStream;
}

void FrameIntake::Close() {
  {
    const std::lock_guard lock(mWakeMutex);
    mWoken = nullptr;
  }
  mPicture.LetGo();
  mStream.reset();
}

void FrameIntake::Wake() {
  const std::lock_guard lock(mWakeMutex);
  if (mWoken)
    mWoken->Cancel();
}

KrResult FrameIntake::Start() {
  mPicture.LetGo();
  if (KrResult started = mStream->Start(); !started.IsOK())
    return started;
  mPayload.NoteStart();
  mSinks.Notify([](FrameSink& aSink) { aSink.OnAcquisitionStarted(); });
  return {};
}

void FrameIntake::Stop(const KrResult& aReason) {
  if (!IsRunning())
    return;
  const KrStreamStatistics running = mStream->GetStatistics();
  mStream->Stop();
  mEnded = Add(mEnded, running);
  {
    const std::lock_guard lock(mMutex);
    mStatistics = mEnded;
    mMeter.Reset();
  }
  mSinks.Notify([&](FrameSink& aSink) { aSink.OnAcquisitionEnded(aReason); });
}

KrResult FrameIntake::Take(bool& aIsWhole) {
  aIsWhole = false;
  KrBuffer* frame = nullptr;
  const KrResult result = mStream->Retrieve(frame, kRetrieveTimeoutMs);
  // A camera that waits for its trigger sends nothing for a while, and requests end the wait.
  if (result == KrResult::Code::TimeLimitExceeded || result == KrResult::Code::Aborted)
    return {};
  if (!result.IsOK())
    return result;
  aIsWhole = frame->GetStatus() == KrBufferStatus::Complete;
  PassOn(*frame);
  return {};
}

// The frame goes back to the stream when it is not shown any more.
void FrameIntake::PassOn(KrBuffer& aFrame) {
  const std::uint64_t now = KrGetSteadyNs();
  const std::uint64_t frameID = aFrame.GetFrameID();
  const std::uint64_t sizeBytes = aFrame.GetAcquiredSize();
  mSinks.Notify([&](FrameSink& aSink) { aSink.OnFrame(aFrame, now); });
  const bool isShown =
      mPicture.Show(*mStream, aFrame, now, [this] { return FormatOverlay(GetMeter(), CountStatistics()); });
  if (isShown)
    mStream->CountShown();
  const KrStreamStatistics total = CountStatistics();

  const std::lock_guard lock(mMutex);
  mMeter.Add(now, sizeBytes);
  mFigures.Add(now, sizeBytes);
  mStatistics = total;
  if (isShown)
    mLastFrameID = frameID;
}

FrameMeter FrameIntake::GetMeter() const {
  const std::lock_guard lock(mMutex);
  return mMeter;
}

KrStreamStatistics FrameIntake::CountStatistics() const {
  return IsRunning() ? Add(mEnded, mStream->GetStatistics()) : mEnded;
}

std::uint64_t FrameIntake::CountFrames() const {
  const std::lock_guard lock(mMutex);
  return mFigures.GetFrames();
}

void FrameIntake::AddTo(AcquisitionProgress& aProgress) const {
  const std::lock_guard lock(mMutex);
  const std::uint64_t now = KrGetSteadyNs(); // Not before the latest frame.
  aProgress.figures = mFigures;
  aProgress.statistics = mStatistics;
  aProgress.lastFrameID = mLastFrameID;
  if (mMeter.IsStale(now))
    return;
  aProgress.framesPerSecond = mMeter.GetFramesPerSecond();
  aProgress.megabytesPerSecond = mMeter.GetMegabytesPerSecond();
}

} // namespace krviewer
