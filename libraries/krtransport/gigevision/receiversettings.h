#pragma once
// How Aravis' receiver of GigE Vision streams is set, and what it counts beside frames, as features. Settings hold from
// one stream to the next; when a stream lives is arranged by the buffer source.

#include "aravis/istreamdevice.h"
#include "aravis/streamcounters.h"
#include "krsystem/hostfeature.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <mutex>

namespace krtransport {

/// Thread: any. Ownership: outlives the features that it lists.
class ReceiverSettings {
public:
  ReceiverSettings();

  /// The features, of the stream that aStream lets be used while there is one.
  krsystem::HostFeatures List(IStreamUse& aStream);

  /// Sets a new stream to what can be changed while it runs; its counters begin.
  void OnStreamOpened(ArvStream& aStream);
  /// Keeps the counters of a stream that is about to end.
  void OnStreamEnding(ArvStream& aStream) { mCounters.Keep(aStream); }
  /// The bytes of the socket's buffer for frames of a size.
  std::uint32_t GetSocketBytes(std::uint64_t aPayloadBytes) const;
  /// Whether packets may be taken past the kernel's stack, where this process has the right.
  bool IsPacketSocketEnabled() const;

  /// How many settings a running stream takes.
  static constexpr std::size_t kLiveSettings = 5;

private:
  krsystem::HostFeature MakeLiveSetting(IStreamUse& aStream, std::size_t aIndex);
  void AddSocketSettings(krsystem::HostFeatures& aFeatures);

  StreamCounters mCounters;
  mutable std::mutex mMutex; // Guards the members from here on; nothing else is called with it held.
  std::array<std::int64_t, kLiveSettings> mLive{};
  bool mIsSocketSizeFixed = false;
  std::uint32_t mSocketBytes;
  bool mIsPacketSocketEnabled = true;
};

} // namespace krtransport
