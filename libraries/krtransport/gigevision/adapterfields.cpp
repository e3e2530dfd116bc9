#include "gigevision/adapterfields.h"

#include "krsystem/adapterids.h"
#include "krsystem/ipv4address.h"

#include <algorithm>
#include <linux/if.h>
#include <linux/if_arp.h>
#include <optional>

namespace krtransport {
namespace {

using krsystem::AdapterAddress;
using krsystem::NetworkAdapterFields;

// How people call the kinds of virtual links; others are called as the kernel calls them. Some stand on another adapter
// always, be it of another namespace.
struct KindRow {
  const char* kind;
  const char* description;
  bool isOnAnother = false;
};

constexpr KindRow kKinds[] = {
    {"bond", "Bond"},
    {"bridge", "Bridge"},
    {"dummy", "Dummy adapter"},
    {"macvlan", "Virtual adapter (macvlan)", true},
    {"macvtap", "Virtual adapter (macvtap)", true},
    {"ipvlan", "Virtual adapter (ipvlan)", true},
    {"team", "Team"},
    {"tun", "Tunnel of a program (tun)"},
    {"veth", "Virtual cable (veth)"},
    {"vlan", "VLAN", true},
    {"vxlan", "VXLAN"},
    {"wireguard", "WireGuard tunnel"},
};

const KindRow* FindKind(const KernelLink& aLink) {
  const auto* row = std::ranges::find_if(kKinds, [&aLink](const KindRow& aRow) { return aLink.kind == aRow.kind; });
  return row != std::end(kKinds) ? row : nullptr;
}

bool IsUp(const KernelLink& aLink) {
  return (aLink.flags & IFF_UP) != 0;
}

bool IsLoopback(const KernelLink& aLink) {
  return (aLink.flags & IFF_LOOPBACK) != 0;
}

bool IsListed(const KernelLink& aLink, const KernelTables& aTables) {
  if (IsLoopback(aLink))
    return IsUp(aLink);
  return aLink.hardwareType == ARPHRD_ETHER ||
         std::ranges::find(aTables.addresses, aLink.index, &KernelAddress::linkIndex) != aTables.addresses.end();
}

std::uint32_t MakeMask(std::uint32_t aPrefixLength) {
  return aPrefixLength == 0 ? 0 : ~std::uint32_t{0} << (32 - std::min(aPrefixLength, 32u));
}

AdapterAddress MakeAddress(const KernelAddress& aAddress) {
  std::uint32_t mask = MakeMask(aAddress.prefixLength);
  // The prefix is that of the other end of a point-to-point line: an address outside it is alone in its subnet.
  if (aAddress.peer != 0 && ((aAddress.peer ^ aAddress.address) & mask) != 0)
    mask = ~std::uint32_t{0};
  return {krsystem::FormatIPv4(aAddress.address), krsystem::FormatIPv4(mask)};
}

std::vector<AdapterAddress> GetAddresses(const KernelTables& aTables, int aLinkIndex) {
  std::vector<AdapterAddress> addresses;
  for (const KernelAddress& address : aTables.addresses)
    if (address.linkIndex == aLinkIndex)
      addresses.push_back(MakeAddress(address));
  return addresses;
}

std::uint32_t GetGateway(const KernelTables& aTables, int aLinkIndex) {
  const KernelRoute* best = nullptr;
  for (const KernelRoute& route : aTables.defaultRoutes)
    if (route.linkIndex == aLinkIndex && route.gateway != 0 && (best == nullptr || route.metric < best->metric))
      best = &route;
  return best != nullptr ? best->gateway : 0;
}

// What is for everywhere goes by the routes of the smallest metric alone.
bool HasDefaultRoute(const KernelTables& aTables, int aLinkIndex) {
  const auto best = std::ranges::min_element(aTables.defaultRoutes, {}, &KernelRoute::metric);
  return std::ranges::any_of(aTables.defaultRoutes, [&](const KernelRoute& aRoute) {
    return aRoute.linkIndex == aLinkIndex && aRoute.metric == best->metric;
  });
}

// A router inside of the host has no addresses of its own: its members keep theirs, and hear what comes.
bool IsPort(const KernelTables& aTables, const KernelLink& aLink) {
  const auto master = std::ranges::find(aTables.links, aLink.master, &KernelLink::index);
  return aLink.master != 0 && (master == aTables.links.end() || master->kind != "vrf");
}

krsystem::AdapterBasis FindBasis(const KernelTables& aTables, const KernelLink& aLink) {
  using krsystem::AdapterBasis;
  if (aLink.kind.empty())
    return AdapterBasis::Plug;
  if (aLink.kind == "veth")
    return AdapterBasis::VirtualCable;
  if (std::ranges::find(aTables.links, aLink.index, &KernelLink::master) != aTables.links.end())
    return AdapterBasis::Ports;
  const KindRow* const row = FindKind(aLink);
  return aLink.lower != 0 || (row != nullptr && row->isOnAnother) ? AdapterBasis::Adapter : AdapterBasis::Nothing;
}

KrString Describe(const KernelLink& aLink, const DriverNameReader& aReadDriverName) {
  if (IsLoopback(aLink))
    return "Loopback";
  if (const KindRow* row = FindKind(aLink))
    return row->description;
  const std::string name = aLink.kind.empty() ? aReadDriverName(aLink.name) : aLink.kind;
  return name.empty() ? KrString("Network adapter") : KrString(name);
}

NetworkAdapterFields MakeFields(const KernelLink& aLink, const KernelTables& aTables,
                                const DriverNameReader& aReadDriverName) {
  NetworkAdapterFields fields;
  fields.name = aLink.name;
  fields.description = Describe(aLink, aReadDriverName);
  fields.isLoopback = IsLoopback(aLink);
  if (aLink.mac != krsystem::MACAddress{})
    fields.macAddress = krsystem::FormatMAC(aLink.mac);
  if (IsUp(aLink)) {
    if (auto addresses = GetAddresses(aTables, aLink.index); !addresses.empty())
      fields.addresses = std::move(addresses);
    fields.defaultGateway = krsystem::FormatIPv4(GetGateway(aTables, aLink.index));
  }
  fields.displayID = fields.name + " " + fields.addresses.front().address;
  return fields;
}

} // namespace

std::vector<NetworkAdapterFields>
MakeAdapterFields(const KernelTables& aTables, const DriverNameReader& aReadDriverName, bool aMayUsePacketSockets) {
  std::vector<NetworkAdapterFields> adapters;
  for (const KernelLink& link : aTables.links) {
    if (!IsListed(link, aTables))
      continue;
    adapters.push_back(MakeFields(link, aTables, aReadDriverName));
    adapters.back().tolvanDriverInstalled = aMayUsePacketSockets;
  }
  krsystem::AssignUniqueIDs(adapters);
  return adapters;
}

std::vector<krsystem::AdapterReading>
MakeAdapterReadings(const KernelTables& aTables,
                    const std::function<std::optional<std::int32_t>(const std::string& aName)>& aReadFilter) {
  const std::int32_t filterOfAll = aReadFilter("all").value_or(0);
  std::vector<krsystem::AdapterReading> readings;
  // No driver is asked: the readings do not name it.
  for (const auto& fields : MakeAdapterFields(
           aTables, [](const std::string&) { return std::string(); }, false)) {
    const auto link = std::ranges::find(aTables.links, fields.name.ToUtf8(), &KernelLink::name);
    krsystem::AdapterReading reading;
    reading.uniqueID = fields.uniqueID;
    reading.name = fields.name;
    reading.isLoopback = fields.isLoopback;
    reading.isUp = IsUp(*link);
    // Of one that is down nobody knows whether it has a cable.
    reading.hasCarrier = !reading.isUp || (link->flags & IFF_LOWER_UP) != 0;
    reading.addresses = GetAddresses(aTables, link->index);
    reading.reversePathFilter = std::max(filterOfAll, aReadFilter(link->name).value_or(0));
    reading.hasDefaultRoute = reading.isUp && HasDefaultRoute(aTables, link->index);
    reading.basis = FindBasis(aTables, *link);
    reading.isPort = IsPort(aTables, *link);
    reading.hasOthersOn = std::ranges::find(aTables.links, link->index, &KernelLink::lower) != aTables.links.end();
    readings.push_back(std::move(reading));
  }
  return readings;
}

} // namespace krtransport
