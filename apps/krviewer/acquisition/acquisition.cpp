#include "acquisition/acquisition.h"

#include "acquisition/expectedframes.h"
#include "acquisition/overlaytext.h"
#include "krbase/krsteadytime.h"

#include <chrono>
#include <utility>

namespace krviewer {

namespace {

constexpr std::uint32_t kRetrieveTimeoutMs = 100;
constexpr std::chrono::seconds kRetryPause{1};
constexpr int kMostReturns = 3; // A camera that keeps silent about a register streams without it.

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

// Where the connection is at fault rather than what was asked for.
bool IsConnectionTrouble(const KrResult& aResult) {
  return aResult == KrResult::Code::ConnectionLost || aResult == KrResult::Code::TimeLimitExceeded;
}

KrResult ExecuteTrigger(KrGenParameterArray& aParameters) {
  KrGenCommand* const trigger = aParameters.GetCommand("TriggerSoftware");
  if (!trigger)
    return {KrResult::Code::NotSupported,
            "Triggering the camera: it has no TriggerSoftware. Trigger it by one of its inputs."};
  if (KrResult executed = trigger->Execute(); !executed.IsOK())
    return executed;
  // Cameras take the command all the same.
  KrString source;
  KrGenParameter* const setting = aParameters.Get("TriggerSource");
  if (!setting || !setting->ToString(source).IsOK() || IsSoftwareTrigger(source))
    return {};
  return {KrResult::Code::WrongState, "Triggering the camera: its TriggerSource is " + source +
                                          ", so that it takes no trigger from here. Set TriggerSource to Software."};
}

} // namespace

Acquisition::Acquisition(KrDisplayWnd& aWindow, const KrDeviceInfo& aDevice, const AcquisitionOptions& aOptions)
    : mDeviceInfo(aDevice), mOptions(aOptions),
      mFrames("a frame sink", "krviewer", {"Acquisition::Notify", "acquisition"}),
      mPicture(aWindow, aOptions.hasTextOverlay, aOptions.newestFrame),
      mWanted(aOptions.startsAtOnce ? Wanted::Frames : Wanted::Nothing) {
  if (aOptions.sink) [[maybe_unused]]
    const KrResult registered = mFrames.Register(aOptions.sink); // It is the only one.
  mThread = std::jthread([this](std::stop_token aStop) { Run(aStop); });
}

Acquisition::~Acquisition() {
  Stop();
}

void Acquisition::Stop() {
  mThread.request_stop();
  WakeStream();
  if (mThread.joinable())
    mThread.join();
  CloseDevice();
}

AcquisitionProgress Acquisition::GetProgress() const {
  const std::optional<double> temperatureC = mThermometer.GetCelsius();
  const std::lock_guard lock(mMutex);
  const std::uint64_t now = KrGetSteadyNs(); // Not before the latest frame.
  AcquisitionProgress progress = mProgress;
  progress.temperatureC = temperatureC;
  if (!mMeter.IsStale(now)) {
    progress.framesPerSecond = mMeter.GetFramesPerSecond();
    progress.megabytesPerSecond = mMeter.GetMegabytesPerSecond();
  }
  return progress;
}

void Acquisition::SetState(AcquisitionState aState, const KrResult& aResult) {
  const std::lock_guard lock(mMutex);
  mProgress.state = aState;
  mProgress.result = aResult;
}

bool Acquisition::IsLimitReached() const {
  const std::lock_guard lock(mMutex);
  return mOptions.frameLimit != 0 && mProgress.figures.GetFrames() >= mOptions.frameLimit;
}

// A stream that runs ends by itself and says why.
void Acquisition::OnDeviceLost(KrDevice*, const KrResult& aReason) {
  {
    const std::lock_guard lock(mMutex);
    mLoss = aReason;
  }
  mChanged.notify_all();
}

void Acquisition::OnDeviceBack(KrDevice*) {
  {
    const std::lock_guard lock(mMutex);
    mIsBack = true;
  }
  mChanged.notify_all();
}

void Acquisition::Start(const RequestEnd& aThen) {
  Ask({.kind = AcquisitionRequest::Kind::Start, .work = {.then = aThen}});
}

void Acquisition::StartSingle(const RequestEnd& aThen) {
  Ask({.kind = AcquisitionRequest::Kind::StartSingle, .work = {.then = aThen}});
}

void Acquisition::StopStreaming(const RequestEnd& aThen) {
  Ask({.kind = AcquisitionRequest::Kind::StopStreaming, .work = {.then = aThen}});
}

void Acquisition::Trigger(const RequestEnd& aThen) {
  Do({.run = ExecuteTrigger, .then = aThen});
}

void Acquisition::Do(DeviceWork aWork) {
  Ask({.work = std::move(aWork)});
}

void Acquisition::SetPictureWanted(bool aIsWanted) {
  if (mPicture.SetWanted(aIsWanted) && aIsWanted)
    Ask({.kind = AcquisitionRequest::Kind::ShowLatest});
}

void Acquisition::LookAgain() {
  // A request that came just before the thread began to wait for a frame has not woken it.
  if (!mRequests.IsEmpty())
    WakeStream();
  mRequests.DeliverEnds();
}

void Acquisition::Ask(AcquisitionRequest aRequest) {
  {
    const std::lock_guard lock(mMutex); // So that it does not come between the thread's look and its wait.
    mRequests.Post(std::move(aRequest));
  }
  mChanged.notify_all();
  WakeStream();
}

void Acquisition::WakeStream() {
  const std::lock_guard lock(mWakeMutex);
  if (mWoken)
    mWoken->Cancel();
}

// Only a camera that was there before is worth waiting for; otherwise its refusal is the answer.
bool Acquisition::IsAwaited(const std::stop_token& aStop) const {
  return mHasServed && mOptions.frameLimit == 0 && !aStop.stop_requested();
}

void Acquisition::Run(std::stop_token aStop) {
  KrResult result = ServeConnection(aStop);
  while (!result.IsOK() && IsAwaited(aStop)) {
    SetState(AcquisitionState::Lost, result);
    TakeBackDevice();
    AwaitReturn(aStop);
    if (!aStop.stop_requested())
      result = ServeConnection(aStop);
  }
  // The device stays until Stop, so that what shows its parameters may do so to the end.
  const bool isFinished = result.IsOK() || aStop.stop_requested();
  mRequests.Close({KrResult::Code::ConnectionLost,
                   "Asking " + mDeviceInfo.GetDisplayID() + ": its acquisition has ended; open the camera again."});
  SetState(isFinished ? AcquisitionState::Finished : AcquisitionState::Failed, result);
}

void Acquisition::Pause(std::stop_token aStop) {
  std::unique_lock lock(mMutex);
  (void)mChanged.wait_for(lock, aStop, kRetryPause, [this] { return mLoss.has_value(); });
}

void Acquisition::AwaitReturn(std::stop_token aStop) {
  // What answers, but could not be opened or started, is tried again: its old connection may have to expire first.
  const bool isGone = mDevice && !mDevice->IsConnected();
  const auto retry = std::chrono::steady_clock::now() + kRetryPause;
  for (;;) {
    CarryOutRequests();
    std::unique_lock lock(mMutex);
    const auto isWoken = [this] { return mIsBack || !mRequests.IsEmpty(); };
    const bool hasCome =
        isGone ? mChanged.wait(lock, aStop, isWoken) : mChanged.wait_until(lock, aStop, retry, isWoken);
    if (mIsBack || !hasCome)
      return;
  }
}

KrResult Acquisition::ServeConnection(std::stop_token aStop) {
  CloseDevice();
  KrResult result = OpenDevice();
  if (!result.IsOK())
    return result;
  if (mHasServed) {
    mHostParameters.Return(*mDevice, *mStream);
    result = ReturnSettings(aStop);
  }
  if (result.IsOK() && mWanted != Wanted::Nothing)
    result = StartStream();
  const bool isRefused = !result.IsOK() && !mHasServed && mOptions.frameLimit == 0 && !IsConnectionTrouble(result);
  if (!result.IsOK() && !isRefused)
    return result;
  if (isRefused)
    mWanted = Wanted::Nothing;
  LendDevice(*mDevice, *mStream);
  mHasServed = true;
  mIsServing = true;
  SetState(mStream->IsRunning() ? AcquisitionState::Streaming : AcquisitionState::Connected, result);
  result = Serve(aStop);
  mIsServing = false;
  mThermometer.Leave();
  if (!result.IsOK()) {
    mPicture.ShowLatest(result);
    // Now, as the stream ends only when a camera that is gone has had its time to answer.
    if (IsAwaited(aStop))
      SetState(AcquisitionState::Lost, result);
  }
  StopStream(result);
  return result;
}

KrResult Acquisition::OpenDevice() {
  {
    const std::lock_guard lock(mMutex);
    mIsBack = false;
    mLoss.reset();
  }
  if (KrResult opened = KrDevice::Open(mDeviceInfo, KrDeviceAccess::Control, mDevice); !opened.IsOK())
    return opened;
  if (KrResult registered = mDevice->RegisterEventSink(this); !registered.IsOK())
    return registered;
  // A loss before the registration is not told.
  if (!mDevice->IsConnected())
    return {KrResult::Code::ConnectionLost,
            "Opening " + mDeviceInfo.GetDisplayID() + ": it was lost at once. Check its cable and its power."};
  mStream.emplace(*mDevice);
  const std::lock_guard lock(mWakeMutex);
  mWoken = &*mStream;
  return {};
}

// A camera without a description that is any good streams as it is.
KrResult Acquisition::ReturnSettings(std::stop_token aStop) {
  KrGenParameterArray* parameters = nullptr;
  if (!mDevice->GetParameters(parameters).IsOK())
    return {};
  SettingsReturned returned;
  KrResult result(KrResult::Code::TimeLimitExceeded);
  for (int attempt = 0; result == KrResult::Code::TimeLimitExceeded && attempt < kMostReturns; ++attempt) {
    if (attempt > 0)
      Pause(aStop);
    result = SettingsReturn(*parameters).Run(mKept.Get(), aStop, returned);
  }
  if (!result.IsOK() && result != KrResult::Code::TimeLimitExceeded)
    return result;
  const std::lock_guard lock(mMutex);
  mProgress.settings = std::move(returned);
  ++mProgress.returns;
  return {};
}

void Acquisition::CloseDevice() {
  mKept.Leave();
  mThermometer.Leave();
  mPayload.Leave();
  for (Loan<KrGenParameterArray>& loan : mParameters)
    loan.TakeBack();
  mHostParameters.TakeBack();
  TakeBackDevice();
  {
    const std::lock_guard lock(mWakeMutex);
    mWoken = nullptr;
  }
  mPicture.LetGo();
  mLent.reset();
  mAdapter.reset();
  mStream.reset();
  mDevice.reset();
}

// A device whose description is no good may still have ports.
void Acquisition::LendDevice(KrDevice& aDevice, KrStream& aStream) {
  mAdapter.emplace(aDevice);
  mLent.emplace(LentDevice{*mAdapter, &aStream});
  for (Loan<LentDevice>& loan : mLoans)
    loan.Lend(*mLent);
  mHostParameters.Lend(aDevice, aStream);
  KrGenParameterArray* parameters = nullptr;
  const KrResult got = aDevice.GetParameters(parameters);
  // Before anybody can change anything.
  if (got.IsOK())
    mPayload.Follow(*parameters);
  if (aStream.IsRunning())
    mPayload.NoteStart();
  if (got.IsOK())
    for (Loan<KrGenParameterArray>& loan : mParameters)
      loan.Lend(*parameters);
  if (got.IsOK() && mOptions.frameLimit == 0)
    mKept.Follow(*parameters);
  if (got.IsOK())
    mThermometer.Follow(*parameters);
  const std::lock_guard lock(mMutex);
  mProgress.parameters = got;
}

void Acquisition::TakeBackDevice() {
  for (Loan<LentDevice>& loan : mLoans)
    loan.TakeBack();
}

KrResult Acquisition::Serve(std::stop_token aStop) {
  KrResult result;
  while (result.IsOK() && !aStop.stop_requested() && !IsLimitReached()) {
    CarryOutRequests();
    RestartWhereFramesHaveGrown();
    result = mStream->IsRunning() ? TakeFrame() : AwaitRequest(aStop);
  }
  return result;
}

KrResult Acquisition::AwaitRequest(std::stop_token aStop) {
  std::unique_lock lock(mMutex);
  mChanged.wait(lock, aStop, [this] { return mLoss || !mRequests.IsEmpty(); });
  return mLoss.value_or(KrResult());
}

void Acquisition::CarryOutRequests() {
  while (const std::optional<AcquisitionRequest> request = mRequests.TakeNext())
    mRequests.End(*request, CarryOut(*request));
}

KrResult Acquisition::CarryOut(const AcquisitionRequest& aRequest) {
  switch (aRequest.kind) {
  case AcquisitionRequest::Kind::Start:
    return Want(Wanted::Frames);
  case AcquisitionRequest::Kind::StartSingle:
    return Want(Wanted::SingleFrame);
  case AcquisitionRequest::Kind::StopStreaming:
    return Want(Wanted::Nothing);
  case AcquisitionRequest::Kind::ShowLatest:
    mPicture.ShowLatest({});
    return {};
  case AcquisitionRequest::Kind::Work:
    break;
  }
  return DoWork(aRequest.work);
}

KrResult Acquisition::Want(Wanted aWanted) {
  mWanted = aWanted;
  if (!mIsServing || mStream->IsRunning() == (aWanted != Wanted::Nothing))
    return {};
  KrResult result;
  if (aWanted == Wanted::Nothing)
    StopStream({});
  else
    result = StartStream();
  SetState(mStream->IsRunning() ? AcquisitionState::Streaming : AcquisitionState::Connected, result);
  return result;
}

KrResult Acquisition::DoWork(const DeviceWork& aWork) {
  if (!mIsServing)
    return {KrResult::Code::ConnectionLost,
            "Asking " + mDeviceInfo.GetDisplayID() + ": the camera is lost. Ask again when it is back."};
  KrGenParameterArray* parameters = nullptr;
  if (KrResult got = mDevice->GetParameters(parameters); !got.IsOK())
    return got;
  const bool isPaused = aWork.isStreamStopped && mStream->IsRunning();
  if (isPaused)
    StopStream({});
  const KrResult done = aWork.run(*parameters);
  if (!isPaused)
    return done;
  const KrResult started = StartStream();
  if (started.IsOK())
    return done;
  SetState(AcquisitionState::Connected, started);
  return done.IsOK() ? started : done;
}

// What could not be started is not tried again by itself, unless the camera turns out to be lost.
KrResult Acquisition::StartStream() {
  mPicture.LetGo();
  if (KrResult started = mStream->Start(); !started.IsOK()) {
    if (mIsServing && !IsConnectionTrouble(started))
      mWanted = Wanted::Nothing;
    return started;
  }
  mPayload.NoteStart();
  mFrames.Notify([](FrameSink& aSink) { aSink.OnAcquisitionStarted(); });
  return {};
}

void Acquisition::RestartWhereFramesHaveGrown() {
  if (!mStream->IsRunning() || !mPayload.HasGrown())
    return;
  StopStream({});
  if (const KrResult started = StartStream(); !started.IsOK())
    SetState(AcquisitionState::Connected, started);
}

void Acquisition::StopStream(const KrResult& aReason) {
  if (!mStream->IsRunning())
    return;
  const KrStreamStatistics running = mStream->GetStatistics();
  mStream->Stop();
  mEndedStreams = Add(mEndedStreams, running);
  {
    const std::lock_guard lock(mMutex);
    mProgress.statistics = mEndedStreams;
    mMeter.Reset();
  }
  mFrames.Notify([&](FrameSink& aSink) { aSink.OnAcquisitionEnded(aReason); });
}

KrStreamStatistics Acquisition::CountStatistics() const {
  return mStream->IsRunning() ? Add(mEndedStreams, mStream->GetStatistics()) : mEndedStreams;
}

KrResult Acquisition::TakeFrame() {
  KrBuffer* frame = nullptr;
  const KrResult result = mStream->Retrieve(frame, kRetrieveTimeoutMs);
  // A camera that waits for its trigger sends nothing for a while, and requests end the wait.
  if (result == KrResult::Code::TimeLimitExceeded || result == KrResult::Code::Aborted)
    return {};
  if (!result.IsOK())
    return result;
  const bool isLast = mWanted == Wanted::SingleFrame && frame->GetStatus() == KrBufferStatus::Complete;
  PassOn(*frame);
  return isLast ? Want(Wanted::Nothing) : KrResult();
}

// The frame goes back to the stream when it is not shown any more.
void Acquisition::PassOn(KrBuffer& aFrame) {
  const std::uint64_t now = KrGetSteadyNs();
  const std::uint64_t frameID = aFrame.GetFrameID();
  const std::uint64_t sizeBytes = aFrame.GetAcquiredSize();
  mFrames.Notify([&](FrameSink& aSink) { aSink.OnFrame(aFrame, now); });
  const bool isShown =
      mPicture.Show(*mStream, aFrame, now, [this] { return FormatOverlay(GetMeter(), CountStatistics()); });
  if (isShown)
    mStream->CountShown();
  const KrStreamStatistics total = CountStatistics();

  const std::lock_guard lock(mMutex);
  mMeter.Add(now, sizeBytes);
  mProgress.figures.Add(now, sizeBytes);
  mProgress.statistics = total;
  if (isShown)
    mProgress.lastFrameID = frameID;
}

FrameMeter Acquisition::GetMeter() const {
  const std::lock_guard lock(mMutex);
  return mMeter;
}

} // namespace krviewer
