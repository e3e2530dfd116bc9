#include "krdevice/krstream.h"

#include "bufferring.h"
#include "frameledger.h"
#include "hostparameters.h"
#include "krdevice/krdevice.h"
#include "parameterlock.h"
#include "sourcelease.h"
#include "streamfeatures.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <string>
#include <utility>

namespace {

enum class StreamState { Stopped, Running, Stopping };

using Clock = std::chrono::steady_clock;

std::uint32_t GetMillisecondsUntil(Clock::time_point aLimit) {
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(aLimit - Clock::now());
  return static_cast<std::uint32_t>(std::max<std::int64_t>(left.count(), 0));
}

// A frame that was aborted has no number that means anything.
bool HasNumber(const KrBuffer& aBuffer) {
  const KrBufferStatus status = aBuffer.GetStatus();
  return status != KrBufferStatus::Empty && status != KrBufferStatus::Aborted;
}

} // namespace

struct KrStream::Body : krdevice::IStreamState {
  Body(KrDevice& aDevice, std::size_t aBufferCount, std::uint32_t aChannel)
      : device(aDevice), bufferCount(std::clamp(aBufferCount, krdevice::kFewestBuffers, krdevice::kMostBuffers)),
        channel(aChannel), parameters(krdevice::GetStreamModule(), [this] { return ListFeatures(); }) {}

  // A call of Retrieve: until when it may wait, and what may cancel it.
  struct Wait {
    std::uint32_t timeoutMs;
    Clock::time_point limit;
    std::stop_token cancel;
  };

  KrResult FillSource(krsystem::IBufferSource& aSource);
  void Run(krsystem::IBufferSource& aSource, krdevice::SourceLease aLease);
  void TellParameters();
  KrResult AwaitTurn(std::unique_lock<std::mutex>& aLock, const Wait& aWait);
  KrResult TakeFrame(std::unique_lock<std::mutex>& aLock, const Wait& aWait, KrBuffer*& aBuffer);
  void Follow(std::unique_lock<std::mutex>& aLock, std::uint64_t aFrameID);
  KrResult Queue(KrBuffer* aBuffer);
  krsystem::HostFeatures ListFeatures();
  template <typename Answer, typename Ask>
  void AskSource(std::unique_lock<std::mutex>& aLock, Answer& aAnswer, Ask aAsk) const;

  // What the parameters tell.
  bool IsGrabbing() const override;
  std::size_t GetBufferCount() const override { return bufferCount; }
  void SetBufferCount(std::size_t aCount) override { bufferCount = aCount; }
  std::size_t CountAnnounced() const override;
  std::size_t CountLent() const override;
  std::uint64_t GetPayloadBytes() const override;
  krsystem::SourceBuffers CountSourceBuffers() const override;
  KrStreamStatistics CountFrames() const override;

  KrDevice& device;
  std::atomic<std::size_t> bufferCount;
  const std::uint32_t channel;

  mutable std::mutex mutex; // Guards the members from here on; never held while the source is called.
  mutable std::condition_variable changed;
  StreamState state = StreamState::Stopped;
  krsystem::IBufferSource* source = nullptr; // Set while the state is not Stopped.
  krdevice::SourceLease lease;
  krdevice::BufferRing ring;
  bool taking = false;            // Whether a call waits at the source, so that frames are followed in their order.
  std::size_t queueing = 0;       // Calls that are handing a buffer to the source.
  mutable std::size_t asking = 0; // Calls that are waiting for a frame or reading the source's counters.
  std::stop_source cancellation;  // Of the calls of Retrieve that begin now.
  krdevice::FrameLedger ledger;
  std::uint64_t shown = 0;
  krsystem::SourceStatistics lastCounted; // Of the last stream.

  krdevice::HostParameters parameters; // Ends first: what it tells of stands above.
};

KrStream::KrStream(KrDevice& aDevice, std::size_t aBufferCount, std::uint32_t aChannel)
    : mBody(std::make_unique<Body>(aDevice, aBufferCount, aChannel)) {}

KrStream::~KrStream() {
  Stop();
  mBody->parameters.Close();
}

KrResult KrStream::Body::FillSource(krsystem::IBufferSource& aSource) {
  std::uint64_t payloadBytes = 0;
  KrResult result = aSource.GetPayloadSize(payloadBytes);
  if (result.IsOK())
    result = ring.Allocate(bufferCount, payloadBytes);
  for (std::size_t i = 0; result.IsOK() && i < ring.GetCount(); ++i)
    result = aSource.Queue(ring.GetBuffer(i));
  if (result.IsOK())
    result = aSource.Start();
  // A source that did not start may hold buffers nevertheless.
  if (!result.IsOK())
    aSource.Stop();
  return result;
}

