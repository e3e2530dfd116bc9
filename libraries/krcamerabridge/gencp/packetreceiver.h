#pragma once
// Finds packets in a stream of bytes of which some may be missing, doubled or changed, or belong to nothing.

#include "gencp/packet.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace krcamerabridge {

/// Thread: one at a time. Holds no more than was added and is no packet yet.
class PacketReceiver {
public:
  void Add(std::span<const std::uint8_t> aBytes);
  /// The next whole packet; false where there is none yet. What stands before it is dropped.
  bool Take(Packet& aPacket);
  /// Whether the beginning of what may be a packet waits for its rest.
  bool HasPart() const { return !mBytes.empty(); }
  /// How many bytes it has of that; after all packets were taken always less than the largest packet's.
  std::size_t CountWaiting() const { return mBytes.size(); }
  /// Whether something was dropped that looked like a packet and was none, since the last Clear.
  bool IsDamaged() const { return mIsDamaged; }
  void Clear();

private:
  std::vector<std::uint8_t> mBytes;
  bool mIsDamaged = false;
};

} // namespace krcamerabridge
