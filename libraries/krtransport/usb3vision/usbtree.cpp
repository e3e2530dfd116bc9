#include "usb3vision/usbtree.h"

#include "usb3vision/sysfsfolder.h"
#include "usb3vision/usbspeed.h"

#include <algorithm>
#include <cstdio>
#include <system_error>

namespace krtransport {
namespace {

constexpr std::uint32_t kMaxBus = 0xFFFF;
constexpr std::uint32_t kMaxAddress = 127; // USB 2.0, 9.4.6.

std::uint16_t ReadHex16(const SysfsFolder& aFolder, const char* aName) {
  return static_cast<std::uint16_t>(aFolder.ReadNumber(aName, 16, 0xFFFF).value_or(0));
}

std::uint8_t ReadHex8(const SysfsFolder& aFolder, const char* aName) {
  return static_cast<std::uint8_t>(aFolder.ReadNumber(aName, 16, 0xFF).value_or(0));
}

bool IsRootHub(const std::string& aName) {
  return aName.starts_with("usb");
}

// Interfaces are named after their device, for example "2-1:1.0".
bool IsInterface(const std::string& aName) {
  return aName.find(':') != std::string::npos;
}

UsbInterface ReadInterface(const SysfsFolder& aFolder) {
  return {.usbClass = {ReadHex8(aFolder, "bInterfaceClass"), ReadHex8(aFolder, "bInterfaceSubClass"),
                       ReadHex8(aFolder, "bInterfaceProtocol")},
          .driver = aFolder.ReadLinkName("driver")};
}

std::optional<UsbDescriptors> ReadDescriptors(const SysfsFolder& aFolder) {
  UsbDescriptors descriptors;
  if (!ParseUsbDescriptors(aFolder.ReadBytes("descriptors", kMaxDescriptors), descriptors).IsOK())
    return std::nullopt;
  return descriptors;
}

std::optional<UsbDevice> ReadDevice(const std::filesystem::path& aRoot, const std::string& aName) {
  const SysfsFolder folder(aRoot / aName);
  const auto bus = folder.ReadNumber("busnum", 10, kMaxBus);
  const auto address = folder.ReadNumber("devnum", 10, kMaxAddress);
  if (!bus || !address)
    return std::nullopt;
  UsbDevice device;
  device.port = aName;
  device.bus = *bus;
  device.address = *address;
  device.vendorID = ReadHex16(folder, "idVendor");
  device.productID = ReadHex16(folder, "idProduct");
  device.manufacturer = folder.ReadText("manufacturer");
  device.product = folder.ReadText("product");
  device.serial = folder.ReadText("serial");
  device.version = folder.ReadText("version");
  device.version.erase(0, std::min(device.version.find_first_not_of(' '), device.version.size()));
  device.speedKbit = ParseUsbSpeed(folder.ReadText("speed"));
  device.maxPowerMilliampere = folder.ReadNumber("bMaxPower", 10).value_or(0);
  device.configuration = folder.ReadNumber("bConfigurationValue", 10, 0xFF).value_or(0);
  device.attributes = folder.ReadNumber("bmAttributes", 16, 0xFF);
  device.isAuthorized = folder.ReadNumber("authorized", 10).value_or(1) != 0;
  device.descriptors = ReadDescriptors(folder);
  return device;
}

// The part of a path that stays when the host is restarted: names ending in ".auto" are numbered in the order of
// probing, their parents are not.
std::filesystem::path GetLastingPath(std::filesystem::path aPath) {
  while (aPath.extension() == ".auto")
    aPath = aPath.parent_path();
  return aPath;
}

void TakePciNumbers(const std::filesystem::path& aController, UsbController& aTaker) {
  // A controller that another one's driver made as a platform device has its PCI numbers further up.
  for (auto path = aController; path.has_filename() && path.filename() != "devices"; path = path.parent_path()) {
    const SysfsFolder folder(path);
    if (folder.ReadLinkName("subsystem") != "pci")
      continue;
    aTaker.vendorID = ReadHex16(folder, "vendor");
    aTaker.deviceID = ReadHex16(folder, "device");
    aTaker.subsystemVendorID = ReadHex16(folder, "subsystem_vendor");
    aTaker.subsystemDeviceID = ReadHex16(folder, "subsystem_device");
    aTaker.revision = ReadHex8(folder, "revision");
    return;
  }
}

// A controller, and the folder that it was made from.
struct FoundController {
  std::filesystem::path path;
  UsbController controller;
};

FoundController& FindOrMake(std::vector<FoundController>& aFound, const std::filesystem::path& aPath) {
  const auto known = std::ranges::find(aFound, aPath, &FoundController::path);
  if (known != aFound.end())
    return *known;
  FoundController found{.path = aPath, .controller = {}};
  found.controller.key = GetLastingPath(aPath).filename().string();
  TakePciNumbers(aPath, found.controller);
  aFound.push_back(std::move(found));
  return aFound.back();
}

// Two controllers of one name are told apart by all of their path.
void TellApart(std::vector<FoundController>& aFound) {
  std::vector<std::string> keys;
  for (const FoundController& found : aFound)
    keys.push_back(found.controller.key);
  for (FoundController& found : aFound)
    if (std::ranges::count(keys, found.controller.key) > 1)
      found.controller.key = found.path.string();
}

void TakeRootHub(const SysfsFolder& aHub, UsbController& aController) {
  if (const auto bus = aHub.ReadNumber("busnum", 10, kMaxBus))
    aController.buses.push_back(*bus);
  aController.speedKbit = std::max(aController.speedKbit, ParseUsbSpeed(aHub.ReadText("speed")));
  if (aController.product.empty())
    aController.product = aHub.ReadText("product");
}

} // namespace

std::vector<UsbController> ReadUsbControllers(const UsbRoots& aRoots) {
  std::vector<FoundController> found;
  for (const std::string& name : ListFolder(aRoots.devices)) {
    if (!IsRootHub(name))
      continue;
    std::error_code error;
    const auto hub = std::filesystem::canonical(aRoots.devices / name, error);
    if (!error)
      TakeRootHub(SysfsFolder(hub), FindOrMake(found, hub.parent_path()).controller);
  }
  TellApart(found);
  std::vector<UsbController> controllers;
  for (FoundController& each : found)
    controllers.push_back(std::move(each.controller));
  std::ranges::sort(controllers, {}, &UsbController::key);
  return controllers;
}

std::vector<UsbDevice> ReadUsbDevices(const UsbRoots& aRoots, const std::stop_token& aCancel) {
  const std::vector<std::string> names = ListFolder(aRoots.devices);
  std::vector<UsbDevice> devices;
  for (const std::string& name : names) {
    if (aCancel.stop_requested())
      return devices;
    if (IsRootHub(name) || IsInterface(name))
      continue;
    if (auto device = ReadDevice(aRoots.devices, name))
      devices.push_back(std::move(*device));
  }
  for (const std::string& name : names) {
    const auto device = std::ranges::find(devices, name.substr(0, name.find(':')), &UsbDevice::port);
    if (IsInterface(name) && device != devices.end())
      device->interfaces.push_back(ReadInterface(SysfsFolder(aRoots.devices / name)));
  }
  return devices;
}

std::optional<std::uint32_t> ReadUsbAddress(const UsbRoots& aRoots, const std::string& aPort) {
  return SysfsFolder(aRoots.devices / aPort).ReadNumber("devnum", 10, kMaxAddress);
}

std::string GetParentPort(const std::string& aPort) {
  const std::size_t dot = aPort.rfind('.');
  return dot != std::string::npos ? aPort.substr(0, dot) : std::string();
}

std::filesystem::path GetDeviceFile(const UsbRoots& aRoots, std::uint32_t aBus, std::uint32_t aAddress) {
  char name[32];
  std::snprintf(name, sizeof(name), "%03u/%03u", aBus, aAddress);
  return aRoots.deviceFiles / name;
}

} // namespace krtransport
