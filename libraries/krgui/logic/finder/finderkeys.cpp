#include "logic/finder/finderkeys.h"

#include <algorithm>

namespace krgui {

namespace {

bool IsMACShared(InterfaceSpan aAll, const KrNetworkAdapter& aAdapter) {
  return std::ranges::any_of(aAll, [&](const KrInterface* aInterface) {
    const auto* const other = dynamic_cast<const KrNetworkAdapter*>(aInterface);
    // The same adapter may stand in the list as another object, as it was or will be.
    return other && other->GetUniqueID() != aAdapter.GetUniqueID() &&
           other->GetMACAddress() == aAdapter.GetMACAddress();
  });
}

const KrString& GetStatedOr(const KrString& aStated, const KrString& aSubstitute) {
  return aStated.IsEmpty() ? aSubstitute : aStated;
}

// What tells the device from others of its kind.
const KrString& GetOwnPart(const KrDeviceInfo& aDevice) {
  const KrString& uniqueID = aDevice.GetUniqueID();
  if (const auto* const gev = dynamic_cast<const KrDeviceInfoGEV*>(&aDevice))
    return GetStatedOr(gev->GetMACAddress(), uniqueID);
  if (const auto* const tolvan = dynamic_cast<const KrDeviceInfoTolvanProtocol*>(&aDevice))
    return GetStatedOr(tolvan->GetMACAddress(), uniqueID);
  if (const auto* const u3v = dynamic_cast<const KrDeviceInfoU3V*>(&aDevice))
    return GetStatedOr(u3v->GetDeviceGUID(), uniqueID);
  return uniqueID;
}

} // namespace

std::string GetInterfaceKey(InterfaceSpan aAll, const KrInterface& aInterface) {
  const auto* const adapter = dynamic_cast<const KrNetworkAdapter*>(&aInterface);
  if (!adapter)
    return aInterface.GetUniqueID().ToUtf8();
  const std::string& mac = adapter->GetMACAddress().ToUtf8();
  return mac.empty() || IsMACShared(aAll, *adapter) ? mac + "/" + adapter->GetName().ToUtf8() : mac;
}

std::string GetDeviceKey(const KrInterface* aInterface, const KrDeviceInfo& aDevice) {
  const std::string& own = GetOwnPart(aDevice).ToUtf8();
  if (!aInterface || aDevice.GetType() == KrDeviceInfoType::U3V)
    return own;
  return aInterface->GetUniqueID().ToUtf8() + own;
}

} // namespace krgui
