#include "devicewords.h"

#include <cstddef>

namespace krtool {

namespace {

constexpr std::string_view kDeviceKinds[] = {"GEV", "TolvanProtocol", "USB", "U3V"};
constexpr std::string_view kInterfaceKinds[] = {"USBHostController", "NetworkAdapter"};
constexpr std::string_view kAccessWords[] = {"Unknown", "Open", "Control", "Exclusive", "ReadOnly"};

// The enumerators are numbered from 0 on.
template <std::size_t kCount, typename Enumeration>
std::string_view PickWord(const std::string_view (&aWords)[kCount], Enumeration aValue) {
  const auto place = static_cast<std::size_t>(aValue);
  return place < kCount ? aWords[place] : "Unknown";
}

} // namespace

std::string_view GetKindWord(KrDeviceInfoType aType) {
  return PickWord(kDeviceKinds, aType);
}

std::string_view GetKindWord(KrInterfaceType aType) {
  return PickWord(kInterfaceKinds, aType);
}

std::string_view GetAccessWord(KrAccessType aType) {
  return PickWord(kAccessWords, aType);
}

std::string_view GetReachableWord(const KrDeviceInfo& aDevice) {
  return aDevice.IsConfigurationValid() ? "reachable" : "unreachable";
}

std::optional<krsystem::NetworkFields> GetNetworkFields(const KrDeviceInfo& aDevice) {
  if (const auto* gigE = dynamic_cast<const KrDeviceInfoGEV*>(&aDevice))
    return gigE->GetFields();
  if (const auto* tolvan = dynamic_cast<const KrDeviceInfoTolvanProtocol*>(&aDevice))
    return tolvan->GetFields();
  return std::nullopt;
}

KrString GetShortName(const KrInterface* aInterface) {
  const auto* adapter = dynamic_cast<const KrNetworkAdapter*>(aInterface);
  if (adapter && !adapter->GetName().IsEmpty())
    return adapter->GetName();
  return aInterface ? aInterface->GetUniqueID() : KrString();
}

KrString JoinAddresses(const KrInterface& aInterface) {
  KrString joined;
  const auto* adapter = dynamic_cast<const KrNetworkAdapter*>(&aInterface);
  for (std::size_t index = 0; adapter && index < adapter->GetIPAddressCount(); ++index)
    joined += (index > 0 ? "," : "") + adapter->GetIPAddress(index);
  return joined;
}

} // namespace krtool
