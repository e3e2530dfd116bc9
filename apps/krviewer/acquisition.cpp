#include "acquisition.h"

#include "plaintext.h"

#include <chrono>
#include <string>
#include <utility>

namespace krviewer {

namespace {

constexpr std::uint32_t kRetrieveTimeoutMs = 500;
constexpr std::chrono::seconds kRetryPause{1};

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

std::uint64_t GetSteadyNs() {
  return static_cast<std::uint64_t>(
      std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now().time_since_epoch())
          .count());
}

} // namespace

KrString FormatOverlay(const FrameMeter& aMeter, const KrStreamStatistics& aStatistics) {
  return krapps::FormatFixed(aMeter.GetFramesPerSecond(), 1) + " frames/s   " +
         krapps::FormatFixed(aMeter.GetMegabytesPerSecond(), 1) + " MB/s\nincomplete " +
         std::to_string(aStatistics.incomplete) + "   missing " + std::to_string(aStatistics.missingPackets) +
         "   resent " + std::to_string(aStatistics.resentPackets);
}

KrString BreakIntoSentences(const KrString& aText) {
  std::string text = aText.ToUtf8();
  for (std::size_t end = text.find(". "); end != std::string::npos; end = text.find(". ", end))
    text.replace(end, 2, ".\n");
  return text;
}

Acquisition::Acquisition(KrDisplayWnd& aWindow, const KrDeviceInfo& aDevice, std::uint64_t aFrameLimit)
    : mWindow(aWindow), mDeviceInfo(aDevice), mFrameLimit(aFrameLimit),
      mThread([this](std::stop_token aStop) { Run(aStop); }) {}

Acquisition::~Acquisition() {
  Stop();
}

void Acquisition::Stop() {
  mThread.request_stop();
  if (mThread.joinable())
    mThread.join();
  CloseDevice();
}

AcquisitionProgress Acquisition::GetProgress() const {
  const std::lock_guard lock(mMutex);
  return mProgress;
}

void Acquisition::SetState(AcquisitionState aState, const KrResult& aResult) {
  const std::lock_guard lock(mMutex);
  mProgress.state = aState;
  mProgress.result = aResult;
}

bool Acquisition::IsLimitReached() const {
  const std::lock_guard lock(mMutex);
  return mFrameLimit != 0 && mProgress.figures.GetFrames() >= mFrameLimit;
}

void Acquisition::OnDeviceLost(KrDevice*, const KrResult&) {
  // The stream ends by itself and says why.
}

void Acquisition::OnDeviceBack(KrDevice*) {
  {
    const std::lock_guard lock(mMutex);
    mIsBack = true;
  }
  mReturned.notify_all();
}

void Acquisition::AwaitReturn(std::stop_token aStop) {
  std::unique_lock lock(mMutex);
  if (mDevice && !mDevice->IsConnected())
    mReturned.wait(lock, aStop, [this] { return mIsBack; });
  else // It answers, but could not be opened or started yet: its old connection may have to expire first.
    mReturned.wait_for(lock, aStop, kRetryPause, [] { return false; });
}

// Only a camera that has streamed before is worth waiting for; otherwise its refusal is the answer.
bool Acquisition::IsAwaited(const std::stop_token& aStop) const {
  return mHasStreamed && mFrameLimit == 0 && !aStop.stop_requested();
}

void Acquisition::Run(std::stop_token aStop) {
  KrResult result = ConnectAndStream(aStop);
  while (!result.IsOK() && IsAwaited(aStop)) {
    SetState(AcquisitionState::Lost, result);
    TakeBackDevice();
    AwaitReturn(aStop);
    if (!aStop.stop_requested())
      result = ConnectAndStream(aStop);
  }
  // The device stays until Stop, so that what shows its parameters may do so to the end.
  const bool isFinished = result.IsOK() || aStop.stop_requested();
  SetState(isFinished ? AcquisitionState::Finished : AcquisitionState::Failed, result);
}

void Acquisition::CloseDevice() {
  mParameters.TakeBack();
  TakeBackDevice();
  mLent.reset();
  mAdapter.reset();
  mStream.reset();
  mDevice.reset();
}

