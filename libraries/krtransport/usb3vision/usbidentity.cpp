#include "usb3vision/usbidentity.h"

#include <algorithm>
#include <cstdio>

namespace krtransport {
namespace {

std::string MakeNumbers(const UsbDevice& aDevice) {
  char numbers[16];
  std::snprintf(numbers, sizeof(numbers), "%04x:%04x:", aDevice.vendorID, aDevice.productID);
  return numbers + aDevice.serial;
}

std::string MakeWithPort(const UsbDevice& aDevice) {
  return MakeNumbers(aDevice) + "@" + aDevice.port;
}

} // namespace

std::vector<std::string> MakeUniqueIDs(std::span<const UsbDevice> aDevices) {
  std::vector<std::string> numbers;
  for (const UsbDevice& device : aDevices)
    numbers.push_back(MakeNumbers(device));
  std::vector<std::string> ids;
  for (std::size_t i = 0; i < aDevices.size(); ++i) {
    const bool isAlone = std::ranges::count(numbers, numbers[i]) == 1;
    ids.push_back(isAlone && !aDevices[i].serial.empty() ? numbers[i] : MakeWithPort(aDevices[i]));
  }
  return ids;
}

const UsbDevice* FindByUniqueID(std::span<const UsbDevice> aDevices, const std::string& aUniqueID) {
  const auto withPort = std::ranges::find(aDevices, aUniqueID, MakeWithPort);
  if (withPort != aDevices.end())
    return &*withPort;
  // Of several with the same numbers none can be said to be meant.
  const auto withNumbers = std::ranges::find(aDevices, aUniqueID, MakeNumbers);
  const bool isAlone = std::ranges::count(aDevices, aUniqueID, MakeNumbers) == 1;
  return isAlone && !withNumbers->serial.empty() ? &*withNumbers : nullptr;
}

bool IsSameDevice(const UsbDevice& aKnown, const UsbDevice& aOther) {
  return MakeNumbers(aKnown) == MakeNumbers(aOther) && (!aKnown.serial.empty() || aKnown.port == aOther.port);
}

} // namespace krtransport
