#include "clprotocol/cldrivertimes.h"

#include <algorithm>

namespace krcamerabridge {

std::uint64_t GetRegisterLineMs(std::size_t aBytes, std::uint32_t aBaudRate) {
  constexpr std::uint64_t kLineBits = 8 * 10; // Each byte with its start and stop bits.
  constexpr std::uint64_t kCameraMs = 2;
  const std::uint64_t baudRate = std::max<std::uint32_t>(aBaudRate, 1);
  const std::uint64_t bytes = std::min<std::uint64_t>(aBytes, UINT32_MAX);
  return bytes * kCameraMs + (bytes * kLineBits * 1000 + baudRate - 1) / baudRate;
}

std::uint32_t GetRegisterLimitMs(const CLDriverTimes& aTimes, std::size_t aBytes, std::uint32_t aBaudRate) {
  return static_cast<std::uint32_t>(
      std::min<std::uint64_t>(aTimes.registerLimitMs + GetRegisterLineMs(aBytes, aBaudRate), UINT32_MAX));
}

} // namespace krcamerabridge
