#include "gigevision/bandwidthshare.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace krtransport {
namespace {

// What Ethernet adds to an IP packet on the wire: preamble 8, header 14, checksum 4, gap 12.
constexpr double kEthernetBytes = 38;
constexpr double kBitsPerByte = 8;
constexpr double kUsedPart = 0.9;

} // namespace

std::uint32_t CalculatePacketDelay(const BandwidthDemand& aDemand) {
  if (aDemand.cameras < 2 || aDemand.linkBitsPerSecond == 0 || aDemand.packetBytes == 0)
    return 0;
  const double packetSeconds =
      (aDemand.packetBytes + kEthernetBytes) * kBitsPerByte / static_cast<double>(aDemand.linkBitsPerSecond);
  // A packet of each camera in one round, stretched so that the used part of the link carries them.
  const double roundSeconds = packetSeconds * aDemand.cameras / kUsedPart;
  const double ticks = std::ceil((roundSeconds - packetSeconds) * static_cast<double>(aDemand.ticksPerSecond));
  constexpr double kMost = std::numeric_limits<std::uint32_t>::max();
  return static_cast<std::uint32_t>(std::min(ticks, kMost));
}

} // namespace krtransport
