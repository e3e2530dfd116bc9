#include "krdevice/krstream.h"

#include "bufferring.h"
#include "krdevice/krdevice.h"
#include "sourcelease.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <string>

namespace {

constexpr std::size_t kFewestBuffers = 2;
constexpr std::size_t kMostBuffers = 1024;

enum class StreamState { Stopped, Running, Stopping };

KrStreamStatistics ToStreamStatistics(const krsystem::SourceStatistics& aCounted) {
  return {aCounted.received,      aCounted.incomplete, aCounted.missingPackets,
          aCounted.resentPackets, aCounted.discarded,  aCounted.bytes};
}

} // namespace

struct KrStream::Body {
  Body(KrDevice& aDevice, std::size_t aBufferCount, std::uint32_t aChannel)
      : device(aDevice), bufferCount(std::clamp(aBufferCount, kFewestBuffers, kMostBuffers)), channel(aChannel) {}

  KrResult FillSource(krsystem::IBufferSource& aSource);
  KrResult Queue(KrBuffer* aBuffer);

  KrDevice& device;
  const std::size_t bufferCount;
  const std::uint32_t channel;

  mutable std::mutex mutex; // Guards the members from here on; never held while the source is called.
  mutable std::condition_variable callEnded;
  StreamState state = StreamState::Stopped;
  krsystem::IBufferSource* source = nullptr; // Set while the state is not Stopped.
  krdevice::SourceLease lease;
  krdevice::BufferRing ring;
  std::size_t queueing = 0;       // Calls that are handing a buffer to the source.
  mutable std::size_t asking = 0; // Calls that are waiting for a frame of the source or reading its counters.
  KrStreamStatistics lastStatistics;
};

KrStream::KrStream(KrDevice& aDevice, std::size_t aBufferCount, std::uint32_t aChannel)
    : mBody(std::make_unique<Body>(aDevice, aBufferCount, aChannel)) {}

KrStream::~KrStream() {
  Stop();
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
  // The state is still Stopped, so that no other call touches the buffers.
  const KrResult result = mBody->FillSource(*source);
  if (!result.IsOK())
    return result;
  const std::lock_guard lock(mBody->mutex);
  mBody->lease = std::move(lease);
  mBody->source = source;
  mBody->state = StreamState::Running;
  return {};
}

KrResult KrStream::Retrieve(KrBuffer*& aBuffer, std::uint32_t aTimeoutMs) {
  aBuffer = nullptr;
  std::unique_lock lock(mBody->mutex);
  if (mBody->state != StreamState::Running)
    return {KrResult::Code::Aborted, "Waiting for a frame: the stream does not run."};
  krsystem::IBufferSource* const source = mBody->source;
  ++mBody->asking;
  lock.unlock();
  KrBuffer* buffer = nullptr;
  KrResult result = source->Retrieve(buffer, aTimeoutMs);
  lock.lock();
  --mBody->asking;
  mBody->callEnded.notify_all();
  if (!result.IsOK())
    return result;
  if (!mBody->ring.Lend(buffer))
    return {KrResult::Code::ProtocolError, "Waiting for a frame: the device's link gave a buffer of another stream."};
  aBuffer = buffer;
  return result;
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
  callEnded.notify_all();
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
  // A buffer queued after the source has stopped would stay with it.
  mBody->callEnded.wait(lock, [this] { return mBody->queueing == 0; });
  lock.unlock();
  mBody->source->Stop();
  const KrStreamStatistics counted = ToStreamStatistics(mBody->source->GetStatistics());
  lock.lock();
  mBody->callEnded.wait(lock, [this] { return mBody->asking == 0; });
  mBody->lastStatistics = counted;
  mBody->source = nullptr;
  mBody->lease = krdevice::SourceLease();
  mBody->state = StreamState::Stopped;
  mBody->callEnded.notify_all();
}

bool KrStream::IsRunning() const {
  const std::lock_guard lock(mBody->mutex);
  return mBody->state != StreamState::Stopped;
}

KrStreamStatistics KrStream::GetStatistics() const {
  std::unique_lock lock(mBody->mutex);
  // A stream that is just being stopped has its last counters in a moment.
  mBody->callEnded.wait(lock, [this] { return mBody->state != StreamState::Stopping; });
  if (mBody->state == StreamState::Stopped)
    return mBody->lastStatistics;
  krsystem::IBufferSource* const source = mBody->source;
  ++mBody->asking;
  lock.unlock();
  const KrStreamStatistics counted = ToStreamStatistics(source->GetStatistics());
  lock.lock();
  --mBody->asking;
  mBody->callEnded.notify_all();
  return counted;
}
