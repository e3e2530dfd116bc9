#include "gigevision/bandwidthshare.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace krtransport {
namespace {

// What Ethernet adds to an IP packet on the wire: preamble 8, header 14, checksum 4, gap 12.
constexpr double kEthernetBytes = 38;
constexpr double kBitsPerByte = 8;
// The used part of the link.
constexpr double kUsedTenths = 9;

} // namespace

std::uint32_t CalculatePacketDelay(const BandwidthDemand& aDemand) {
  if (aDemand.cameras < 2 || aDemand.linkBitsPerSecond == 0 || aDemand.packetBytes == 0)
    return 0;
  // A packet of each camera in one round, stretched by 10/9, less the camera's own packet. As whole numbers up to the
  // division, so that nothing is rounded up that divides evenly.
  const double packetBits = (aDemand.packetBytes + kEthernetBytes) * kBitsPerByte;
  const double pauseNinths = 10.0 * aDemand.cameras - kUsedTenths;
  const double ticks = std::ceil(packetBits * pauseNinths * static_cast<double>(aDemand.ticksPerSecond) /
                                 (kUsedTenths * static_cast<double>(aDemand.linkBitsPerSecond)));
  constexpr double kMost = std::numeric_limits<std::uint32_t>::max();
  return static_cast<std::uint32_t>(std::min(ticks, kMost));
}

} // namespace krtransport
