#include "simulation/simulatedbuffersource.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <system_error>

namespace krtransport {

namespace {

std::uint64_t GetHostTimeNs() {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(now).count());
}

constexpr std::uint64_t kNanosecondsPerMillisecond = 1000000;
constexpr std::uint64_t kMicrosecondsPerMillisecond = 1000;

} // namespace

SimulatedBufferSource::SimulatedBufferSource(SimulatedCamera& aCamera, const ICameraListener& aOwner)
    : mCamera(aCamera), mOwner(aOwner) {}

SimulatedBufferSource::~SimulatedBufferSource() {
  Stop();
}

KrResult SimulatedBufferSource::GetPayloadSize(std::uint64_t& aBytes) {
  {
    const std::lock_guard lock(mMutex);
    if (mLost)
      return *mLost;
  }
  aBytes = mCamera.GetPayloadSize();
  return {};
}

KrResult SimulatedBufferSource::Queue(KrBuffer* aBuffer) {
  if (!aBuffer)
    return {KrResult::Code::InvalidInput, "Queueing a buffer: there is none (null)."};
  const std::lock_guard lock(mMutex);
  if (mLost)
    return {KrResult::Code::WrongState, "Queueing a buffer: " + mLost->GetDescription().ToUtf8()};
  if (std::ranges::find(mFree, aBuffer) != mFree.end() || std::ranges::find(mFilled, aBuffer) != mFilled.end())
    return {KrResult::Code::InvalidInput, "Queueing a buffer: it is queued already."};
  aBuffer->SetStatus(KrBufferStatus::Empty);
  mFree.push_back(aBuffer);
  return {};
}

KrResult SimulatedBufferSource::Start() {
  const std::lock_guard startStopLock(mStartStopMutex);
  {
    const std::lock_guard lock(mMutex);
    if (mRunning)
      return {KrResult::Code::WrongState, "Starting the stream channel: it runs already."};
    if (mLost)
      return *mLost;
  }
  KrResult begun = mCamera.BeginStream(mOwner);
  if (!begun.IsOK())
    return begun;
  {
    const std::lock_guard lock(mMutex);
    mStatistics = {};
    mDropped = 0;
    mStopping = false;
    mRunning = true;
  }
  try {
    mThread = std::thread([this] { MakeFrames(); });
  } catch (const std::system_error& error) {
    StopFrames();
    return {KrResult::Code::SystemError,
            std::string("Starting the stream channel: no thread could be started: ") + error.what()};
  }
  return {};
}

KrResult SimulatedBufferSource::Retrieve(KrBuffer*& aBuffer, std::uint32_t aTimeoutMs, const std::stop_token& aCancel) {
  const auto limit = std::chrono::steady_clock::now() + std::chrono::milliseconds(aTimeoutMs);
  std::unique_lock lock(mMutex);
  mFilledOrEnded.wait_until(lock, aCancel, limit, [this] { return mLost || !mRunning || !mFilled.empty(); });
  if (mLost)
    return *mLost;
  if (!mRunning)
    return {KrResult::Code::Aborted, "Waiting for a frame: the stream was stopped."};
  if (mFilled.empty() && aCancel.stop_requested())
    return {KrResult::Code::Aborted, "Waiting for a frame was cancelled."};
  if (mFilled.empty())
    return {KrResult::Code::TimeLimitExceeded,
            "Waiting for a frame: none came within " + std::to_string(aTimeoutMs) + " ms."};
  aBuffer = mFilled.front();
  mFilled.pop_front();
  return {};
}

void SimulatedBufferSource::Stop() {
  const std::lock_guard startStopLock(mStartStopMutex);
  StopFrames();
}

void SimulatedBufferSource::StopFrames() {
  {
    const std::lock_guard lock(mMutex);
    mStopping = true;
    mWake.notify_all();
  }
  if (mThread.joinable())
    mThread.join();
  mCamera.EndStream(mOwner);
  const std::lock_guard lock(mMutex);
  mRunning = false;
  mFree.clear();
  mFilled.clear();
  mFilledOrEnded.notify_all();
}

krsystem::SourceStatistics SimulatedBufferSource::GetStatistics() const {
  const std::lock_guard lock(mMutex);
  return mStatistics;
}

krsystem::SourceBuffers SimulatedBufferSource::CountBuffers() const {
  const std::lock_guard lock(mMutex);
  return {.empty = mFree.size(), .filled = mFilled.size()};
}

