#include "acquisition.h"

#include <chrono>
#include <cstdio>
#include <utility>

namespace krviewer {

namespace {

constexpr std::uint32_t kRetrieveTimeoutMs = 500;

std::uint64_t GetSteadyNs() {
  return static_cast<std::uint64_t>(
      std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now().time_since_epoch())
          .count());
}

} // namespace

KrString FormatOverlay(const FrameMeter& aMeter, const KrStreamStatistics& aStatistics) {
  char text[160];
  std::snprintf(text, sizeof text, "%.1f frames/s   %.1f MB/s\nincomplete %llu   missing %llu   resent %llu",
                aMeter.GetFramesPerSecond(), aMeter.GetMegabytesPerSecond(),
                static_cast<unsigned long long>(aStatistics.incomplete),
                static_cast<unsigned long long>(aStatistics.missingPackets),
                static_cast<unsigned long long>(aStatistics.resentPackets));
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
  return mFrameLimit != 0 && mProgress.frames >= mFrameLimit;
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
  if (mDevice)
    mReturned.wait(lock, aStop, [this] { return mIsBack; });
  else // It answered again, but could not be opened yet: its old connection may have to expire first.
    mReturned.wait_for(lock, aStop, std::chrono::seconds(1), [] { return false; });
}

void Acquisition::Run(std::stop_token aStop) {
  KrResult result = ConnectAndStream(aStop);
  while (!result.IsOK() && mWasConnected && mFrameLimit == 0 && !aStop.stop_requested()) {
    SetState(AcquisitionState::Lost, result);
    AwaitReturn(aStop);
    if (!aStop.stop_requested())
      result = ConnectAndStream(aStop);
  }
  mDevice.reset();
  const bool isFinished = result.IsOK() || aStop.stop_requested();
  SetState(isFinished ? AcquisitionState::Finished : AcquisitionState::Failed, result);
}

KrResult Acquisition::ConnectAndStream(std::stop_token aStop) {
  mDevice.reset();
  {
    const std::lock_guard lock(mMutex);
    mIsBack = false;
  }
  if (KrResult opened = KrDevice::Open(mDeviceInfo, KrDeviceAccess::Control, mDevice); !opened.IsOK())
    return opened;
  mWasConnected = true;
  if (KrResult registered = mDevice->RegisterEventSink(this); !registered.IsOK())
    return registered;
  return StreamOnce(aStop, *mDevice);
}

KrResult Acquisition::StreamOnce(std::stop_token aStop, KrDevice& aDevice) {
  KrStream stream(aDevice);
  if (KrResult started = stream.Start(); !started.IsOK())
    return started;
  SetState(AcquisitionState::Streaming, {});
  mMeter.Reset();

  // The frame on the screen stays lent, so that it can be shown again with the reason when the camera is lost.
  KrBuffer* shown = nullptr;
  while (!aStop.stop_requested() && !IsLimitReached()) {
    KrBuffer* buffer = nullptr;
    KrResult result = stream.Retrieve(buffer, kRetrieveTimeoutMs);
    if (result == KrResult::Code::TimeLimitExceeded)
      continue;
    if (!result.IsOK()) {
      ShowLastFrame(shown, result);
      return result;
    }
    const bool isShown = ShowFrame(*buffer, stream.GetStatistics());
    KrBuffer* surplus = isShown ? std::exchange(shown, buffer) : buffer;
    if (surplus) {
      if (KrResult released = stream.Release(surplus); !released.IsOK())
        return released;
    }
  }
  return {};
}

bool Acquisition::ShowFrame(const KrBuffer& aBuffer, const KrStreamStatistics& aStatistics) {
  const std::uint64_t now = GetSteadyNs();
  mMeter.Add(now, aBuffer.GetAcquiredSize());
  mWindow.SetTextOverlay(FormatOverlay(mMeter, aStatistics));
  // A frame that cannot be shown is told in the log and, by its absence, in the picture; the stream goes on.
  const bool isShown = mWindow.Display(aBuffer, false).IsOK();

  const std::lock_guard lock(mMutex);
  if (mProgress.frames++ == 0)
    mFirstFrameNs = now;
  mProgress.statistics = aStatistics;
  if (isShown)
    mProgress.lastFrameID = aBuffer.GetFrameID();
  const double seconds = static_cast<double>(now - mFirstFrameNs) * 1e-9;
  if (seconds > 0) {
    mProgress.framesPerSecond = static_cast<double>(mProgress.frames - 1) / seconds;
    mProgress.megabytesPerSecond = static_cast<double>(aStatistics.bytes) / seconds * 1e-6;
  }
  return isShown;
}

void Acquisition::ShowLastFrame(const KrBuffer* aBuffer, const KrResult& aReason) {
  if (!aBuffer)
    return;
  mWindow.SetTextOverlay(KrString("Camera lost: ") + aReason.GetDescription());
  [[maybe_unused]] const KrResult shown = mWindow.Display(*aBuffer, false); // It was shown before.
}

} // namespace krviewer
