#pragma once
// The stream channel of an open device on Aravis' receiver: lends it the buffers' memory and hands filled ones back.
// Order and reuse of buffers are KrStream's business.

#include "aravis/frameinbox.h"
#include "aravis/framereader.h"
#include "aravis/iothread.h"
#include "aravis/istreamdevice.h"
#include "krsystem/idevicelink.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

namespace krtransport {

/// Time limits: GetPayloadSize and Start give up after ten seconds for each step. Stop waits for the call that runs on
/// the I/O thread, with a dead device up to Aravis' own limit, and then half a second to find that the device is dead.
///
/// Thread: as IBufferSource. Ownership: borrows the I/O thread, shares the device.
class AravisBufferSource final : public krsystem::IBufferSource, private IStreamUse {
public:
  AravisBufferSource(IoThread& aIoThread, std::shared_ptr<IStreamDevice> aDevice);
  ~AravisBufferSource() override;

  KrResult GetPayloadSize(std::uint64_t& aBytes) override;
  KrResult Queue(KrBuffer* aBuffer) override;
  KrResult Start() override;
  KrResult Retrieve(KrBuffer*& aBuffer, std::uint32_t aTimeoutMs, const std::stop_token& aCancel) override;
  void Stop() override;
  krsystem::SourceStatistics GetStatistics() const override;
  krsystem::SourceBuffers CountBuffers() const override;
  krsystem::HostFeatures ListFeatures() override { return mDevice->ListStreamFeatures(*this); }

  /// Ends all waits for frames, because the device is lost. Any thread; nothing blocks.
  void OnLost(const KrResult& aReason);
  /// As OnLost, and ends the stream, where one is started, by a job on the I/O thread: a job that is queued after this
  /// finds it ended. A device that does not answer is not told.
  void Detach(const KrResult& aReason, bool aIsAnswering);

private:
  KrResult OpenStream(std::uint64_t aPayloadBytes);
  void QueueEnd(bool aIsLost, std::shared_ptr<KrResult> aEnded);
  krsystem::SourceStatistics ReadStatistics() const;
  bool Use(const std::function<void(ArvStream&)>& aUse) override;
  static void OnNewBuffer(ArvStream* aStream, gpointer aReceiver);

  IoThread& mIoThread;
  const std::shared_ptr<IStreamDevice> mDevice;
  // What the receiving thread fills, which therefore outlives the stream.
  struct Receiver {
    explicit Receiver(KrByteOrder aChunkOrder) : reader(aChunkOrder) {}
    FrameInbox inbox;
    FrameReader reader;
    GObjectPointer<ArvBuffer> lastFrame; // Aravis looks at a frame once more after it gave word of it.
  };
  const std::shared_ptr<Receiver> mReceiver;
  std::atomic<bool> mIsLost{false};

  // Guards the members below; the stream itself is made and released outside of it.
  mutable std::mutex mMutex;
  StreamPointer mStream;
  bool mIsDetached = false;         // The stream may still be ending on the I/O thread.
  std::vector<KrBuffer*> mWaiting;  // Buffers that were queued before the stream was there.
  krsystem::SourceStatistics mLast; // Of the stream that was stopped.
};

} // namespace krtransport