krsystem::HostFeatures SimulatedBufferSource::ListFeatures() {
  return {
      krsystem::MakeSetFeature(
          {.name = "StreamPacketResendEnable",
           .category = "StreamReceiver",
           .kind = krsystem::HostFeatureKind::Boolean,
           .tip = "Whether packets that are missing are asked for again. Without it those that are "
                  "ordered to be late never come."},
          [this] { return mIsResendEnabled.load(); },
          [this](bool aIsEnabled) {
            mIsResendEnabled = aIsEnabled;
            return KrResult();
          }),
      krsystem::MakeSetFeature(
          {.name = "StreamFrameRetention",
           .category = "StreamReceiver",
           .tip = "How long a frame waits for packets that are late, before it is handed over "
                  "incomplete.",
           .minimum = 1000,
           .maximum = 60'000'000,
           .unit = "us"},
          [this] { return mRetentionUs.load(); },
          [this](std::uint32_t aRetentionUs) {
            mRetentionUs = aRetentionUs;
            return KrResult();
          }),
      krsystem::MakeShownFeature({.name = "StreamSimulatedDropCount",
                                  .category = "StreamStatistics",
                                  .tip = "Frames that the camera was ordered to drop.",
                                  .isCounter = true,
                                  .pollingMs = 500},
                                 [this] { return mDropped.load(); }),
  };
}

void SimulatedBufferSource::SetLost(const KrResult& aReason) {
  const std::lock_guard lock(mMutex);
  mLost = aReason;
  mWake.notify_all();
  mFilledOrEnded.notify_all();
}

void SimulatedBufferSource::SetChanged() {
  const std::lock_guard lock(mMutex);
  mChanged = true;
  mWake.notify_all();
}

void SimulatedBufferSource::MakeFrames() {
  std::uint64_t frameID = 0;
  while (AcknowledgeChanges()) {
    const std::optional<Exposure> exposure = mCamera.GetNextExposure();
    if (!WaitUntilExposed(exposure))
      continue;
    // Acquisition ends before its last frame is out: whoever has the frame may start the next one.
    const std::optional<FrameSettings> settings = mCamera.EndExposure(mOwner, *exposure);
    if (settings)
      MakeFrame(*settings, ++frameID);
  }
}

bool SimulatedBufferSource::AcknowledgeChanges() {
  const std::lock_guard lock(mMutex);
  mChanged = false;
  return !mStopping && !mLost;
}

bool SimulatedBufferSource::WaitUntilExposed(const std::optional<Exposure>& aExposure) {
  std::unique_lock lock(mMutex);
  const auto isWoken = [this] { return mStopping || mLost || mChanged; };
  if (aExposure)
    return !mCamera.GetClock().WaitUntil(lock, mWake, aExposure->endNs, isWoken);
  mWake.wait(lock, isWoken);
  return false;
}

void SimulatedBufferSource::WaitForResend(std::uint64_t aUntilNs) {
  std::unique_lock lock(mMutex);
  mCamera.GetClock().WaitUntil(lock, mWake, aUntilNs, [this] { return mStopping || mLost; });
}

void SimulatedBufferSource::MakeFrame(const FrameSettings& aSettings, std::uint64_t aFrameID) {
  if (mCamera.GetFaults().TakeDrop()) {
    ++mDropped;
    return;
  }
  KrBuffer* const buffer = TakeFree();
  if (!buffer)
    return;
  const std::optional<PacketFault> fault = TakePacketFault();
  const PacketCounts packets = mWriter.Write(*buffer, aSettings, aFrameID, fault);
  if (packets.resent > 0)
    WaitForResend(aSettings.exposure.endNs + fault->delayMs * kNanosecondsPerMillisecond);
  Deliver(buffer, packets);
}

// Late packets come by a resend, which has to be wanted, and before the frame is given up.
std::optional<PacketFault> SimulatedBufferSource::TakePacketFault() {
  std::optional<PacketFault> fault = mCamera.GetFaults().TakePacketFault();
  if (fault && fault->isLate)
    fault->isLate = mIsResendEnabled && fault->delayMs * kMicrosecondsPerMillisecond <= mRetentionUs;
  return fault;
}

KrBuffer* SimulatedBufferSource::TakeFree() {
  const std::lock_guard lock(mMutex);
  if (mFree.empty()) {
    ++mStatistics.discarded;
    return nullptr;
  }
  KrBuffer* const buffer = mFree.front();
  mFree.pop_front();
  return buffer;
}

void SimulatedBufferSource::Deliver(KrBuffer* aBuffer, const PacketCounts& aPackets) {
  aBuffer->SetHostTimestampNs(GetHostTimeNs());
  const std::lock_guard lock(mMutex);
  if (mLost || mStopping)
    aBuffer->SetStatus(KrBufferStatus::Aborted);
  // A frame that the end of the stream cut off is neither whole nor damaged.
  const KrBufferStatus status = aBuffer->GetStatus();
  const bool isWhole = status == KrBufferStatus::Complete;
  const bool isCutShort = status == KrBufferStatus::Incomplete || status == KrBufferStatus::TooSmall;
  mStatistics.received += isWhole ? 1 : 0;
  mStatistics.incomplete += isCutShort ? 1 : 0;
  mStatistics.bytes += isWhole ? aBuffer->GetAcquiredSize() : 0;
  mStatistics.missingPackets += aPackets.missing;
  mStatistics.resentPackets += aPackets.resent;
  mFilled.push_back(aBuffer);
  mFilledOrEnded.notify_one();
}

} // namespace krtransport
