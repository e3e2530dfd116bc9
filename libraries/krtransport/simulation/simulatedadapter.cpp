#include "simulation/simulatedadapter.h"

#include "krsystem/ipv4address.h"
#include "simulation/simulatedgevdevice.h"
#include "simulation/simulatedtolvandevice.h"

#include <algorithm>
#include <utility>

namespace krtransport {

namespace {

constexpr std::int32_t kNoFilter = 0;
constexpr std::int32_t kStrictFilter = 1;

SimulatedInterface::Devices MakeDevices(const LabAdapter& aAdapter, const std::shared_ptr<ICameraClock>& aClock) {
  const HostSubnets subnets(aAdapter.addresses);
  SimulatedInterface::Devices devices;
  for (const LabNetworkDevice& device : aAdapter.devices) {
    if (const auto* camera = std::get_if<LabGEVCamera>(&device))
      devices.push_back(std::make_shared<SimulatedGEVDevice>(*camera, subnets, aClock));
    else
      devices.push_back(std::make_shared<SimulatedTolvanDevice>(std::get<LabTolvanDevice>(device), subnets));
  }
  return devices;
}

LabAdapter TakeOutDevices(LabAdapter aAdapter) {
  aAdapter.devices.clear();
  return aAdapter;
}

std::vector<std::uint32_t> ParseAddresses(const std::vector<KrString>& aTexts) {
  std::vector<std::uint32_t> addresses;
  for (const KrString& text : aTexts)
    addresses.push_back(krsystem::ParseIPv4(text).value_or(0));
  return addresses;
}

} // namespace

SimulatedAdapter::SimulatedAdapter(const LabAdapter& aAdapter, KrString aUniqueID,
                                   const std::shared_ptr<ICameraClock>& aClock)
    : SimulatedInterface(MakeDevices(aAdapter, aClock)), mDescription(TakeOutDevices(aAdapter)),
      mUniqueID(std::move(aUniqueID)), mSubnets(aAdapter.addresses),
      mUsedAddresses(ParseAddresses(aAdapter.usedAddresses)) {}

krsystem::InterfaceFields SimulatedAdapter::GetFields(std::uint64_t aNowNs) const {
  krsystem::NetworkAdapterFields fields;
  fields.uniqueID = mUniqueID;
  fields.name = mDescription.name;
  fields.description = mDescription.description;
  fields.macAddress = mDescription.macAddress;
  fields.tolvanDriverInstalled = mDescription.isDriverInstalled;
  if (IsUp(aNowNs) && !mDescription.addresses.empty()) {
    fields.addresses = mDescription.addresses;
    fields.defaultGateway = mDescription.defaultGateway;
  }
  fields.displayID = fields.name + " " + fields.addresses.front().address;
  return fields;
}

bool SimulatedAdapter::IsUsable(std::uint64_t aNowNs) const {
  return IsThere(aNowNs) && IsUp(aNowNs) && mDescription.hasCarrier;
}

bool SimulatedAdapter::IsHeard(const SimulatedDevice& aDevice, const Broadcast& aBroadcast) const {
  if (aDevice.IsReachable())
    return true;
  if (aBroadcast.isForSubnet && mSubnets.HaveBroadcasts())
    return false;
  if (mDescription.reversePathFilter == kNoFilter || aDevice.GetAddress().value_or(0) == 0)
    return true;
  return mDescription.reversePathFilter == kStrictFilter ? aBroadcast.isRoutedHere : aBroadcast.isAnswerRoutable;
}

bool SimulatedAdapter::HasSubnetOf(std::uint32_t aAddress, std::uint64_t aNowNs) const {
  return IsThere(aNowNs) && IsUp(aNowNs) && mSubnets.Holds(aAddress);
}

bool SimulatedAdapter::HasDefaultRoute(std::uint64_t aNowNs) const {
  return IsThere(aNowNs) && IsUp(aNowNs) && krsystem::ParseIPv4(mDescription.defaultGateway).value_or(0) != 0;
}

void SimulatedAdapter::ReadHost(std::uint64_t aNowNs, krsystem::HostReadings& aReadings) const {
  aReadings.hasNetworkTransport = true;
  aReadings.adapters.push_back({.uniqueID = mUniqueID,
                                .name = mDescription.name,
                                .isLoopback = false,
                                .isUp = IsUp(aNowNs),
                                .hasCarrier = mDescription.hasCarrier,
                                .addresses = mDescription.addresses,
                                .reversePathFilter = mDescription.reversePathFilter,
                                .hasDefaultRoute = HasDefaultRoute(aNowNs)});
}

KrResult SimulatedAdapter::IsAddressUsed(std::uint32_t aAddress, bool& aIsUsed) const {
  if (mSubnets.IsEmpty())
    return {KrResult::Code::NotSupported,
            "Asking who uses an address: the adapter " + mDescription.name + " has no address of its own."};
  const auto has = [aAddress](const std::shared_ptr<SimulatedDevice>& aDevice) {
    return aDevice->IsPresent() && aDevice->GetAddress() == aAddress;
  };
  aIsUsed = mSubnets.IsOwn(aAddress) || std::ranges::find(mUsedAddresses, aAddress) != mUsedAddresses.end() ||
            std::ranges::any_of(GetDevices(), has);
  return {};
}

std::uint64_t SimulatedAdapter::GetOwnNextChangeNs(std::uint64_t aNowNs) const {
  return std::min(mDescription.schedule.GetNextChangeNs(aNowNs), mDescription.downSchedule.GetNextChangeNs(aNowNs));
}

} // namespace krtransport
