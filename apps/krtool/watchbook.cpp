#include "watchbook.h"

#include "devicewords.h"

#include <algorithm>

namespace krtool {

namespace {

template <typename Object>
struct Watched {
  std::string_view what;
  KrString (*read)(const Object& aObject);
};

template <KrString krsystem::NetworkFields::*kMember>
KrString ReadNetworkField(const KrDeviceInfo& aDevice) {
  const auto network = GetNetworkFields(aDevice);
  return network ? (*network).*kMember : KrString();
}

constexpr Watched<KrDeviceInfo> kOfDevices[] = {
    {"ipAddress", ReadNetworkField<&krsystem::NetworkFields::ipAddress>},
    {"subnetMask", ReadNetworkField<&krsystem::NetworkFields::subnetMask>},
    {"defaultGateway", ReadNetworkField<&krsystem::NetworkFields::defaultGateway>},
    {"userDefinedName", [](const KrDeviceInfo& aDevice) { return aDevice.GetUserDefinedName(); }},
    {"reachable",
     [](const KrDeviceInfo& aDevice) -> KrString { return aDevice.IsConfigurationValid() ? "yes" : "no"; }},
};

KrString ReadGateway(const KrInterface& aInterface) {
  const auto* adapter = dynamic_cast<const KrNetworkAdapter*>(&aInterface);
  return adapter ? adapter->GetDefaultGateway() : KrString();
}

KrString JoinSubnetMasks(const KrInterface& aInterface) {
  KrString joined;
  const auto* adapter = dynamic_cast<const KrNetworkAdapter*>(&aInterface);
  for (std::size_t index = 0; adapter && index < adapter->GetIPAddressCount(); ++index)
    joined += (index > 0 ? "," : "") + adapter->GetSubnetMask(index);
  return joined;
}

constexpr Watched<KrInterface> kOfInterfaces[] = {
    {"ipAddress", JoinAddresses},
    {"subnetMask", JoinSubnetMasks},
    {"defaultGateway", ReadGateway},
};

template <typename Object, typename Table>
std::vector<Change> Compare(const Table& aTable, const Object& aBefore, const Object& aNow) {
  std::vector<Change> changes;
  for (const auto& row : aTable) {
    KrString before = row.read(aBefore);
    KrString now = row.read(aNow);
    if (before != now)
      changes.push_back({row.what, std::move(before), std::move(now)});
  }
  return changes;
}

} // namespace

void WatchBook::TakeDevice(const KrDeviceInfo& aDevice, std::uint64_t aNowMs) {
  const KrInterface* const interface = aDevice.GetInterface();
  // Discovery may list an interface only after it was heard from.
  if (interface && mInterfaces.try_emplace(interface->GetUniqueID(), interface).second)
    mNews.push_back({.kind = NewsKind::Appeared, .interface = interface});
  const DeviceKey key = {interface ? interface->GetUniqueID() : KrString(), aDevice.GetUniqueID()};
  const auto [entry, isNew] = mDevices.try_emplace(key, Sighting{&aDevice, aNowMs});
  Sighting& sighting = entry->second;
  sighting.lastMs = aNowMs;
  if (isNew) {
    mNews.push_back({.kind = NewsKind::Appeared, .device = &aDevice});
    return;
  }
  std::vector<Change> changes = Compare(kOfDevices, *sighting.device, aDevice);
  sighting.device = &aDevice;
  if (!changes.empty())
    mNews.push_back({.kind = NewsKind::Changed, .device = &aDevice, .changes = std::move(changes)});
}

void WatchBook::TakeInterfaces(const std::vector<const KrInterface*>& aInterfaces) {
  std::map<KrString, const KrInterface*> now;
  for (const KrInterface* interface : aInterfaces)
    now.try_emplace(interface->GetUniqueID(), interface);
  for (const auto& [uniqueID, interface] : mInterfaces)
    if (!now.contains(uniqueID))
      mNews.push_back({.kind = NewsKind::Vanished, .interface = interface});
  for (const KrInterface* interface : aInterfaces) {
    const auto known = mInterfaces.find(interface->GetUniqueID());
    if (known == mInterfaces.end()) {
      mNews.push_back({.kind = NewsKind::Appeared, .interface = interface});
      continue;
    }
    std::vector<Change> changes = Compare(kOfInterfaces, *known->second, *interface);
    if (!changes.empty())
      mNews.push_back({.kind = NewsKind::Changed, .interface = interface, .changes = std::move(changes)});
  }
  mInterfaces = std::move(now);
}

void WatchBook::Age(std::uint64_t aNowMs) {
  std::erase_if(mDevices, [&](const auto& aEntry) {
    const Sighting& sighting = aEntry.second;
    const bool isGone = aNowMs > sighting.lastMs && aNowMs - sighting.lastMs > kMaxAgeMs;
    if (isGone)
      mNews.push_back({.kind = NewsKind::Vanished, .device = sighting.device});
    return isGone;
  });
}

} // namespace krtool