KrResult KrStream::Start() {
  if (IsRunning())
    return {KrResult::Code::WrongState, "Starting a stream of " + mBody->device.GetDisplayID() + ": it runs already."};
  krsystem::IBufferSource* const source = mBody->device.GetBufferSource(mBody->channel);
  if (!source)
    return {KrResult::Code::NotSupported, "Starting a stream: " + mBody->device.GetDisplayID() +
                                              " has no stream channel " + std::to_string(mBody->channel) + "."};
  krdevice::SourceLease lease(source);
  if (!lease.IsHeld())
    return {KrResult::Code::Busy, "Starting a stream of " + mBody->device.GetDisplayID() +
                                      ": another stream of this channel runs; stop it first."};
  krdevice::ParameterLock& parameterLock = mBody->device.GetParameterLock();
  parameterLock.Acquire();
  // The state is still Stopped, so that no other call touches the buffers.
  const KrResult result = mBody->FillSource(*source);
  if (!result.IsOK()) {
    parameterLock.Release();
    return result;
  }
  parameterLock.ForgetValues();
  mBody->Run(*source, std::move(lease));
  mBody->TellParameters();
  return {};
}

void KrStream::Body::Run(krsystem::IBufferSource& aSource, krdevice::SourceLease aLease) {
  const std::lock_guard lock(mutex);
  lease = std::move(aLease);
  source = &aSource;
  ledger = {};
  shown = 0;
  state = StreamState::Running;
  parameters.ForgetReset();
}

// What is locked, and what runs, is another now.
void KrStream::Body::TellParameters() {
  parameters.ForgetValues();
  device.OnStreamsChanged();
}

KrResult KrStream::Retrieve(KrBuffer*& aBuffer, std::uint32_t aTimeoutMs) {
  aBuffer = nullptr;
  const Clock::time_point limit = Clock::now() + std::chrono::milliseconds(aTimeoutMs);
  std::unique_lock lock(mBody->mutex);
  const Body::Wait wait{aTimeoutMs, limit, mBody->cancellation.get_token()};
  ++mBody->asking;
  KrResult result = mBody->AwaitTurn(lock, wait);
  if (result.IsOK())
    result = mBody->TakeFrame(lock, wait, aBuffer);
  --mBody->asking;
  mBody->changed.notify_all();
  return result;
}

KrResult KrStream::Body::AwaitTurn(std::unique_lock<std::mutex>& aLock, const Wait& aWait) {
  changed.wait_until(aLock, aWait.limit,
                     [&] { return state != StreamState::Running || aWait.cancel.stop_requested() || !taking; });
  if (state != StreamState::Running)
    return {KrResult::Code::Aborted, "Waiting for a frame: the stream does not run."};
  if (aWait.cancel.stop_requested())
    return {KrResult::Code::Aborted, "Waiting for a frame was cancelled."};
  if (taking)
    return {KrResult::Code::TimeLimitExceeded,
            "Waiting for a frame: none came within " + std::to_string(aWait.timeoutMs) + " ms."};
  return {};
}

KrResult KrStream::Body::TakeFrame(std::unique_lock<std::mutex>& aLock, const Wait& aWait, KrBuffer*& aBuffer) {
  krsystem::IBufferSource* const asked = source;
  taking = true;
  aLock.unlock();
  KrBuffer* buffer = nullptr;
  KrResult result = asked->Retrieve(buffer, GetMillisecondsUntil(aWait.limit), aWait.cancel);
  aLock.lock();
  if (result.IsOK() && !ring.Lend(buffer))
    result = {KrResult::Code::ProtocolError,
              "Waiting for a frame: the device's link gave a buffer that it did not hold."};
  if (result.IsOK()) {
    aBuffer = buffer;
    if (HasNumber(*buffer))
      Follow(aLock, buffer->GetFrameID());
  }
  taking = false;
  return result;
}

void KrStream::Body::Follow(std::unique_lock<std::mutex>& aLock, std::uint64_t aFrameID) {
  const std::uint64_t skipped = ledger.Follow(aFrameID);
  if (skipped == 0)
    return;
  krsystem::IBufferSource* const asked = source;
  aLock.unlock();
  const std::uint64_t discarded = asked->GetStatistics().discarded;
  aLock.lock();
  ledger.CountSkipped(skipped, discarded);
}

void KrStream::Cancel() {
  std::unique_lock lock(mBody->mutex);
  std::stop_source former = std::exchange(mBody->cancellation, std::stop_source());
  lock.unlock();
  // Wakes the call that waits at the source, which may run code of its own for that.
  former.request_stop();
  lock.lock();
  mBody->changed.notify_all();
}

KrResult KrStream::Body::Queue(KrBuffer* aBuffer) {
  std::unique_lock lock(mutex);
  if (state != StreamState::Running)
    return {};
  if (!ring.TakeBack(aBuffer))
    return {KrResult::Code::InvalidInput, "Releasing a buffer: this stream did not lend it."};
  krsystem::IBufferSource* const running = source;
  ++queueing;
  lock.unlock();
  const KrResult result = running->Queue(aBuffer);
  lock.lock();
  --queueing;
  changed.notify_all();
  return result;
}

