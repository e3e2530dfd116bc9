#include "addresscheck.h"

#include "krsystem/ipv4address.h"

#include <algorithm>

namespace krtool {

namespace {

constexpr std::uint32_t kFirstMulticast = 0xE0000000; // 224.0.0.0; beyond multicast are reserved addresses.
constexpr std::uint32_t kLastFieldMask = 0xFF;
constexpr std::uint32_t kFirstFieldShift = 24;
constexpr std::uint32_t kThisNetwork = 0; // 0.0.0.0/8, which stands for no address, RFC 1122 3.2.1.3.
constexpr std::uint32_t kLoopback = 127;  // 127.0.0.0/8, each host itself.

std::string Format(std::uint32_t aAddress) {
  return krsystem::FormatIPv4(aAddress).ToUtf8();
}

std::string FindRefusal(const AddressPlan& aPlan, const std::vector<AdapterSubnet>& aSubnets) {
  const auto isAdapters = [&](const AdapterSubnet& aSubnet) { return aSubnet.address == aPlan.address; };
  if (std::any_of(aSubnets.begin(), aSubnets.end(), isAdapters))
    return Format(aPlan.address) + " is the adapter's own address.";
  if (aPlan.address >= kFirstMulticast)
    return Format(aPlan.address) + " cannot be a device's: addresses from 224.0.0.0 on are for other purposes.";
  const std::uint32_t firstField = aPlan.address >> kFirstFieldShift;
  if (firstField == kThisNetwork || firstField == kLoopback)
    return Format(aPlan.address) + " cannot be a device's: 0.*.*.* and 127.*.*.* are for other purposes.";
  if ((aPlan.address & aPlan.mask) == aPlan.address)
    return Format(aPlan.address) + " with the mask " + Format(aPlan.mask) + " is the subnet itself, no device of it.";
  if (!krsystem::IsForDevice(aPlan.address, aPlan.mask))
    return Format(aPlan.address) + " with the mask " + Format(aPlan.mask) +
           " is the subnet's broadcast address, no device's.";
  return {};
}

std::string DescribeForeignSubnet(const std::string& aWhat, const std::vector<AdapterSubnet>& aSubnets) {
  std::string text = aWhat + " is in no subnet of the adapter";
  for (const AdapterSubnet& subnet : aSubnets)
    text += (&subnet == aSubnets.data() ? " (" : ", ") + Format(subnet.address) + " with " + Format(subnet.mask);
  return text + ").";
}

void CheckAgainstAdapter(const AddressPlan& aPlan, const std::vector<AdapterSubnet>& aSubnets,
                         std::vector<std::string>& aDoubts) {
  const std::optional<AdapterSubnet> subnet = FindSubnet(aSubnets, aPlan.address);
  if (!subnet) {
    aDoubts.push_back("The adapter has no address, so this host will not reach the device.");
    return;
  }
  if (!subnet->Holds(aPlan.address))
    aDoubts.push_back(DescribeForeignSubnet(Format(aPlan.address), aSubnets) + " This host will not reach the device.");
  if (aPlan.mask != subnet->mask)
    aDoubts.push_back("The mask " + Format(aPlan.mask) + " is not the adapter's, " + Format(subnet->mask) + ".");
  if (aPlan.gateway != 0 && !subnet->Holds(aPlan.gateway))
    aDoubts.push_back(DescribeForeignSubnet("The gateway " + Format(aPlan.gateway), aSubnets));
}

void CheckGateway(const AddressPlan& aPlan, std::vector<std::string>& aDoubts) {
  if (aPlan.gateway != 0 && aPlan.gateway == aPlan.address)
    aDoubts.push_back("The gateway " + Format(aPlan.gateway) +
                      " is the device's own address; without a gateway it is 0.0.0.0.");
}

} // namespace

std::vector<AdapterSubnet> GetSubnets(const KrNetworkAdapter& aAdapter) {
  std::vector<AdapterSubnet> subnets;
  for (std::size_t index = 0; index < aAdapter.GetIPAddressCount(); ++index) {
    const std::uint32_t address = krsystem::ParseIPv4(aAdapter.GetIPAddress(index)).value_or(0);
    if (address != 0)
      subnets.push_back({address, krsystem::ParseIPv4(aAdapter.GetSubnetMask(index)).value_or(0)});
  }
  return subnets;
}

std::optional<AdapterSubnet> FindSubnet(const std::vector<AdapterSubnet>& aSubnets, std::uint32_t aAddress) {
  if (aSubnets.empty())
    return std::nullopt;
  const auto holding = std::find_if(aSubnets.begin(), aSubnets.end(),
                                    [&](const AdapterSubnet& aSubnet) { return aSubnet.Holds(aAddress); });
  return holding == aSubnets.end() ? aSubnets.front() : *holding;
}

AddressVerdict CheckAddress(const AddressPlan& aPlan, const std::vector<AdapterSubnet>& aSubnets,
                            const std::vector<std::uint32_t>& aOthers) {
  AddressVerdict verdict{FindRefusal(aPlan, aSubnets), {}};
  CheckAgainstAdapter(aPlan, aSubnets, verdict.doubts);
  CheckGateway(aPlan, verdict.doubts);
  if (!krsystem::IsContiguousMask(aPlan.mask))
    verdict.doubts.push_back("The mask " + Format(aPlan.mask) + " has a gap: ones come first, then zeros.");
  const std::uint32_t lastField = aPlan.address & kLastFieldMask;
  if (lastField == 0 || lastField == kLastFieldMask)
    verdict.doubts.push_back("Addresses that end by 0 or 255 are taken for whole subnets by many programs.");
  if (std::find(aOthers.begin(), aOthers.end(), aPlan.address) != aOthers.end())
    verdict.doubts.push_back("Another device has the address " + Format(aPlan.address) + " already.");
  return verdict;
}

} // namespace krtool
