#pragma once
// What the kernel knows of this host's network: its links, their addresses, the ways out and the neighbours, as plain
// values. What is made of them is decided elsewhere.

#include "krbase/krresult.h"
#include "krsystem/macaddress.h"

#include <cstdint>
#include <string>
#include <vector>

namespace krtransport {

struct KernelLink {
  int index = 0; ///< By which the other tables name it.
  std::string name;
  std::string kind;               ///< Of a virtual one, for example "veth" or "vlan"; empty for hardware.
  std::uint32_t flags = 0;        ///< IFF_UP, IFF_LOOPBACK, IFF_LOWER_UP …
  std::uint32_t hardwareType = 0; ///< ARPHRD_ETHER …
  krsystem::MACAddress mac{};     ///< Zeros where it has none.
  int master = 0;                 ///< The link whose port it is; 0 for none.
  int lower = 0;                  ///< The link that it stands on, of this network namespace; 0 for none.
};

struct KernelAddress {
  int linkIndex = 0;
  std::uint32_t address = 0;
  std::uint32_t prefixLength = 0;
  std::uint32_t peer = 0; ///< The other end of a point-to-point line, which the prefix belongs to; else 0.
};

/// A way to everywhere.
struct KernelRoute {
  int linkIndex = 0;
  std::uint32_t gateway = 0; ///< 0 where what is for everywhere goes straight onto the link.
  std::uint32_t metric = 0;  ///< The smallest is used.
};

/// What is known of an address on a link's network.
struct KernelNeighbour {
  int linkIndex = 0;
  std::uint32_t address = 0;
  std::uint32_t state = 0; ///< NUD_REACHABLE, NUD_STALE …
  bool hasLinkAddress = false;
};

struct KernelTables {
  std::vector<KernelLink> links;          ///< In the order of their indexes.
  std::vector<KernelAddress> addresses;   ///< IPv4, those of one link in the kernel's order.
  std::vector<KernelRoute> defaultRoutes; ///< Of the main table, those of several ways by each.
};

/// Reads links, addresses and default routes. SystemError when the kernel refuses. Any thread.
KrResult ReadKernelTables(KernelTables& aTables);
/// Reads the neighbours of IPv4. SystemError when the kernel refuses. Any thread.
KrResult ReadNeighbours(std::vector<KernelNeighbour>& aNeighbours);

} // namespace krtransport
