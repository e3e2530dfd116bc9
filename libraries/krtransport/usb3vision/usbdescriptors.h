#pragma once
// A USB device's own account of itself, read from the bytes of its descriptors as the kernel keeps them. Nobody vouches
// for these bytes; strings and what the system makes of the device are left to others.

#include "krbase/krresult.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace krtransport {

/// The most bytes of descriptors that are looked at.
inline constexpr std::size_t kMaxDescriptors = 65536;

/// Class, sub-class and protocol of an interface or of a function.
struct UsbClass {
  std::uint8_t code = 0;
  std::uint8_t subClass = 0;
  std::uint8_t protocol = 0;
  friend bool operator==(const UsbClass&, const UsbClass&) = default;
};

/// The interfaces of a USB3 Vision device.
inline constexpr UsbClass kControlInterface{0xEF, 0x05, 0x00};
inline constexpr UsbClass kEventInterface{0xEF, 0x05, 0x01};
inline constexpr UsbClass kStreamInterface{0xEF, 0x05, 0x02};

/// The texts that a device info descriptor names, in its order.
enum class U3VText : std::uint8_t {
  DeviceGUID,
  VendorName,
  ModelName,
  FamilyName,
  DeviceVersion,
  ManufacturerInfo,
  SerialNumber,
  UserDefinedName,
};
inline constexpr std::size_t kU3VTextCount = 8;

/// The device info descriptor of USB3 Vision: class-specific, type 0x24, sub-type 0x01, 20 bytes.
struct U3VDeviceInfo {
  std::uint32_t genCPVersion = 0;                        ///< Major in the upper, minor in the lower 16 bits.
  std::uint32_t u3vVersion = 0;                          ///< The same.
  std::array<std::uint8_t, kU3VTextCount> textIndexes{}; ///< Numbers of string descriptors; 0 for no text.
  std::uint8_t speedSupport = 0;                         ///< Bit 0 low, 1 full, 2 high, 3 super, 4 above.
};

/// One interface in one alternate setting.
struct UsbInterfaceDescriptor {
  std::uint8_t number = 0;
  std::uint8_t alternateSetting = 0;
  UsbClass usbClass;
  std::optional<U3VDeviceInfo> deviceInfo;
};

/// An interface association: a function made of several interfaces.
struct UsbFunction {
  std::uint8_t firstInterface = 0;
  std::uint8_t interfaceCount = 0;
  UsbClass usbClass;
};

struct UsbConfiguration {
  std::uint8_t value = 0;
  std::uint8_t attributes = 0;
  std::uint8_t maxPower = 0; ///< In units of 2 mA, at SuperSpeed and above of 8 mA.
  std::vector<UsbFunction> functions;
  std::vector<UsbInterfaceDescriptor> interfaces;
};

struct UsbDescriptors {
  std::uint16_t usbVersion = 0; ///< Binary coded decimal, 0x0320 for 3.2.
  std::uint16_t vendorID = 0;
  std::uint16_t productID = 0;
  std::uint16_t deviceRelease = 0; ///< Binary coded decimal.
  UsbClass usbClass;
  std::vector<UsbConfiguration> configurations;
};

/// Reads a device descriptor and the configurations behind it (USB 2.0, 9.6). BadData, and nothing set, where there is
/// no device descriptor at the start. What comes behind a malformed descriptor is passed over.
KrResult ParseUsbDescriptors(std::span<const std::uint8_t> aBytes, UsbDescriptors& aDescriptors);

/// The control interface of a configuration; null where it has none.
const UsbInterfaceDescriptor* FindControlInterface(const UsbConfiguration& aConfiguration);

/// Whether a configuration of the device has a control interface of USB3 Vision.
bool IsUSB3Vision(const UsbDescriptors& aDescriptors);

} // namespace krtransport
