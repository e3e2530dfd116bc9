#include "gencp/accesstime.h"

#include "gencp/packet.h"

#include <algorithm>

namespace krcamerabridge {

std::uint64_t GetAccessLineMs(std::size_t aBytes, std::uint32_t aBaudRate, std::uint32_t aResponseMs) {
  constexpr std::uint64_t kSpare = 2;
  if (aBytes <= kMaxWriteBytes)
    return 0;
  const std::uint64_t pieces = (aBytes - kMaxWriteBytes + kSafeBytes - 1) / kSafeBytes;
  // Reading and writing have as many bytes on the line.
  constexpr std::uint64_t kPieceBytes = 2 * kPacketHeaderBytes + kReadMemoryBytes + kSafeBytes;
  const std::uint64_t transferUs = kPieceBytes * kBitsPerByte * 1000000 / std::max<std::uint32_t>(aBaudRate, 1);
  return kSpare * pieces * (transferUs + std::uint64_t{aResponseMs} * 1000) / 1000;
}

} // namespace krcamerabridge