KrResult Acquisition::ConnectAndStream(std::stop_token aStop) {
  CloseDevice();
  {
    const std::lock_guard lock(mMutex);
    mIsBack = false;
  }
  if (KrResult opened = KrDevice::Open(mDeviceInfo, KrDeviceAccess::Control, mDevice); !opened.IsOK())
    return opened;
  if (KrResult registered = mDevice->RegisterEventSink(this); !registered.IsOK())
    return registered;
  return StreamOnce(aStop, *mDevice);
}

// The stream has read the description already. A device whose description is no good may still have ports.
void Acquisition::LendDevice(KrDevice& aDevice, KrStream& aStream) {
  mAdapter.emplace(aDevice);
  mLent.emplace(LentDevice{*mAdapter, &aStream});
  for (Loan<LentDevice>& loan : mLoans)
    loan.Lend(*mLent);
  KrGenParameterArray* parameters = nullptr;
  const KrResult got = aDevice.GetParameters(parameters);
  if (got.IsOK())
    mParameters.Lend(*parameters);
  const std::lock_guard lock(mMutex);
  mProgress.parameters = got;
}

void Acquisition::TakeBackDevice() {
  for (Loan<LentDevice>& loan : mLoans)
    loan.TakeBack();
}

KrResult Acquisition::StreamOnce(std::stop_token aStop, KrDevice& aDevice) {
  KrStream& stream = mStream.emplace(aDevice);
  if (KrResult started = stream.Start(); !started.IsOK())
    return started;
  SetState(AcquisitionState::Streaming, {});
  mHasStreamed = true;
  mMeter.Reset();
  LendDevice(aDevice, stream);

  // The frame on the screen stays lent, so that it can be shown again with the reason when the camera is lost.
  KrBuffer* shown = nullptr;
  KrResult result;
  while (result.IsOK() && !aStop.stop_requested() && !IsLimitReached()) {
    KrBuffer* buffer = nullptr;
    result = stream.Retrieve(buffer, kRetrieveTimeoutMs);
    if (result == KrResult::Code::TimeLimitExceeded)
      result = {}; // A camera that waits for its trigger sends nothing for a while.
    if (!buffer)
      continue;
    const bool isShown = ShowFrame(stream, *buffer);
    KrBuffer* surplus = isShown ? std::exchange(shown, buffer) : buffer;
    if (surplus)
      result = stream.Release(surplus);
  }
  if (!result.IsOK()) {
    ShowReason(shown, result);
    // Now, as the stream ends only when a camera that is gone has had its time to answer.
    if (IsAwaited(aStop))
      SetState(AcquisitionState::Lost, result);
  }
  mEndedStreams = Add(mEndedStreams, stream.GetStatistics());
  stream.Stop();
  return result;
}

bool Acquisition::ShowFrame(KrStream& aStream, const KrBuffer& aBuffer) {
  const std::uint64_t now = GetSteadyNs();
  mMeter.Add(now, aBuffer.GetAcquiredSize());
  mWindow.SetTextOverlay(FormatOverlay(mMeter, Add(mEndedStreams, aStream.GetStatistics())));
  // A frame that cannot be shown is told in the log and, by its absence, in the picture; the stream goes on.
  const bool isShown = mWindow.Display(aBuffer, false).IsOK();
  if (isShown)
    aStream.CountShown();
  const KrStreamStatistics total = Add(mEndedStreams, aStream.GetStatistics());

  const std::lock_guard lock(mMutex);
  mProgress.figures.Add(now, aBuffer.GetAcquiredSize());
  mProgress.statistics = total;
  if (isShown)
    mProgress.lastFrameID = aBuffer.GetFrameID();
  return isShown;
}

void Acquisition::ShowReason(const KrBuffer* aBuffer, const KrResult& aReason) {
  if (!aBuffer)
    return;
  mWindow.SetTextOverlay(BreakIntoSentences(aReason.GetDescription()));
  [[maybe_unused]] const KrResult shown = mWindow.Display(*aBuffer, false); // It was shown before.
}

} // namespace krviewer
