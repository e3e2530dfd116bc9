#include "networkselection.h"

#include "addresscheck.h"
#include "camerasession.h"
#include "deviceselection.h"
#include "devicewords.h"
#include "krsystem/ipv4address.h"
#include "krsystem/macaddress.h"
#include "plaintext.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace krtool {

namespace {

using Devices = std::vector<const KrDeviceInfo*>;

bool IsMeant(const KrDeviceInfo& aDevice, const KrString& aName) {
  const auto network = GetNetworkFields(aDevice);
  const auto address = krsystem::ParseIPv4(aName);
  return krapps::IsNamed(aDevice, aName) || (network && address && krsystem::ParseIPv4(network->ipAddress) == address);
}

bool IsOneDevice(const Devices& aDevices) {
  return std::all_of(aDevices.begin(), aDevices.end(), [&](const KrDeviceInfo* aDevice) {
    const KrDeviceInfo& first = *aDevices.front();
    return aDevice->GetUniqueID() == first.GetUniqueID() && aDevice->GetModelName() == first.GetModelName() &&
           aDevice->GetSerialNumber() == first.GetSerialNumber();
  });
}

std::string ListAdapters(const Devices& aDevices) {
  std::string text;
  for (const KrDeviceInfo* device : aDevices)
    text += (text.empty() ? "" : ", ") + krapps::MakeCell(GetShortName(device->GetInterface()));
  return text;
}

KrResult ChooseAdapter(Devices& aDevices, const KrString& aName, const KrString& aAdapter) {
  const std::string heardOn = ListAdapters(aDevices);
  if (!aAdapter.IsEmpty()) {
    std::erase_if(aDevices,
                  [&](const KrDeviceInfo* aDevice) { return GetShortName(aDevice->GetInterface()) != aAdapter; });
    if (aDevices.empty())
      return {KrResult::Code::NotFound,
              "\"" + aName + "\" is not heard on the adapter \"" + aAdapter + "\", but on: " + heardOn + "."};
  }
  if (aDevices.size() > 1)
    return {KrResult::Code::InvalidInput, "\"" + aName + "\" is heard on several adapters: " + heardOn +
                                              ". Say by --adapter NAME which one it is to be reached by."};
  return {};
}

KrResult Take(const KrDeviceInfo& aDevice, NetworkDevice& aChosen) {
  const auto network = GetNetworkFields(aDevice);
  if (!network)
    return {KrResult::Code::InvalidInput,
            krapps::MakeCell(aDevice.GetDisplayID()) + " is on no network, and has no address."};
  aChosen = {&aDevice, dynamic_cast<const KrNetworkAdapter*>(aDevice.GetInterface()), *network};
  return {};
}

// The lists hold one device of each unique ID and adapter. That another one has the same MAC address, and would take
// the address, too, only the diagnosis of the round tells. Where it fails, nothing is known against the device.
KrResult CheckMACIsItsOwn(KrSystem& aSystem, const NetworkDevice& aChosen) {
  const std::string& mac = aChosen.fields.macAddress.ToUtf8();
  std::vector<KrFinding> findings;
  if (mac.empty() || !aSystem.Diagnose(findings).IsOK())
    return {};
  const auto shared = std::ranges::find_if(findings, [&](const KrFinding& aFinding) {
    return aFinding.kind == KrFindingKind::SharedMAC && aFinding.text.ToUtf8().find(mac) != std::string::npos;
  });
  return shared == findings.end() ? KrResult()
                                  : KrResult(KrResult::Code::InvalidInput, shared->text + " " + shared->remedy);
}

} // namespace

std::optional<KrString> ParseMAC(const KrString& aText) {
  std::string text = aText.ToUtf8();
  std::ranges::replace(text, '-', ':');
  const auto address = krsystem::ParseMAC(text);
  return address ? std::optional(krsystem::FormatMAC(*address)) : std::nullopt;
}

const KrNetworkAdapter* FindAdapter(const KrSystem& aSystem, const KrString& aName, std::uint32_t aAddress) {
  for (std::size_t index = 0; const KrInterface* interface = aSystem.GetInterface(index); ++index) {
    const auto* adapter = dynamic_cast<const KrNetworkAdapter*>(interface);
    if (!adapter)
      continue;
    const std::vector<AdapterSubnet> subnets = GetSubnets(*adapter);
    const auto subnet = FindSubnet(subnets, aAddress);
    if (aName.IsEmpty() ? subnet && subnet->Holds(aAddress) : adapter->GetName() == aName)
      return adapter;
  }
  return nullptr;
}

Devices GetDevices(const KrSystem& aSystem) {
  Devices devices;
  for (std::size_t index = 0; const KrDeviceInfo* device = aSystem.GetDeviceInfo(index); ++index)
    devices.push_back(device);
  return devices;
}

KrResult ChooseNetworkDevice(const Devices& aDevices, const KrString& aName, const KrString& aAdapter,
                             NetworkDevice& aChosen) {
  Devices meant;
  std::copy_if(aDevices.begin(), aDevices.end(), std::back_inserter(meant),
               [&](const KrDeviceInfo* aDevice) { return IsMeant(*aDevice, aName); });
  if (meant.empty() && aDevices.empty())
    return {KrResult::Code::NotFound, "\"" + aName + "\" was not found: no device answered at all."};
  if (meant.empty())
    return {KrResult::Code::NotFound,
            "No device has the unique ID, MAC address, IP address, serial number or user-defined name \"" + aName +
                "\". Found were:" + krapps::ListDevices(aDevices)};
  if (!IsOneDevice(meant))
    return {KrResult::Code::InvalidInput,
            "\"" + aName + "\" means several devices. Give the unique ID of one of them; where they share it, take " +
                "all but one off the network:" + krapps::ListDevices(meant)};
  if (KrResult chosen = ChooseAdapter(meant, aName, aAdapter); !chosen.IsOK())
    return chosen;
  return Take(*meant.front(), aChosen);
}

KrResult SelectNetworkDevice(KrSystem& aSystem, const KrString& aName, const KrString& aAdapter,
                             NetworkDevice& aChosen) {
  constexpr const char* kAttempt = "looking for the device failed";
  if (KrResult found = aSystem.Find(); !found.IsOK())
    return Explain(kAttempt, found);
  KrResult chosen = ChooseNetworkDevice(GetDevices(aSystem), aName, aAdapter, aChosen);
  const KrDeviceInfo* asked = nullptr;
  const bool asks = chosen == KrResult::Code::NotFound && aAdapter.IsEmpty() && krsystem::ParseIPv4(aName);
  if (asks && aSystem.FindDevice(aName, &asked).IsOK())
    chosen = Take(*asked, aChosen);
  if (chosen.IsOK())
    chosen = CheckMACIsItsOwn(aSystem, aChosen);
  return Explain(kAttempt, chosen);
}

} // namespace krtool
