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

// The address of the first adapter that lies in a subnet of the second one, or the other way round.
const AdapterAddress* FindOverlap(const AdapterReading& aFirst, const AdapterReading& aSecond) {
  for (const AdapterAddress& first : aFirst.addresses) {
    for (const AdapterAddress& second : aSecond.addresses) {
      const std::optional<Subnet> a = ParseSubnet(first);
      const std::optional<Subnet> b = ParseSubnet(second);
      if (a && b && ((a->address ^ b->address) & a->mask & b->mask) == 0)
        return &first;
    }
  }
  return nullptr;
}

KrFinding MakeDown(const AdapterReading& aAdapter) {
  const KrString& name = GetName(aAdapter);
  return {KrFindingKind::AdapterDown, name, "The network adapter " + name + " is switched off.",
          "Switch it on if a camera is connected to it." +
              AppendCommand(name, "sudo ip link set " + name.ToUtf8() + " up")};
}

KrFinding MakeNoCarrier(const AdapterReading& aAdapter) {
  const KrString& name = GetName(aAdapter);
  return {KrFindingKind::NoCarrier, name,
          "The network adapter " + name + " has no link: there is no cable, or nobody at its other end.",
          "Check the cable, and that the camera has power. LOWER_UP shows that there is a link." +
              AppendCommand(name, "ip link show " + name.ToUtf8())};
}

KrFinding MakeNoAddress(const AdapterReading& aAdapter) {
  const KrString& name = GetName(aAdapter);
  return {KrFindingKind::NoAddress, name,
          "The network adapter " + name + " has no IPv4 address, so no camera can be reached behind it.",
          "Give it one in the subnet of the camera, in the system's network settings or until the next start; a camera "
          "that was never given an address mostly has one of 169.254.0.0/16." +
              AppendCommand(name, "sudo ip address add 169.254.1.1/16 dev " + name.ToUtf8())};
}

KrFinding MakeReversePathFilter(const AdapterReading& aAdapter) {
  const KrString& name = GetName(aAdapter);
  // In the names of settings a slash stands for a point of an adapter's name.
  std::string setting = "net.ipv4.conf." + name.ToUtf8() + ".rp_filter";
  std::replace(setting.begin() + std::string_view("net.ipv4.conf.").size(),
               setting.end() - std::string_view(".rp_filter").size(), '.', '/');
  return {KrFindingKind::ReversePathFilter, name,
          "The kernel drops what comes to " + name +
              " from addresses of other subnets (strict reverse-path filter), so a camera with such an address may not "
              "be seen.",
          "Make the filter loose. Where the host has no default route, switch it off for the adapter and for all." +
              AppendCommand(name, "sudo sysctl -w " + setting + "=2") +
              AppendCommand(name, "sudo sysctl -w net.ipv4.conf.all.rp_filter=0 " + setting + "=0")};
}

KrFinding MakeSubnetNotUnique(const AdapterReading& aAdapter, const AdapterReading& aOther,
                              const AdapterAddress& aAddress) {
  const KrString& name = GetName(aAdapter);
  const int prefix = std::popcount(ParseIPv4(aAddress.mask).value_or(0));
  return {KrFindingKind::SubnetNotUnique, name,
          "The network adapter " + name + " has the address " + aAddress.address + " (mask " + aAddress.mask +
              "), which lies in one subnet with " + GetName(aOther) +
              ": the kernel sends by one of them only, and cameras behind the other one cannot be reached.",
          "Give one of the two, and the cameras behind it, addresses of another subnet, in the system's network "
          "settings or until the next start." +
              AppendCommand(name, "sudo ip address del " + aAddress.address.ToUtf8() + "/" + std::to_string(prefix) +
                                      " dev " + name.ToUtf8()) +
              AppendCommand(name, "sudo ip address add ADDRESS/PREFIX dev " + name.ToUtf8())};
}

KrFinding MakeReceiveBufferLimit(std::uint64_t aBytes) {
  return {KrFindingKind::ReceiveBufferLimit,
          {},
          "A socket is given " + std::to_string(aBytes) +
              " bytes for what it receives (net.core.rmem_max), and two frames of a usual camera take " +
              std::to_string(kReceiveBufferNeedBytes) + ": frames will be incomplete.",
          "Raise the limit; a file in /etc/sysctl.d keeps it.\nsudo sysctl -w net.core.rmem_max=33554432"};
}

void FindCausesOf(const AdapterReading& aAdapter, std::vector<KrFinding>& aFindings) {
  if (!aAdapter.isUp) {
    aFindings.push_back(MakeDown(aAdapter));
    return;
  }
  if (!aAdapter.hasCarrier)
    aFindings.push_back(MakeNoCarrier(aAdapter));
  else if (!FindAddress(aAdapter))
    aFindings.push_back(MakeNoAddress(aAdapter));
  if (aAdapter.reversePathFilter == kStrictFilter)
    aFindings.push_back(MakeReversePathFilter(aAdapter));
}

} // namespace

void FindAdapterCauses(const HostReadings& aReadings, std::vector<KrFinding>& aFindings) {
  std::vector<const AdapterReading*> inUse;
  for (const AdapterReading& adapter : aReadings.adapters) {
    if (adapter.isLoopback)
      continue;
    FindCausesOf(adapter, aFindings);
    if (!adapter.isUp)
      continue;
    // One finding for each adapter beyond the first of a subnet, not one for each pair.
    for (const AdapterReading* former : inUse) {
      const AdapterAddress* const overlap = FindOverlap(adapter, *former);
      if (!overlap || former->uniqueID == adapter.uniqueID)
        continue;
      aFindings.push_back(MakeSubnetNotUnique(adapter, *former, *overlap));
      break;
    }
    inUse.push_back(&adapter);
  }
  if (aReadings.receiveBufferLimitBytes && *aReadings.receiveBufferLimitBytes < kReceiveBufferNeedBytes)
    aFindings.push_back(MakeReceiveBufferLimit(*aReadings.receiveBufferLimitBytes));
}

} // namespace krsystem
