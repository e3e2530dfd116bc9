#include "simulation/hostsubnets.h"

#include "krsystem/ipv4address.h"

#include <algorithm>

namespace krtransport {

HostSubnets::HostSubnets(const std::vector<krsystem::AdapterAddress>& aAddresses) {
  for (const krsystem::AdapterAddress& entry : aAddresses) {
    const std::uint32_t address = krsystem::ParseIPv4(entry.address).value_or(0);
    if (address != 0)
      mSubnets.push_back({address, krsystem::ParseIPv4(entry.mask).value_or(0)});
  }
}

bool HostSubnets::Reaches(std::uint32_t aAddress) const {
  return !IsOwn(aAddress) && Holds(aAddress);
}

bool HostSubnets::Holds(std::uint32_t aAddress) const {
  return std::ranges::any_of(mSubnets, [aAddress](const Subnet& aSubnet) {
    return krsystem::IsReachedFrom(aSubnet.address, aSubnet.mask, aAddress);
  });
}

bool HostSubnets::HaveBroadcasts() const {
  return !mSubnets.empty() &&
         std::ranges::all_of(mSubnets, [](const Subnet& aSubnet) { return aSubnet.mask != 0 && ~aSubnet.mask > 1; });
}

bool HostSubnets::IsOwn(std::uint32_t aAddress) const {
  return std::ranges::find(mSubnets, aAddress, &Subnet::address) != mSubnets.end();
}

KrString HostSubnets::GetText() const {
  KrString text;
  for (const Subnet& subnet : mSubnets)
    text +=
        (text.IsEmpty() ? "" : ", ") + krsystem::FormatIPv4(subnet.address) + " / " + krsystem::FormatIPv4(subnet.mask);
  return text;
}

} // namespace krtransport
