#pragma once
// The USB devices and host controllers of this host, as the kernel's files describe them (sysfs, "usb" bus). No device
// is asked anything for it; what a device is worth to the finder is decided elsewhere.

#include "usb3vision/usbdescriptors.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace krtransport {

/// Where the kernel's files are.
struct UsbRoots {
  std::filesystem::path devices = "/sys/bus/usb/devices";
  std::filesystem::path deviceFiles = "/dev/bus/usb";
  std::filesystem::path coreParameters = "/sys/module/usbcore/parameters";
};

/// An interface of the configuration in use.
struct UsbInterface {
  UsbClass usbClass;
  std::string driver; ///< The name of the driver bound to it; empty where there is none.
};

/// A device. Attributes that the kernel does not give, or that make no sense, are 0 or empty; texts are cleaned.
struct UsbDevice {
  std::string port; ///< The kernel's name of the place where it is plugged in, for example "2-1.4".
  std::uint32_t bus = 0;
  std::uint32_t address = 0; ///< Given anew each time a device is plugged in.
  std::uint16_t vendorID = 0;
  std::uint16_t productID = 0;
  std::string manufacturer;
  std::string product;
  std::string serial;
  std::string version;         ///< Of the USB standard, for example "3.10".
  std::uint32_t speedKbit = 0; ///< Thousands of bits a second.
  std::uint32_t maxPowerMilliampere = 0;
  std::uint32_t configuration = 0;         ///< The value of the configuration in use; 0 for none.
  std::optional<std::uint32_t> attributes; ///< bmAttributes of that configuration.
  bool isAuthorized = true;
  std::vector<UsbInterface> interfaces;
  std::optional<UsbDescriptors> descriptors; ///< Nothing where they cannot be read or are malformed.
};

/// A host controller with all its root hubs; one of USB 3 has two buses.
struct UsbController {
  std::string key; ///< The same after a restart of the host: its PCI address or its name on the system's bus.
  std::string product;
  std::uint16_t vendorID = 0; ///< This and the following from PCI; 0 for a controller that is no PCI device.
  std::uint16_t deviceID = 0;
  std::uint16_t subsystemVendorID = 0;
  std::uint16_t subsystemDeviceID = 0;
  std::uint8_t revision = 0;
  std::uint32_t speedKbit = 0; ///< Of its fastest root hub.
  std::vector<std::uint32_t> buses;
};

/// Lists the host controllers, in the order of their keys; none where the host has no USB. Any thread.
std::vector<UsbController> ReadUsbControllers(const UsbRoots& aRoots);

/// Lists the devices behind root hubs, hubs too, in the order of their ports; what vanishes meanwhile is left out. When
/// aCancel is stopped the list ends early. Any thread.
std::vector<UsbDevice> ReadUsbDevices(const UsbRoots& aRoots, const std::stop_token& aCancel = {});

/// The address of the device that is plugged into a port; nothing where there is none. Any thread.
std::optional<std::uint32_t> ReadUsbAddress(const UsbRoots& aRoots, const std::string& aPort);

/// The port of the hub that a port belongs to, for example "2-1" for "2-1.4"; empty for one of a root hub.
std::string GetParentPort(const std::string& aPort);

/// The device file of a device, for example "/dev/bus/usb/002/005".
std::filesystem::path GetDeviceFile(const UsbRoots& aRoots, std::uint32_t aBus, std::uint32_t aAddress);

} // namespace krtransport
