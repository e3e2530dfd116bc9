#pragma once
// The pause that a streaming device makes after each packet, so that the cameras on one adapter share its link. How
// large a share is stands in the calculation; who streams, in the membership.

#include "gigevision/bootstrapregisters.h"

#include <cstdint>
#include <functional>
#include <string>

namespace krtransport {

/// The adapter's speed in bits per second by its name; 0 where it is not known.
using LinkSpeedReader = std::function<std::uint64_t(const std::string& aAdapterName)>;

/// Sets the pause from its first Apply on and puts back the one that the device had. A device that had a longer one
/// keeps it; one that refuses is left alone, and that is logged.
///
/// Thread: the link's I/O thread. Ownership: borrows the registers.
class PacketPacing {
public:
  PacketPacing(IBootstrapRegisters& aRegisters, std::string aAdapterName, LinkSpeedReader aReadSpeed);

  /// Divides the link between a number of cameras; the packets' size includes headers of IP and above.
  void Apply(std::uint32_t aCameras, std::uint32_t aPacketBytes);
  /// Puts back the device's own pause.
  void Restore();

private:
  bool ReadDevice();
  void Write(std::uint32_t aTicks);
  void LeaveAlone(const KrResult& aReason);

  IBootstrapRegisters& mRegisters;
  const std::string mAdapterName;
  const LinkSpeedReader mReadSpeed;
  bool mIsKnown = false;     // The device was read.
  bool mIsLeftAlone = false; // The device refused.
  std::uint64_t mTicksPerSecond = 0;
  std::uint32_t mOwnTicks = 0;
  std::uint32_t mSetTicks = 0;
};

} // namespace krtransport
