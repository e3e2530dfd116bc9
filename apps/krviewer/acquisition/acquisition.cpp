#include "acquisition/acquisition.h"

#include "acquisition/cameraidentity.h"
#include "acquisition/returnpause.h"
#include "acquisition/settingsreturn.h"
#include "acquisition/triggercommand.h"

#include <chrono>
#include <utility>

namespace krviewer {

namespace {

constexpr int kMostReturns = 3; // A camera that keeps silent about a register streams without it.

// Where the connection is at fault rather than what was asked for.
bool IsConnectionTrouble(const KrResult& aResult) {
  return aResult == KrResult::Code::ConnectionLost || aResult == KrResult::Code::TimeLimitExceeded;
}

} // namespace

Acquisition::Acquisition(KrDisplayWnd& aWindow, CameraInfo aCamera, const AcquisitionOptions& aOptions)
    : mOptions(aOptions), mIntake(aWindow, aOptions.hasTextOverlay, aOptions.newestFrame),
      mLending(aOptions.hostSettings), mWanted(aOptions.startsAtOnce ? Wanted::Frames : Wanted::Nothing),
      mSearch([this](const CameraInfo& aSeen) { OnCameraSeen(aSeen); }) {
  mProgress.camera = std::move(aCamera);
  if (aOptions.sink) [[maybe_unused]]
    const KrResult registered = GetFrames().Register(aOptions.sink); // It is the only one.
  mThread = std::jthread([this](std::stop_token aStop) { Run(aStop); });
}

Acquisition::~Acquisition() {
  Stop();
}

void Acquisition::Stop() {
  mThread.request_stop();
  mIntake.Wake();
  if (mThread.joinable())
    mThread.join();
  mSearch.AwaitEnd();
  CloseDevice();
}

AcquisitionProgress Acquisition::GetProgress() const {
  AcquisitionProgress progress;
  {
    const std::lock_guard lock(mMutex);
    progress = mProgress;
  }
  progress.temperatureC = mLending.GetThermometer().GetCelsius();
  progress.isSlow = mLending.GetResponses().IsSlow();
  mIntake.AddTo(progress); // Behind the state, which stands on the frames.
  return progress;
}

void Acquisition::SetState(AcquisitionState aState, const KrResult& aResult) {
  const std::lock_guard lock(mMutex);
  mProgress.state = aState;
  mProgress.result = aResult;
  mProgress.wasOpened = mHasServed;
  mProgress.isRefused = mIsRefused;
}

KrString Acquisition::GetName() const {
  const std::lock_guard lock(mMutex);
  return mProgress.camera->GetDisplayID();
}

bool Acquisition::IsLimitReached() const {
  return mOptions.frameLimit != 0 && mIntake.CountFrames() >= mOptions.frameLimit;
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

void Acquisition::OnCameraSeen(const CameraInfo& aCamera) {
  {
    const std::lock_guard lock(mMutex);
    const bool canBeReached = CanBeReached(*aCamera, *mProgress.camera);
    mProgress.strayAddress = canBeReached ? KrString() : GetAddress(*aCamera);
    if (canBeReached)
      mSeen = aCamera;
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
  Do({.run = ExecuteTrigger, .isSetting = false, .then = aThen});
}

void Acquisition::Do(DeviceWork aWork) {
  Ask({.work = std::move(aWork)});
}

void Acquisition::SetPictureWanted(bool aIsWanted) {
  if (mIntake.GetPicture().SetWanted(aIsWanted) && aIsWanted)
    Ask({.kind = AcquisitionRequest::Kind::ShowLatest});
}

void Acquisition::LookAgain() {
  // A request that came just before the thread began to wait for a frame has not woken it.
  if (!mRequests.IsEmpty())
    mIntake.Wake();
  mRequests.DeliverEnds();
}

void Acquisition::Ask(AcquisitionRequest aRequest) {
  {
    const std::lock_guard lock(mMutex); // So that it does not come between the thread's look and its wait.
    mRequests.Post(std::move(aRequest));
  }
  mChanged.notify_all();
  mIntake.Wake();
}

// Only a camera that was there before is worth waiting for; otherwise its refusal is the answer.
bool Acquisition::IsAwaited(const std::stop_token& aStop) const {
  return mHasServed && mOptions.frameLimit == 0 && !aStop.stop_requested();
}

void Acquisition::Run(std::stop_token aStop) {
  KrResult result = ServeConnection(aStop);
  while (!result.IsOK() && IsAwaited(aStop)) {
    SetState(AcquisitionState::Lost, result);
    mLending.TakeBackDevice();
    mSearch.Begin(GetProgress().camera);
    AwaitReturn(result, aStop);
    if (!aStop.stop_requested())
      result = ServeConnection(aStop);
  }
  // The device stays until Stop, so that what shows its parameters may do so to the end.
  const bool isFinished = result.IsOK() || aStop.stop_requested();
  mRequests.Close(
      {KrResult::Code::ConnectionLost, "Asking " + GetName() + ": its acquisition has ended; open the camera again."});
  SetState(isFinished ? AcquisitionState::Finished : AcquisitionState::Failed, result);
}

void Acquisition::Pause(std::stop_token aStop) {
  std::unique_lock lock(mMutex);
  (void)mChanged.wait_for(lock, aStop, kRetryPause, [this] { return mLoss.has_value(); });
}

// What answers, but could not be opened or started, is tried again: its old connection may have to expire first.
void Acquisition::AwaitReturn(const KrResult& aLoss, std::stop_token aStop) {
  const auto pause = GetReturnPause(aLoss, mDevice && !mDevice->IsConnected());
  const auto retry = std::chrono::steady_clock::now() + pause.value_or(kRetryPause);
  const auto hasCome = [&] { return !IsHeld(aLoss) && (mIsBack || mSeen); };
  const auto isWoken = [&] { return hasCome() || !mRequests.IsEmpty(); };
  for (;;) {
    CarryOutRequests();
    std::unique_lock lock(mMutex);
    const bool isInTime =
        pause ? mChanged.wait_until(lock, aStop, retry, isWoken) : mChanged.wait(lock, aStop, isWoken);
    if (hasCome() || !isInTime)
      return;
  }
}

KrResult Acquisition::ServeConnection(std::stop_token aStop) {
  if (KrResult begun = BeginConnection(aStop); !begun.IsOK())
    return begun;
  const KrResult result = Serve(aStop);
  mIsServing = false;
  mLending.LeaveCamera();
  if (!result.IsOK()) {
    mIntake.GetPicture().ShowLatest(result);
    // Now, as the stream ends only when a camera that is gone has had its time to answer.
    if (IsAwaited(aStop))
      SetState(AcquisitionState::Lost, result);
  }
  mIntake.Stop(result);
  return result;
}

// Opens the camera, sets it as it was and starts its stream. One that is had for the first time and refuses to stream
// is had all the same.
KrResult Acquisition::BeginConnection(std::stop_token aStop) {
  CloseDevice();
  mIsRefused = false;
  KrResult result = OpenDevice(aStop);
  if (!result.IsOK())
    return result;
  mLending.ReturnHostParameters(*mDevice, mIntake.GetStream());
  if (mHasServed)
    result = ReturnSettings(aStop);
  if (result.IsOK() && mWanted != Wanted::Nothing)
    result = StartStream();
  if (!result.IsOK() && (mHasServed || mOptions.frameLimit != 0 || IsConnectionTrouble(result))) {
    mIsRefused = !IsConnectionTrouble(result);
    return result;
  }
  if (!result.IsOK())
    mWanted = Wanted::Nothing;
  LendDevice();
  mHasServed = true;
  mIsServing = true;
  SetState(mIntake.IsRunning() ? AcquisitionState::Streaming : AcquisitionState::Connected, result);
  return {};
}

// What does not answer where it was found may have another address since; a lost camera is looked for anyway.
KrResult Acquisition::OpenDevice(std::stop_token aStop) {
  CameraInfo camera;
  {
    const std::lock_guard lock(mMutex);
    camera = std::exchange(mSeen, nullptr);
    if (!camera)
      camera = mProgress.camera;
    mIsBack = false;
    mLoss.reset();
  }
  const KrResult opened = OpenAt(camera);
  if (opened != KrResult::Code::NotFound || mHasServed)
    return opened;
  const CameraInfo found = LookForCamera(*camera, aStop);
  if (!found || !CanBeReached(*found, *camera) || IsSameAddress(*found, *camera))
    return opened;
  return OpenAt(found);
}

KrResult Acquisition::OpenAt(const CameraInfo& aCamera) {
  if (KrResult opened = KrDevice::Open(*aCamera, KrDeviceAccess::Control, mDevice); !opened.IsOK())
    return opened;
  if (KrResult registered = mDevice->RegisterEventSink(this); !registered.IsOK())
    return registered;
  // A loss before the registration is not told.
  if (!mDevice->IsConnected())
    return {KrResult::Code::ConnectionLost,
            "Opening " + aCamera->GetDisplayID() + ": it was lost at once. Check its cable and its power."};
  mIntake.Open(*mDevice);
  mSearch.End();
  const std::lock_guard lock(mMutex);
  mProgress.camera = aCamera;
  mProgress.strayAddress = {};
  mSeen = nullptr;
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
    result = SettingsReturn(*parameters).Run(GetSettings(), aStop, returned);
  }
  if (!result.IsOK() && result != KrResult::Code::TimeLimitExceeded)
    return result;
  const std::lock_guard lock(mMutex);
  mProgress.settings = std::move(returned);
  ++mProgress.returns;
  return {};
}

void Acquisition::CloseDevice() {
  mIntake.LeaveSize();
  mLending.TakeBack();
  mIntake.Close();
  mDevice.reset();
}

void Acquisition::LendDevice() {
  KrGenParameterArray* parameters = nullptr;
  const KrResult got = mDevice->GetParameters(parameters);
  // Before anybody can change anything.
  if (got.IsOK())
    mIntake.FollowSize(*parameters);
  if (mIntake.IsRunning())
    mIntake.NoteStart();
  mLending.Lend(*mDevice, mIntake.GetStream(), got.IsOK() ? parameters : nullptr, mOptions.frameLimit == 0);
  const std::lock_guard lock(mMutex);
  mProgress.parameters = got;
}

KrResult Acquisition::Serve(std::stop_token aStop) {
  KrResult result;
  while (result.IsOK() && !aStop.stop_requested() && !IsLimitReached()) {
    CarryOutRequests();
    RestartWhereFramesHaveGrown();
    result = mIntake.IsRunning() ? TakeFrame() : AwaitRequest(aStop);
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
    mIntake.GetPicture().ShowLatest({});
    return {};
  case AcquisitionRequest::Kind::Work:
    break;
  }
  return DoWork(aRequest.work);
}

KrResult Acquisition::Want(Wanted aWanted) {
  mWanted = aWanted;
  if (!mIsServing || mIntake.IsRunning() == (aWanted != Wanted::Nothing))
    return {};
  KrResult result;
  if (aWanted == Wanted::Nothing)
    mIntake.Stop({});
  else
    result = StartStream();
  SetState(mIntake.IsRunning() ? AcquisitionState::Streaming : AcquisitionState::Connected, result);
  return result;
}

KrResult Acquisition::DoWork(const DeviceWork& aWork) {
  if (!mIsServing)
    return {KrResult::Code::ConnectionLost, "Asking " + GetName() + ": the camera is lost. Ask again when it is back."};
  KrGenParameterArray* parameters = nullptr;
  if (KrResult got = mDevice->GetParameters(parameters); !got.IsOK())
    return got;
  const bool isPaused = aWork.isStreamStopped && mIntake.IsRunning();
  if (isPaused)
    mIntake.Stop({});
  const KrResult done = aWork.run(*parameters);
  if (aWork.isSetting)
    mLending.NoteSettings();
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
  const KrResult started = mIntake.Start();
  if (!started.IsOK() && mIsServing && !IsConnectionTrouble(started))
    mWanted = Wanted::Nothing;
  return started;
}

void Acquisition::RestartWhereFramesHaveGrown() {
  if (!mIntake.HasOutgrown())
    return;
  mIntake.Stop({});
  if (const KrResult started = StartStream(); !started.IsOK())
    SetState(AcquisitionState::Connected, started);
}

KrResult Acquisition::TakeFrame() {
  bool isWhole = false;
  const KrResult taken = mIntake.Take(isWhole);
  return isWhole && mWanted == Wanted::SingleFrame ? Want(Wanted::Nothing) : taken;
}

} // namespace krviewer
