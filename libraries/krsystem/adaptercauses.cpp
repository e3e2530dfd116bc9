#include "adaptercauses.h"

#include "findingtext.h"
#include "krsystem/ipv4address.h"

#include <algorithm>
#include <bit>
#include <optional>
#include <string_view>

namespace krsystem {

namespace {

constexpr std::int32_t kStrictFilter = 1;
constexpr std::int32_t kLooseFilter = 2;

// What the adapters together tell of the host.
struct Host {
  bool hasDefaultRoute = false;
  bool hasPlug = false; // Hardware, not the loopback adapter and virtual ones alone.
};

struct Subnet {
  std::uint32_t address;
  std::uint32_t mask;
};

std::optional<Subnet> ParseSubnet(const AdapterAddress& aAddress) {
  const std::optional<std::uint32_t> address = ParseIPv4(aAddress.address);
  const std::optional<std::uint32_t> mask = ParseIPv4(aAddress.mask);
  // Without a mask nothing is said of a network.
  if (!address || !mask || *address == 0 || *mask == 0)
    return std::nullopt;
  return Subnet{*address, *mask};
}

// An address of each of two adapters, in one subnet.
struct Overlap {
  const AdapterAddress* first;
  const AdapterAddress* second;
};

std::optional<Overlap> FindOverlap(const AdapterReading& aFirst, const AdapterReading& aSecond) {
  for (const AdapterAddress& first : aFirst.addresses) {
    for (const AdapterAddress& second : aSecond.addresses) {
      const std::optional<Subnet> a = ParseSubnet(first);
      const std::optional<Subnet> b = ParseSubnet(second);
      if (a && b && ((a->address ^ b->address) & a->mask & b->mask) == 0)
        return Overlap{&first, &second};
    }
  }
  return std::nullopt;
}

KrFinding MakeNoAdapter() {
  return {KrFindingKind::NoAdapter,
          {},
          "This computer has no network adapter but the loopback one, so no camera on the network can be found.",
          "Add an adapter, or its driver; give a container or a network namespace one of the host's, or start the "
          "program outside of it.\nip link show"};
}

KrFinding MakeDown(const AdapterReading& aAdapter) {
  const KrString& name = GetName(aAdapter);
  return {KrFindingKind::AdapterDown, name, "The network adapter " + name + " is switched off.",
          "Switch it on if a camera is connected to it." +
              AppendCommand(name, "sudo ip link set " + name.ToUtf8() + " up")};
}

KrFinding MakeNoCarrier(const AdapterReading& aAdapter) {
  const KrString& name = GetName(aAdapter);
  const std::string show = AppendCommand(name, "ip link show " + name.ToUtf8());
  switch (aAdapter.basis) {
  case AdapterBasis::Ports:
    return {KrFindingKind::NoCarrier, name, "None of the ports of the network adapter " + name + " has a link.",
            "Check the cables of its ports, that the ports are switched on, and that the camera has power." +
                AppendCommand(name, "ip link show master " + name.ToUtf8())};
  case AdapterBasis::VirtualCable:
    return {KrFindingKind::NoCarrier, name, "The network adapter " + name + " has no link: its other end is off.",
            "Switch on the other end of this virtual cable. LOWER_UP shows that there is a link." + show};
  default:
    return {KrFindingKind::NoCarrier, name,
            "The network adapter " + name + " has no link: there is no cable, or nobody at its other end.",
            "Check the cable, and that the camera has power. LOWER_UP shows that there is a link." + show};
  }
}

KrFinding MakeNoAddress(const AdapterReading& aAdapter) {
  const KrString& name = GetName(aAdapter);
  return {KrFindingKind::NoAddress, name,
          "The network adapter " + name + " has no IPv4 address, so no camera can be reached behind it.",
          "Give it one in the subnet of the camera, in the system's network settings or until the next start; a camera "
          "that was never given an address mostly has one of 169.254.0.0/16." +
              AppendCommand(name, "sudo ip address add 169.254.1.1/16 dev " + name.ToUtf8())};
}

KrFinding MakeReversePathFilter(const AdapterReading& aAdapter, const Host& aHost) {
  const KrString& name = GetName(aAdapter);
  // In the names of settings a slash stands for a point of an adapter's name.
  std::string setting = "net.ipv4.conf." + name.ToUtf8() + ".rp_filter";
  std::replace(setting.begin() + std::string_view("net.ipv4.conf.").size(),
               setting.end() - std::string_view(".rp_filter").size(), '.', '/');
  const std::string off = AppendCommand(name, "sudo sysctl -w net.ipv4.conf.all.rp_filter=0 " + setting + "=0");
  const KrString drops = "The kernel drops what comes to " + name + " from addresses of other subnets (";
  const KrString so = "), so a camera with such an address may not be seen.";
  if (aAdapter.reversePathFilter == kLooseFilter)
    return {KrFindingKind::ReversePathFilter, name,
            drops + "loose reverse-path filter, on a host without a default route" + so,
            "Switch the filter off for the adapter and for all." + off};
  const KrString text = drops + "strict reverse-path filter" + so;
  if (aHost.hasDefaultRoute)
    return {KrFindingKind::ReversePathFilter, name, text,
            "Make the filter loose." + AppendCommand(name, "sudo sysctl -w " + setting + "=2")};
  return {KrFindingKind::ReversePathFilter, name, text,
          "Switch the filter off for the adapter and for all; a loose one drops them, too, on a host without a default "
          "route." +
              off};
}

// Nobody is told to delete an address: it may be the one by which the user is logged in.
KrFinding MakeSubnetNotUnique(const AdapterReading& aAdapter, const AdapterReading& aOther, const Overlap& aOverlap) {
  const KrString& name = GetName(aAdapter);
  const KrString& other = GetName(aOther);
  const auto describe = [](const AdapterAddress& aOne) { return aOne.address + ", mask " + aOne.mask; };
  const KrString remedy =
      "Give one of the two, and the cameras behind it, addresses of another subnet, in the system's "
      "network settings. Mind by which of them you are logged in.";
  const int prefix = std::popcount(ParseIPv4(aOverlap.first->mask).value_or(0));
  const int otherPrefix = std::popcount(ParseIPv4(aOverlap.second->mask).value_or(0));
  if (prefix == otherPrefix)
    return {KrFindingKind::SubnetNotUnique, name,
            "The network adapters " + name + " (" + describe(*aOverlap.first) + ") and " + other + " (" +
                describe(*aOverlap.second) +
                ") lie in one subnet: the kernel sends by one of them only, and cameras behind the other one cannot be "
                "reached.",
            remedy};
  const bool isInner = prefix > otherPrefix;
  const KrString inner = isInner ? name : other;
  const KrString outer = isInner ? other : name;
  return {KrFindingKind::SubnetNotUnique, name,
          "The subnet of the network adapter " + inner + " (" + describe(isInner ? *aOverlap.first : *aOverlap.second) +
              ") lies within that of " + outer + " (" + describe(isInner ? *aOverlap.second : *aOverlap.first) +
              "): what is for it is sent by " + inner + " alone, and cameras behind " + outer +
              " with an address of it cannot be reached.",
          remedy};
}

KrFinding MakeReceiveBufferLimit(std::uint64_t aBytes) {
  return {KrFindingKind::ReceiveBufferLimit,
          {},
          "A socket is given " + std::to_string(aBytes) +
              " bytes for what it receives (net.core.rmem_max), and two frames of a usual camera take " +
              std::to_string(kReceiveBufferNeedBytes) + ": frames may be incomplete.",
          "Raise the limit; a file in /etc/sysctl.d keeps it.\nsudo sysctl -w net.core.rmem_max=33554432"};
}

// Whether a camera may be behind an adapter at all. The host's end of a container's cable has no address and is none of
// its business; where there is no hardware, as in a container, the other end may be what counts.
bool MayHaveCameras(const AdapterReading& aAdapter, const Host& aHost) {
  switch (aAdapter.basis) {
  case AdapterBasis::Nothing:
    return false;
  case AdapterBasis::VirtualCable:
    return !aHost.hasPlug || FindAddress(aAdapter);
  default:
    return true;
  }
}

bool IsFiltered(const AdapterReading& aAdapter, const Host& aHost) {
  return (aAdapter.reversePathFilter == kStrictFilter && !aAdapter.hasDefaultRoute) ||
         (aAdapter.reversePathFilter == kLooseFilter && !aHost.hasDefaultRoute);
}

void FindCausesOf(const AdapterReading& aAdapter, const Host& aHost, std::vector<KrFinding>& aFindings) {
  if (!MayHaveCameras(aAdapter, aHost))
    return;
  if (!aAdapter.isUp) {
    aFindings.push_back(MakeDown(aAdapter));
    return;
  }
  if (!aAdapter.hasCarrier) {
    // Of one that stands on another adapter, that one is told of.
    if (aAdapter.basis != AdapterBasis::Adapter)
      aFindings.push_back(MakeNoCarrier(aAdapter));
  } else if (!FindAddress(aAdapter) && !aAdapter.hasOthersOn) {
    aFindings.push_back(MakeNoAddress(aAdapter));
  }
  if (IsFiltered(aAdapter, aHost))
    aFindings.push_back(MakeReversePathFilter(aAdapter, aHost));
}

void FindSharedSubnets(const std::vector<const AdapterReading*>& aAdapters, std::vector<KrFinding>& aFindings) {
  std::vector<const AdapterReading*> inUse;
  for (const AdapterReading* adapter : aAdapters) {
    if (!adapter->isUp)
      continue;
    // One finding for each adapter beyond the first of a subnet, not one for each pair.
    for (const AdapterReading* former : inUse) {
      const std::optional<Overlap> overlap = FindOverlap(*adapter, *former);
      if (!overlap || former->uniqueID == adapter->uniqueID)
        continue;
      aFindings.push_back(MakeSubnetNotUnique(*adapter, *former, *overlap));
      break;
    }
    inUse.push_back(adapter);
  }
}

bool IsUsable(const AdapterReading& aAdapter) {
  return aAdapter.isUp && aAdapter.hasCarrier && aAdapter.basis != AdapterBasis::Nothing && FindAddress(aAdapter);
}

} // namespace

void FindAdapterCauses(const HostReadings& aReadings, std::vector<KrFinding>& aFindings) {
  Host host;
  std::vector<const AdapterReading*> adapters;
  if (aReadings.hasNetworkTransport && std::ranges::all_of(aReadings.adapters, &AdapterReading::isLoopback))
    aFindings.push_back(MakeNoAdapter());
  for (const AdapterReading& adapter : aReadings.adapters) {
    host.hasDefaultRoute = host.hasDefaultRoute || adapter.hasDefaultRoute;
    if (adapter.isLoopback)
      continue;
    host.hasPlug = host.hasPlug || adapter.basis == AdapterBasis::Plug;
    // What is wrong with ports shows in what they are ports of.
    if (!adapter.isPort)
      adapters.push_back(&adapter);
  }
  for (const AdapterReading* adapter : adapters)
    FindCausesOf(*adapter, host, aFindings);
  FindSharedSubnets(adapters, aFindings);
  const bool canStream = std::ranges::any_of(adapters, [](const auto* aAdapter) { return IsUsable(*aAdapter); });
  if (canStream && aReadings.receiveBufferLimitBytes && *aReadings.receiveBufferLimitBytes < kReceiveBufferNeedBytes)
    aFindings.push_back(MakeReceiveBufferLimit(*aReadings.receiveBufferLimitBytes));
}

} // namespace krsystem
