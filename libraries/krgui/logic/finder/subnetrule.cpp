#include "logic/finder/subnetrule.h"

#include "krsystem/ipv4address.h"

#include <optional>

namespace krgui {

namespace {

// Nothing for texts that are no addresses: they lie in no subnet.
std::optional<std::uint32_t> GetSubnet(const KrNetworkAdapter& aAdapter, std::size_t aIndex) {
  const std::optional<std::uint32_t> address = krsystem::ParseIPv4(aAdapter.GetIPAddress(aIndex));
  const std::optional<std::uint32_t> mask = krsystem::ParseIPv4(aAdapter.GetSubnetMask(aIndex));
  if (!address || !mask)
    return std::nullopt;
  return *address & *mask;
}

// An adapter that changed a moment ago may stand in the list as it was or will be, which is not another one.
bool IsSameAdapter(const KrNetworkAdapter& aOne, const KrNetworkAdapter& aOther) {
  return aOne.GetUniqueID() == aOther.GetUniqueID() && aOne.GetMACAddress() == aOther.GetMACAddress();
}

int CountSubnet(const KrNetworkAdapter& aAdapter, std::uint32_t aSubnet) {
  int count = 0;
  for (std::size_t i = 0; i < aAdapter.GetIPAddressCount(); ++i)
    count += GetSubnet(aAdapter, i) == aSubnet;
  return count;
}

} // namespace

bool IsSubnetUnique(InterfaceSpan aAll, const KrNetworkAdapter& aAdapter, std::size_t aIndex) {
  const std::optional<std::uint32_t> subnet = GetSubnet(aAdapter, aIndex);
  if (!subnet || aAdapter.GetSubnetMask(aIndex) == "0.0.0.0")
    return true;
  int count = CountSubnet(aAdapter, *subnet);
  for (const KrInterface* interface : aAll) {
    const auto* const other = dynamic_cast<const KrNetworkAdapter*>(interface);
    if (other && !IsSameAdapter(*other, aAdapter))
      count += CountSubnet(*other, *subnet);
  }
  return count <= 1;
}

} // namespace krgui
