#include "gencp/packetreceiver.h"

#include <algorithm>

namespace krcamerabridge {

namespace {

constexpr std::uint8_t kFirstByte = 0x01; // Of a preamble.

} // namespace

void PacketReceiver::Add(std::span<const std::uint8_t> aBytes) {
  mBytes.insert(mBytes.end(), aBytes.begin(), aBytes.end());
}

bool PacketReceiver::Take(Packet& aPacket) {
  std::size_t begin = 0;
  bool isTaken = false;
  while (begin < mBytes.size()) {
    std::size_t size = 0;
    const PacketState state = ParsePacket(std::span(mBytes).subspan(begin), aPacket, size);
    if (state == PacketState::Incomplete)
      break;
    if (state == PacketState::Complete) {
      begin += size;
      isTaken = true;
      break;
    }
    // A preamble may stand anywhere behind the one that was none.
    mIsDamaged = true;
    const auto next = std::find(mBytes.begin() + static_cast<std::ptrdiff_t>(begin) + 1, mBytes.end(), kFirstByte);
    begin = static_cast<std::size_t>(next - mBytes.begin());
  }
  mBytes.erase(mBytes.begin(), mBytes.begin() + static_cast<std::ptrdiff_t>(begin));
  return isTaken;
}

void PacketReceiver::Clear() {
  mBytes.clear();
  mIsDamaged = false;
}

} // namespace krcamerabridge
