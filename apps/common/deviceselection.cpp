#include "deviceselection.h"

#include "krsystem/ipv4address.h"
#include "krsystem/transportregistry.h"
#include "plaintext.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <iterator>

namespace krapps {

namespace {

using Devices = std::vector<const KrDeviceInfo*>;

KrString GetMACAddress(const KrDeviceInfo& aDevice) {
  if (const auto* gigE = dynamic_cast<const KrDeviceInfoGEV*>(&aDevice))
    return gigE->GetMACAddress();
  if (const auto* tolvan = dynamic_cast<const KrDeviceInfoTolvanProtocol*>(&aDevice))
    return tolvan->GetMACAddress();
  return {};
}

// A MAC address in one way of writing, so that texts can be compared; other texts give no equal ones.
std::string NormalizeMAC(const KrString& aText) {
  std::string text = aText.ToUtf8();
  std::transform(text.begin(), text.end(), text.begin(), [](char aCharacter) {
    return aCharacter == '-' ? ':' : static_cast<char>(std::tolower(static_cast<unsigned char>(aCharacter)));
  });
  return text;
}

// Leaves one answer of each device, the reachable one if there is any.
Devices MergeAnswers(const Devices& aDevices) {
  Devices merged;
  for (const KrDeviceInfo* device : aDevices) {
    const auto known = std::find_if(merged.begin(), merged.end(), [device](const KrDeviceInfo* aOther) {
      return aOther->GetUniqueID() == device->GetUniqueID();
    });
    if (known == merged.end())
      merged.push_back(device);
    else if (!(*known)->IsConfigurationValid() && device->IsConfigurationValid())
      *known = device;
  }
  return merged;
}

// A USB device that is no camera can never be opened, whatever it says of its configuration.
bool IsReachableCamera(const KrDeviceInfo* aDevice) {
  return aDevice->IsConfigurationValid() && aDevice->GetType() != KrDeviceInfoType::USB;
}

Selection ChooseFirst(const Devices& aDevices) {
  const auto found = std::find_if(aDevices.begin(), aDevices.end(), IsReachableCamera);
  if (found != aDevices.end())
    return {.device = *found};
  if (aDevices.empty())
    return {.error = "No camera was found. Check that it has power, a cable and an address of this network."};
  return {.error = "None of the devices found can be reached as it is configured:" + ListDevices(aDevices)};
}

// The devices in the order in which their transports were registered.
Devices GetOrderedDevices(const KrSystem& aSystem) {
  const auto transports = krsystem::GetTransports();
  const auto getRank = [&transports](const KrDeviceInfo* aDevice) {
    return std::distance(transports.begin(), std::find(transports.begin(), transports.end(), aDevice->GetTransport()));
  };
  Devices devices;
  for (std::size_t index = 0; index < aSystem.GetDeviceCount(); ++index)
    devices.push_back(aSystem.GetDeviceInfo(index));
  std::stable_sort(devices.begin(), devices.end(), [&getRank](const KrDeviceInfo* aLeft, const KrDeviceInfo* aRight) {
    return getRank(aLeft) < getRank(aRight);
  });
  return devices;
}

KrResult SelectAddress(KrSystem& aSystem, const KrString& aAddress, const KrDeviceInfo*& aDevice) {
  const KrDeviceInfo* found = nullptr;
  const KrResult result = aSystem.FindDevice(aAddress, &found);
  if (result == KrResult::Code::NotFound)
    return {KrResult::Code::NotFound,
            "No device answers at " + aAddress +
                ". Check that it has power and a cable, and that this host can reach the address."};
  if (result.IsOK())
    aDevice = found;
  return result;
}

} // namespace

bool IsNamed(const KrDeviceInfo& aDevice, const KrString& aName) {
  const KrString mac = GetMACAddress(aDevice);
  return aDevice.GetUniqueID() == aName || aDevice.GetUserDefinedName() == aName ||
         aDevice.GetSerialNumber() == aName || (!mac.IsEmpty() && NormalizeMAC(mac) == NormalizeMAC(aName));
}

std::string ListDevices(const Devices& aDevices) {
  std::string text;
  for (const KrDeviceInfo* device : aDevices) {
    text += "\n  " + MakeCell(device->GetUniqueID()) + "  " + MakeCell(device->GetDisplayID());
    if (!device->GetUserDefinedName().IsEmpty())
      text += "  \"" + MakeCell(device->GetUserDefinedName()) + "\"";
  }
  return text;
}

Selection ChooseDevice(const std::vector<const KrDeviceInfo*>& aDevices, const KrString& aName) {
  if (aName.IsEmpty())
    return ChooseFirst(aDevices);

  Devices named;
  std::copy_if(aDevices.begin(), aDevices.end(), std::back_inserter(named),
               [&aName](const KrDeviceInfo* aDevice) { return IsNamed(*aDevice, aName); });
  named = MergeAnswers(named);
  if (named.size() == 1)
    return {.device = named.front()};
  if (named.size() > 1)
    return {.isAmbiguous = true,
            .error =
                "\"" + aName + "\" names several devices; give the unique ID of one of them:" + ListDevices(named)};
  if (aDevices.empty())
    return {.error = "\"" + aName + "\" was not found: no device answered at all."};
  return {.error = "No device has the unique ID, MAC address, IP address, serial number or user-defined name \"" +
                   aName + "\". Found were:" + ListDevices(MergeAnswers(aDevices))};
}

KrResult SelectDevice(KrSystem& aSystem, const KrString& aName, const KrDeviceInfo*& aDevice) {
  if (krsystem::ParseIPv4(aName))
    return SelectAddress(aSystem, aName, aDevice);

  if (KrResult found = aSystem.Find(); !found.IsOK())
    return found;
  const Devices devices = GetOrderedDevices(aSystem);
  const Selection selection = ChooseDevice(devices, aName);
  if (!selection.device)
    return {selection.isAmbiguous ? KrResult::Code::InvalidInput : KrResult::Code::NotFound, selection.error};
  aDevice = selection.device;
  return {};
}

} // namespace krapps
