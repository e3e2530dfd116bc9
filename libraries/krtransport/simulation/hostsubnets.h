#pragma once
// The subnets of a simulated adapter, and which addresses of devices this host reaches there.

#include "krsystem/krinterface.h"

#include <cstdint>
#include <vector>

namespace krtransport {

/// Thread: a value.
class HostSubnets {
public:
  HostSubnets() = default;
  explicit HostSubnets(const std::vector<krsystem::AdapterAddress>& aAddresses);

  /// Whether a device of this address is reached: an address of one of the subnets that a device may have there, and
  /// not the adapter's own, as a device behind a cable is never this host.
  bool Reaches(std::uint32_t aAddress) const;
  /// The same, the adapter's own among them.
  bool Holds(std::uint32_t aAddress) const;
  /// Whether there is a subnet, and each can be broadcast in.
  bool HaveBroadcasts() const;
  /// Whether the address is one of the adapter's own.
  bool IsOwn(std::uint32_t aAddress) const;
  bool IsEmpty() const { return mSubnets.empty(); }
  /// For messages: "192.168.77.1 / 255.255.255.0", several with commas between them.
  KrString GetText() const;

private:
  struct Subnet {
    std::uint32_t address;
    std::uint32_t mask;
  };

  std::vector<Subnet> mSubnets;
};

} // namespace krtransport