KrResult KrStream::Release(KrBuffer* aBuffer) {
  if (!aBuffer)
    return {KrResult::Code::InvalidInput, "Releasing a buffer: there is none (null)."};
  const KrResult result = mBody->Queue(aBuffer);
  // A lost device fills no buffer any more; the stream has it back all the same.
  return result == KrResult::Code::WrongState || result == KrResult::Code::ConnectionLost ? KrResult() : result;
}

void KrStream::Stop() {
  std::unique_lock lock(mBody->mutex);
  if (mBody->state != StreamState::Running)
    return;
  mBody->state = StreamState::Stopping;
  mBody->changed.notify_all();
  // A buffer queued after the source has stopped would stay with it.
  mBody->changed.wait(lock, [this] { return mBody->queueing == 0; });
  lock.unlock();
  mBody->source->Stop();
  mBody->device.GetParameterLock().Release();
  const krsystem::SourceStatistics counted = mBody->source->GetStatistics();
  lock.lock();
  mBody->changed.wait(lock, [this] { return mBody->asking == 0; });
  mBody->lastCounted = counted;
  mBody->source = nullptr;
  mBody->lease = krdevice::SourceLease();
  mBody->state = StreamState::Stopped;
  lock.unlock();
  mBody->TellParameters();
}

bool KrStream::IsRunning() const {
  return mBody->IsGrabbing();
}

void KrStream::CountShown() {
  const std::lock_guard lock(mBody->mutex);
  ++mBody->shown;
}

KrStreamStatistics KrStream::GetStatistics() const {
  return mBody->CountFrames();
}

KrResult KrStream::GetParameters(KrGenParameterArray*& aParameters) {
  if (!mBody->device.GetBufferSource(mBody->channel))
    return {KrResult::Code::NotSupported, "Asking for the parameters of a stream: " + mBody->device.GetDisplayID() +
                                              " has no stream channel " + std::to_string(mBody->channel) + "."};
  return mBody->parameters.Get(aParameters);
}

krsystem::HostFeatures KrStream::Body::ListFeatures() {
  krsystem::HostFeatures features = krdevice::ListStreamFeatures(*this, device, channel);
  if (krsystem::IBufferSource* const receiver = device.GetBufferSource(channel)) {
    for (krsystem::HostFeature& feature : receiver->ListFeatures())
      features.push_back(std::move(feature));
  }
  return features;
}

// Without the lock, and only while the source is the stream's; aAnswer stays as it is otherwise.
template <typename Answer, typename Ask>
void KrStream::Body::AskSource(std::unique_lock<std::mutex>& aLock, Answer& aAnswer, Ask aAsk) const {
  const krsystem::IBufferSource* const asked = source;
  if (!asked)
    return;
  ++asking;
  aLock.unlock();
  aAnswer = aAsk(*asked);
  aLock.lock();
  --asking;
  changed.notify_all();
}

KrStreamStatistics KrStream::Body::CountFrames() const {
  std::unique_lock lock(mutex);
  // Before the source's counters, which thus are never behind.
  const std::uint64_t missing = ledger.GetMissing();
  const std::uint64_t shownBefore = shown;
  krsystem::SourceStatistics counted = lastCounted;
  AskSource(lock, counted, [](const krsystem::IBufferSource& aSource) { return aSource.GetStatistics(); });
  return {.received = counted.received,
          .incomplete = counted.incomplete,
          .missingPackets = counted.missingPackets,
          .resentPackets = counted.resentPackets,
          .discarded = counted.discarded,
          .bytes = counted.bytes,
          .missingFrames = missing,
          .shown = shownBefore};
}

krsystem::SourceBuffers KrStream::Body::CountSourceBuffers() const {
  std::unique_lock lock(mutex);
  krsystem::SourceBuffers buffers;
  AskSource(lock, buffers, [](const krsystem::IBufferSource& aSource) { return aSource.CountBuffers(); });
  return buffers;
}

bool KrStream::Body::IsGrabbing() const {
  const std::lock_guard lock(mutex);
  return state != StreamState::Stopped;
}

std::size_t KrStream::Body::CountAnnounced() const {
  const std::lock_guard lock(mutex);
  return state == StreamState::Stopped ? 0 : ring.GetCount();
}

std::size_t KrStream::Body::CountLent() const {
  const std::lock_guard lock(mutex);
  return state == StreamState::Stopped ? 0 : ring.CountLent();
}

std::uint64_t KrStream::Body::GetPayloadBytes() const {
  const std::lock_guard lock(mutex);
  return state == StreamState::Stopped ? 0 : ring.GetBufferBytes();
}
