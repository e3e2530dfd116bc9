// Whatever the kernel's folders may hold of USB devices and host controllers: what is found is in its order and within
// the limits, texts can be shown as they are, and each controller has a name of its own.

#include "usb3vision/usbtree.h"
#include "foldertree.h"
#include "require.h"
#include "usb3vision/usbspeed.h"
#include "usb3vision/usbtext.h"

#include <algorithm>
#include <array>
#include <set>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace krtransport;

constexpr std::size_t kMostBytes = 16384;

void CheckText(const std::string& aText) {
  Require(aText.size() <= kMaxUsbText && CleanUsbText(aText) == aText);
}

void CheckSpeed(std::uint32_t aSpeedKbit) {
  constexpr std::array<std::uint32_t, 7> kKnown = {0, 1500, 12000, 480000, 5000000, 10000000, 20000000};
  Require(std::ranges::find(kKnown, aSpeedKbit) != kKnown.end());
}

void CheckDevice(const UsbRoots& aRoots, const UsbDevice& aDevice) {
  Require(!aDevice.port.starts_with("usb") && aDevice.port.find(':') == std::string::npos);
  Require(aDevice.bus <= 0xFFFF && aDevice.address <= 127 && aDevice.configuration <= 0xFF);
  Require(aDevice.attributes.value_or(0) <= 0xFF);
  Require(ReadUsbAddress(aRoots, aDevice.port) == aDevice.address);
  for (const std::string& text : {aDevice.manufacturer, aDevice.product, aDevice.serial})
    CheckText(text);
  Require(CleanUsbText(aDevice.version) == aDevice.version && !aDevice.version.starts_with(' '));
  CheckSpeed(aDevice.speedKbit);
  for (const UsbInterface& interface : aDevice.interfaces)
    CheckText(interface.driver);
  const std::string parent = GetParentPort(aDevice.port);
  Require(parent.size() < std::max<std::size_t>(aDevice.port.size(), 1) && aDevice.port.starts_with(parent));
  Require(GetDeviceFile(aRoots, aDevice.bus, aDevice.address).parent_path().parent_path() == aRoots.deviceFiles);
}

void CheckDevices(const UsbRoots& aRoots) {
  const std::vector<UsbDevice> devices = ReadUsbDevices(aRoots);
  Require(std::ranges::is_sorted(devices, {}, &UsbDevice::port));
  Require(std::ranges::adjacent_find(devices, {}, &UsbDevice::port) == devices.end());
  for (const UsbDevice& device : devices)
    CheckDevice(aRoots, device);
  std::stop_source stopped;
  stopped.request_stop();
  Require(ReadUsbDevices(aRoots, stopped.get_token()).empty());
}

void CheckControllers(const UsbRoots& aRoots) {
  const std::vector<UsbController> controllers = ReadUsbControllers(aRoots);
  std::set<std::string> keys;
  for (const UsbController& controller : controllers) {
    Require(!controller.key.empty() && keys.insert(controller.key).second);
    CheckText(controller.product);
    CheckSpeed(controller.speedKbit);
    Require(std::ranges::all_of(controller.buses, [](std::uint32_t aBus) { return aBus <= 0xFFFF; }));
  }
  Require(std::ranges::is_sorted(controllers, {}, &UsbController::key));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  if (aSize > kMostBytes)
    return 0;
  const FolderTree tree({reinterpret_cast<const char*>(aData), aSize});
  const UsbRoots roots{.devices = tree.GetRoot() / "usb",
                       .deviceFiles = tree.GetRoot() / "dev",
                       .coreParameters = tree.GetRoot() / "parameters"};
  CheckDevices(roots);
  CheckControllers(roots);
  return 0;
}
