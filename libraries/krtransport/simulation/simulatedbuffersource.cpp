#include "simulation/simulatedbuffersource.h"

#include <algorithm>
#include <system_error>

namespace krtransport {

namespace {

KrResult MakeLost() {
  return {KrResult::Code::ConnectionLost, "The camera does not answer any more; open it anew when it is back."};
}

std::chrono::nanoseconds GetPeriod(const FrameSettings& aSettings) {
  const std::chrono::duration<double> wanted(1.0 / aSettings.framesPerSecond);
  const std::chrono::duration<double, std::micro> exposure(aSettings.exposureTimeUs);
  return std::chrono::duration_cast<std::chrono::nanoseconds>(
      std::max<std::chrono::duration<double>>(wanted, exposure));
}

template <typename Clock>
std::uint64_t GetNowNs() {
  const auto now = std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now().time_since_epoch());
  return static_cast<std::uint64_t>(now.count());
}

// Puts a picture into a buffer and says in its status whether it found room.
void Fill(KrBuffer& aBuffer, const FrameSettings& aSettings, std::uint64_t aFrameID, PatternPainter& aPainter) {
  const std::uint64_t bytes = GetFrameBytes(aSettings.picture);
  aBuffer.SetPayloadType(KrPayloadType::Image);
  aBuffer.SetFrameID(aFrameID);
  aBuffer.SetTimestampNs(GetNowNs<std::chrono::steady_clock>());
  if (aBuffer.GetSize() < bytes) {
    aBuffer.SetAcquiredSize(0);
    aBuffer.SetStatus(KrBufferStatus::TooSmall);
  } else {
    const bool painted = aPainter.Paint(aSettings.picture, aFrameID, aBuffer.GetDataPointer());
    const bool described =
        painted &&
        aBuffer.DescribeImage(aSettings.picture.width, aSettings.picture.height, aSettings.picture.type).IsOK();
    aBuffer.SetAcquiredSize(described ? static_cast<std::size_t>(bytes) : 0);
    aBuffer.SetStatus(described ? KrBufferStatus::Complete : KrBufferStatus::Incomplete);
  }
  aBuffer.SetHostTimestampNs(GetNowNs<std::chrono::system_clock>());
}

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
      return MakeLost();
  }
  aBytes = mCamera.GetPayloadSize();
  return {};
}

KrResult SimulatedBufferSource::Queue(KrBuffer* aBuffer) {
  if (!aBuffer)
    return {KrResult::Code::InvalidInput, "Queueing a buffer: there is none (null)."};
  const std::lock_guard lock(mMutex);
  if (mLost)
    return {KrResult::Code::WrongState, "Queueing a buffer: the camera is lost; open it anew when it is back."};
  if (std::ranges::find(mFree, aBuffer) != mFree.end() || std::ranges::find(mFilled, aBuffer) != mFilled.end())
    return {KrResult::Code::InvalidInput, "Queueing a buffer: it is queued already."};
  aBuffer->SetStatus(KrBufferStatus::Empty);
  mFree.push_back(aBuffer);
  return {};
}

KrResult SimulatedBufferSource::Start() {
  {
    const std::lock_guard lock(mMutex);
    if (mRunning)
      return {KrResult::Code::WrongState, "Starting the stream channel: it runs already."};
    if (mLost)
      return MakeLost();
  }
  KrResult begun = mCamera.BeginStream(mOwner);
  if (!begun.IsOK())
    return begun;
  {
    const std::lock_guard lock(mMutex);
    mStatistics = {};
    mStopping = false;
    mRunning = true;
  }
  try {
    mThread = std::thread([this] { MakeFrames(); });
  } catch (const std::system_error& error) {
    Stop();
    return {KrResult::Code::SystemError,
            std::string("Starting the stream channel: no thread could be started: ") + error.what()};
  }
  return {};
}

KrResult SimulatedBufferSource::Retrieve(KrBuffer*& aBuffer, std::uint32_t aTimeoutMs, const std::stop_token& aCancel) {
  const Clock::time_point limit = Clock::now() + std::chrono::milliseconds(aTimeoutMs);
  std::unique_lock lock(mMutex);
  mFilledOrEnded.wait_until(lock, aCancel, limit, [this] { return mLost || !mRunning || !mFilled.empty(); });
  if (mLost)
    return MakeLost();
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

void SimulatedBufferSource::SetLost() {
  const std::lock_guard lock(mMutex);
  mLost = true;
  mWake.notify_all();
  mFilledOrEnded.notify_all();
}

void SimulatedBufferSource::SetChanged() {
  const std::lock_guard lock(mMutex);
  mChanged = true;
  mWake.notify_all();
}

void SimulatedBufferSource::MakeFrames() {
  PatternPainter painter;
  std::uint64_t frameID = 0;
  Clock::time_point last = Clock::now();
  while (AcknowledgeChanges()) {
    const FrameSettings settings = mCamera.GetFrameSettings();
    const Clock::time_point due = last + GetPeriod(settings);
    if (!WaitUntilDue(settings, due))
      continue;
    // Acquisition ends before its frame is out: whoever has the frame may start the next one.
    if (settings.singleFrame)
      mCamera.EndAcquisition(mOwner);
    MakeFrame(settings, ++frameID, painter);
    // A frame that was late does not make the next ones come in a burst.
    last = std::max(due, Clock::now() - GetPeriod(settings));
  }
}

bool SimulatedBufferSource::AcknowledgeChanges() {
  const std::lock_guard lock(mMutex);
  mChanged = false;
  return !mStopping && !mLost;
}

bool SimulatedBufferSource::WaitUntilDue(const FrameSettings& aSettings, Clock::time_point aDue) {
  std::unique_lock lock(mMutex);
  const auto isWoken = [this] { return mStopping || mLost || mChanged; };
  if (aSettings.acquiring)
    return !mWake.wait_until(lock, aDue, isWoken);
  mWake.wait(lock, isWoken);
  return false;
}

void SimulatedBufferSource::MakeFrame(const FrameSettings& aSettings, std::uint64_t aFrameID,
                                      PatternPainter& aPainter) {
  KrBuffer* const buffer = TakeFree();
  if (!buffer)
    return;
  Fill(*buffer, aSettings, aFrameID, aPainter);
  Deliver(buffer);
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

void SimulatedBufferSource::Deliver(KrBuffer* aBuffer) {
  const std::lock_guard lock(mMutex);
  if (mLost || mStopping)
    aBuffer->SetStatus(KrBufferStatus::Aborted);
  const bool isWhole = aBuffer->GetStatus() == KrBufferStatus::Complete;
  mStatistics.received += isWhole ? 1 : 0;
  mStatistics.incomplete += isWhole ? 0 : 1;
  mStatistics.bytes += isWhole ? aBuffer->GetAcquiredSize() : 0;
  mFilled.push_back(aBuffer);
  mFilledOrEnded.notify_one();
}

} // namespace krtransport
