#pragma once
// How the cameras on one network adapter divide its link between them: by the pause that each makes after a packet.
// Who streams, and how a device is told, is left to the callers.

#include <cstdint>

namespace krtransport {

/// What a camera's share is worked out from.
struct BandwidthDemand {
  std::uint64_t linkBitsPerSecond = 0; ///< The adapter's; 0 where it is not known.
  std::uint32_t cameras = 0;           ///< That stream on the adapter, this one included.
  std::uint32_t packetBytes = 0;       ///< Headers of IP and above included.
  std::uint64_t ticksPerSecond = 0;    ///< The device's time stamp clock, in which it counts the pause.
};

/// The pause after each packet, in ticks, with which the camera takes an equal share of nine tenths of the link: the
/// rest is left for acknowledges, resends and the clocks' inaccuracy. 0 for a camera alone on its adapter and where
/// link, packet or clock is not known; cut to the register's 32 bits.
std::uint32_t CalculatePacketDelay(const BandwidthDemand& aDemand);

} // namespace krtransport
