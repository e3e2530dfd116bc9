#pragma once
// Follows one stream of Aravis' on its receiving thread and keeps the figures that Aravis does not count right. The
// arithmetic is the ledger's.

#include "aravis/gobjectpointer.h"
#include "aravis/istreamdevice.h"
#include "gigevision/packetledger.h"

#include <atomic>
#include <cstdint>

namespace krtransport {

/// Thread: Watch before the stream has buffers, GetFigures any. Outlives the stream.
class PacketCount {
public:
  explicit PacketCount(std::uint64_t aPacketsPerFrame);

  /// Aravis' callback, with the count as user data.
  static void OnStreamEvent(void* aCount, ArvStreamCallbackType aType, ArvBuffer* aFrame);
  /// Names the stream that calls back.
  void Watch(ArvStream* aStream) { mStream = aStream; }
  PacketFigures GetFigures(ArvStream& aStream) const;

private:
  void Note(ArvStreamCallbackType aType, ArvBuffer* aFrame);

  std::atomic<ArvStream*> mStream{nullptr};
  PacketLedger mLedger; // The receiving thread's.
  std::atomic<std::uint64_t> mMissing{0};
  std::atomic<std::uint64_t> mPacketsPerFrame;
};

} // namespace krtransport
