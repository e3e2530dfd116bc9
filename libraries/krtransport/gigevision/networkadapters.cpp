#include "gigevision/networkadapters.h"

#include "gigevision/adapterfields.h"
#include "gigevision/linkquery.h"
#include "krsystem/ipv4address.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

namespace krtransport {
namespace {

using krsystem::AdapterAddress;
using krsystem::NetworkAdapterFields;

constexpr std::uint32_t kLimitedBroadcast = 0xFFFFFFFFu;

bool IsLoopback(std::uint32_t aAddress) {
  return (aAddress >> 24) == 127;
}

// Nothing where it cannot be read, as in some containers.
std::optional<std::int32_t> ReadReversePathFilter(const std::string& aName) {
  std::int32_t filter = 0;
  if (aName.find('/') != std::string::npos ||
      !(std::ifstream("/proc/sys/net/ipv4/conf/" + aName + "/rp_filter") >> filter))
    return std::nullopt;
  return filter;
}

} // namespace

KrResult ListNetworkAdapters(std::vector<NetworkAdapterFields>& aAdapters) {
  KernelTables tables;
  if (KrResult result = ReadKernelTables(tables); !result.IsOK())
    return result;
  aAdapters = MakeAdapterFields(tables, GetDriverName, MayUsePacketSockets());
  return {};
}

KrResult ReadNetworkAdapters(std::vector<krsystem::AdapterReading>& aReadings) {
  KernelTables tables;
  if (KrResult result = ReadKernelTables(tables); !result.IsOK())
    return result;
  aReadings = MakeAdapterReadings(tables, ReadReversePathFilter);
  return {};
}

std::optional<std::uint32_t> FindLocalAddress(const NetworkAdapterFields& aAdapter, std::uint32_t aDevice) {
  for (const AdapterAddress& row : aAdapter.addresses) {
    const std::uint32_t address = krsystem::ParseIPv4(row.address).value_or(0);
    const std::uint32_t mask = krsystem::ParseIPv4(row.mask).value_or(0);
    if (krsystem::IsReachedFrom(address, mask, aDevice))
      return address;
  }
  return std::nullopt;
}

std::vector<NetworkAdapterFields> FindAdaptersOfSubnet(const std::vector<NetworkAdapterFields>& aAdapters,
                                                       std::uint32_t aDevice) {
  std::vector<NetworkAdapterFields> found;
  std::ranges::copy_if(aAdapters, std::back_inserter(found), [aDevice](const NetworkAdapterFields& aAdapter) {
    return FindLocalAddress(aAdapter, aDevice).has_value();
  });
  return found;
}

std::vector<std::uint32_t> GetBroadcastAddresses(const NetworkAdapterFields& aAdapter, bool aSubnetBroadcast) {
  std::set<std::uint32_t> broadcasts;
  for (const AdapterAddress& row : aAdapter.addresses) {
    const std::uint32_t address = krsystem::ParseIPv4(row.address).value_or(0);
    const std::uint32_t mask = krsystem::ParseIPv4(row.mask).value_or(0);
    // A subnet of one or two addresses has none to broadcast to.
    const bool hasBroadcast = aSubnetBroadcast && address != 0 && mask != 0 && ~mask > 1 && !IsLoopback(address);
    broadcasts.insert(hasBroadcast ? (address | ~mask) : kLimitedBroadcast);
  }
  return {broadcasts.begin(), broadcasts.end()};
}

} // namespace krtransport
