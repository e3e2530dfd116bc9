#include "devicetable.h"

#include "devicewords.h"
#include "plaintext.h"

#include <cstddef>

namespace krtool {

std::vector<std::string> MakeRow(const KrInterface& aInterface) {
  const auto* adapter = dynamic_cast<const KrNetworkAdapter*>(&aInterface);
  const std::string state =
      std::to_string(aInterface.GetDeviceCount()) + (aInterface.GetDeviceCount() == 1 ? " device" : " devices");
  return {"interface",
          std::string(GetKindWord(aInterface.GetType())),
          krapps::MakeCell(aInterface.GetUniqueID()),
          krapps::MakeCell(JoinAddresses(aInterface)),
          krapps::MakeCell(adapter ? adapter->GetMACAddress() : KrString()),
          krapps::MakeCell(GetShortName(&aInterface)),
          krapps::MakeCell(aInterface.GetDisplayID()),
          "-",
          "-",
          "-",
          state};
}

std::vector<std::string> MakeRow(const KrDeviceInfo& aDevice, const AccessTypes& aAccess) {
  const auto network = GetNetworkFields(aDevice);
  const auto access = aAccess.find(&aDevice);
  return {"device",
          std::string(GetKindWord(aDevice.GetType())),
          krapps::MakeCell(aDevice.GetUniqueID()),
          krapps::MakeCell(network ? network->ipAddress : KrString()),
          krapps::MakeCell(network ? network->macAddress : KrString()),
          krapps::MakeCell(GetShortName(aDevice.GetInterface())),
          krapps::MakeCell(aDevice.GetVendorName() + " " + aDevice.GetModelName()),
          krapps::MakeCell(aDevice.GetSerialNumber()),
          krapps::MakeCell(aDevice.GetUserDefinedName()),
          access == aAccess.end() ? "-" : std::string(GetAccessWord(access->second)),
          std::string(GetReachableWord(aDevice))};
}

std::string FormatTable(const KrSystem& aSystem, const AccessTypes& aAccess) {
  std::vector<std::vector<std::string>> rows;
  if (aSystem.GetInterfaceCount() > 0)
    rows.push_back({"entry", "kind", "unique ID", "IP address", "MAC address", "adapter", "name", "serial number",
                    "user-defined name", "control", "state"});
  for (std::size_t index = 0; index < aSystem.GetInterfaceCount(); ++index) {
    const KrInterface& interface = *aSystem.GetInterface(index);
    rows.push_back(MakeRow(interface));
    for (std::size_t device = 0; device < interface.GetDeviceCount(); ++device)
      rows.push_back(MakeRow(*interface.GetDeviceInfo(device), aAccess));
  }
  return krapps::AlignColumns(rows);
}

std::string FormatNoDevices(const std::vector<KrString>& aAsked, bool aIsSimulating) {
  std::string text = "No devices found. ";
  for (const KrString& name : aAsked)
    text += (&name == &aAsked.front() ? "Asked were: " : ", ") + krapps::MakeCell(name);
  text += aAsked.empty() ? "There is no interface to ask.\n" : ".\n";
  text += "Why one may be missing: krtool list --diagnose\n";
  return aIsSimulating ? text : text + "Simulated ones to try:  krtool list --simulate\n";
}

} // namespace krtool
