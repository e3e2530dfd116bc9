#include "aravis/aravisbuffersource.h"

#include "aravis/lentbuffer.h"
#include "krbase/krlogger.h"

#include <algorithm>
#include <utility>

namespace krtransport {
namespace {

constexpr std::uint32_t kFeatureTimeoutMs = 10000;

// What a job makes, shared so that it outlives a caller who left.
template <typename T>
struct JobResult {
  T value{};
};

// Stops acquisition and releases a stream, which joins its receiving thread: only then are its buffers free. A device
// that is lost, or does not answer when asked, is not told.
KrResult EndStream(IStreamDevice& aDevice, StreamPointer aStream, bool aIsLost) {
  const bool isTold = !aIsLost && aDevice.Answers();
  KrResult result = isTold ? aDevice.StopAcquisition() : KrResult();
  aStream.reset();
  aDevice.OnStreamReleased(!isTold);
  return result;
}

} // namespace

AravisBufferSource::AravisBufferSource(IoThread& aIoThread, std::shared_ptr<IStreamDevice> aDevice)
    : mIoThread(aIoThread), mDevice(std::move(aDevice)),
      mReceiver(std::make_shared<Receiver>(mDevice->GetChunkByteOrder())) {}

AravisBufferSource::~AravisBufferSource() {
  Stop();
}

KrResult AravisBufferSource::GetPayloadSize(std::uint64_t& aBytes) {
  const auto made = std::make_shared<JobResult<std::uint64_t>>();
  KrResult result =
      mIoThread.Run([device = mDevice, made](const std::atomic<bool>&) { return device->GetPayloadSize(made->value); },
                    kFeatureTimeoutMs);
  if (result.IsOK())
    aBytes = made->value;
  return result;
}

KrResult AravisBufferSource::Queue(KrBuffer* aBuffer) {
  if (aBuffer == nullptr || aBuffer->GetDataPointer() == nullptr)
    return {KrResult::Code::InvalidInput, "A buffer needs memory before it can be queued."};
  if (mIsLost)
    return {KrResult::Code::WrongState, "The device was lost; its stream takes no buffers any more."};
  const std::lock_guard lock(mMutex);
  mReceiver->inbox.Lend(*aBuffer);
  if (mStream == nullptr)
    mWaiting.push_back(aBuffer);
  else
    arv_stream_push_buffer(mStream.get(), LendBuffer(*aBuffer).release());
  return {};
}

KrResult AravisBufferSource::Start() {
  {
    const std::lock_guard lock(mMutex);
    if (mStream != nullptr)
      return {KrResult::Code::WrongState, "The stream is started already."};
  }
  std::uint64_t payloadBytes = 0;
  if (KrResult result = GetPayloadSize(payloadBytes); !result.IsOK())
    return result;
  if (KrResult result = OpenStream(payloadBytes); !result.IsOK())
    return result;
  KrResult result = mIoThread.Run([device = mDevice](const std::atomic<bool>&) { return device->StartAcquisition(); },
                                  kFeatureTimeoutMs);
  if (!result.IsOK())
    Stop();
  return result;
}

KrResult AravisBufferSource::OpenStream(std::uint64_t aPayloadBytes) {
  // In this order: the stream, which fills the receiver, is released first.
  struct Made {
    std::shared_ptr<Receiver> receiver;
    StreamPointer stream;
  };
  const auto made = std::make_shared<Made>();
  made->receiver = mReceiver;
  mReceiver->inbox.Open();
  mReceiver->reader = FrameReader(mDevice->GetChunkByteOrder());
  KrResult result = mIoThread.Run(
      [device = mDevice, made, aPayloadBytes](const std::atomic<bool>& aIsAbandoned) {
        KrResult created = device->CreateStream(aPayloadBytes, made->stream);
        if (created.IsOK() && !aIsAbandoned) {
          g_signal_connect(made->stream.get(), "new-buffer", G_CALLBACK(OnNewBuffer), made->receiver.get());
          return created;
        }
        made->stream.reset();
        device->OnStreamReleased(false);
        return created;
      },
      kFeatureTimeoutMs);
  const auto release = [device = mDevice, made](const std::atomic<bool>&) {
    if (std::exchange(made->stream, {}) != nullptr)
      device->OnStreamReleased(!device->Answers());
    return KrResult();
  };
  if (!result.IsOK()) {
    mReceiver->inbox.Close(result);
    // The job may have made the stream while its caller was leaving.
    mIoThread.Post(release);
    return result;
  }
  const std::lock_guard lock(mMutex);
  if (mIsDetached) {
    mIoThread.Post(release);
    return {KrResult::Code::ConnectionLost, "The device was lost while its stream was opened."};
  }
  mStream = std::move(made->stream);
  mDevice->OnStreamOpened(*mStream);
  for (KrBuffer* buffer : mWaiting)
    arv_stream_push_buffer(mStream.get(), LendBuffer(*buffer).release());
  mWaiting.clear();
  mLast = {};
  return {};
}

KrResult AravisBufferSource::Retrieve(KrBuffer*& aBuffer, std::uint32_t aTimeoutMs, const std::stop_token& aCancel) {
  return mReceiver->inbox.Take(aBuffer, aTimeoutMs, aCancel);
}

void AravisBufferSource::Stop() {
  if (!mIsLost)
    mReceiver->inbox.Close({KrResult::Code::Aborted, "The stream was stopped."});
  const auto ended = std::make_shared<KrResult>();
  {
    const std::lock_guard lock(mMutex);
    mWaiting.clear();
    if (mStream == nullptr && !mIsDetached)
      return;
    QueueEnd(mIsLost, ended);
  }
  // The stream, whoever had it ended, was ended before this job runs.
  const KrResult result = mIoThread.RunToEnd([ended](const std::atomic<bool>&) { return *ended; });
  if (!result.IsOK())
    KrLogger("Transport")
        .Log(KrLogLevel::Info, {"AravisBufferSource::Stop", "aravisbuffersource"}, result.GetDescription());
}

krsystem::SourceStatistics AravisBufferSource::GetStatistics() const {
  const std::lock_guard lock(mMutex);
  return mStream != nullptr ? ReadStatistics() : mLast;
}

krsystem::SourceStatistics AravisBufferSource::ReadStatistics() const {
  // Aravis counts frames that were too large for their buffers as whole, so frames are counted here.
  const FrameCounts counts = mReceiver->inbox.GetCounts();
  const PacketFigures figures = mDevice->GetPacketFigures(*mStream);
  return {.received = counts.whole,
          .incomplete = counts.cutShort,
          .missingPackets = figures.missingPackets,
          .resentPackets = figures.resentPackets,
          .discarded = figures.droppedFrames,
          .bytes = counts.bytes};
}

krsystem::SourceBuffers AravisBufferSource::CountBuffers() const {
  const std::lock_guard lock(mMutex);
  gint empty = 0;
  if (mStream != nullptr)
    arv_stream_get_n_buffers(mStream.get(), &empty, nullptr);
  return {.empty = static_cast<std::size_t>(std::max(empty, 0)), .filled = mReceiver->inbox.CountFilled()};
}

bool AravisBufferSource::Use(const std::function<void(ArvStream&)>& aUse) {
  const std::lock_guard lock(mMutex);
  if (mStream == nullptr)
    return false;
  aUse(*mStream);
  return true;
}

void AravisBufferSource::OnLost(const KrResult& aReason) {
  mIsLost = true;
  mReceiver->inbox.Close(aReason);
}

void AravisBufferSource::Detach(const KrResult& aReason, bool aIsAnswering) {
  OnLost(aReason);
  const std::lock_guard lock(mMutex);
  mIsDetached = true;
  mWaiting.clear();
  QueueEnd(!aIsAnswering, std::make_shared<KrResult>());
}

// Under the mutex: whoever finds the stream gone, and waits for the I/O thread, thereby waits for the stream's end.
void AravisBufferSource::QueueEnd(bool aIsLost, std::shared_ptr<KrResult> aEnded) {
  if (mStream == nullptr)
    return;
  mLast = ReadStatistics();
  mDevice->OnStreamEnding(*mStream);
  const auto stream = std::make_shared<StreamPointer>(std::move(mStream));
  mIoThread.Post(
      [device = mDevice, receiver = mReceiver, stream, aIsLost, ended = std::move(aEnded)](const std::atomic<bool>&) {
        *ended = EndStream(*device, std::move(*stream), aIsLost);
        return KrResult();
      });
}

void AravisBufferSource::OnNewBuffer(ArvStream* aStream, gpointer aReceiver) {
  GObjectPointer<ArvBuffer> frame(arv_stream_try_pop_buffer(aStream));
  if (frame == nullptr)
    return;
  auto& receiver = *static_cast<Receiver*>(aReceiver);
  KrBuffer& buffer = *GetLender(frame.get());
  const FrameDescription description = receiver.reader.Read(frame.get());
  receiver.lastFrame = std::move(frame);
  receiver.inbox.Put(buffer, description);
}

} // namespace krtransport
