#include "usb3vision/usbfields.h"

#include "usb3vision/usbspeed.h"

#include <algorithm>
#include <cstdio>

namespace krtransport {
namespace {

constexpr std::int32_t kStatusGeneralFailure = 2;
constexpr std::int32_t kStatusNotEnoughPower = 4;
constexpr std::uint8_t kSelfPowered = 0x40;

bool IsSuperSpeed(const UsbDevice& aDevice) {
  return GetUsbSpeedClass(aDevice.speedKbit) == 4;
}

const UsbConfiguration* FindConfigurationInUse(const UsbDevice& aDevice) {
  if (!aDevice.descriptors)
    return nullptr;
  const auto& all = aDevice.descriptors->configurations;
  const auto found = std::ranges::find(all, aDevice.configuration, &UsbConfiguration::value);
  return found != all.end() ? &*found : nullptr;
}

bool HasControlInterface(const UsbDevice& aDevice) {
  return std::ranges::find(aDevice.interfaces, kControlInterface, &UsbInterface::usbClass) != aDevice.interfaces.end();
}

std::uint32_t ToMilliampere(const UsbConfiguration& aConfiguration, bool aIsSuperSpeed) {
  return aConfiguration.maxPower * (aIsSuperSpeed ? 8u : 2u);
}

std::string FormatRelease(std::uint16_t aRelease) {
  char text[16];
  std::snprintf(text, sizeof(text), "%x.%02x", aRelease >> 8, aRelease & 0xFFu);
  return text;
}

// Marked as what it is: a GUID proper has no brackets and is read from the device.
std::string DeriveGUID(const UsbDevice& aDevice) {
  char numbers[32];
  std::snprintf(numbers, sizeof(numbers), "(%04X%04X", aDevice.vendorID, aDevice.productID);
  return numbers + (aDevice.serial.empty() ? std::string() : "-" + aDevice.serial) + ", derived)";
}

std::string Choose(const std::string& aFirst, const std::string& aSecond) {
  return aFirst.empty() ? aSecond : aFirst;
}

std::string MakeDisplayID(const UsbDevice& aDevice, const std::string& aName) {
  return Choose(aName, "USB3 Vision device") + " (" + Choose(aDevice.serial, "port " + aDevice.port) + ")";
}

std::string DescribePower(std::uint32_t aMilliampere, bool aHasCapabilities) {
  std::string text = "Configured";
  if (aMilliampere > 0)
    text += ", " + std::to_string(aMilliampere) + " mA";
  return aHasCapabilities ? text : text + "; the device does not describe its capabilities";
}

void TakeDeviceInfo(const U3VDeviceInfo& aInfo, const UsbDevice& aDevice, krsystem::U3VFields& aFields) {
  const auto supports = [&aInfo](unsigned aBit) { return (aInfo.speedSupport & (1u << aBit)) != 0; };
  aFields.genCPVersion = aInfo.genCPVersion;
  aFields.u3vVersion = aInfo.u3vVersion;
  aFields.lowSpeedSupported = supports(0);
  aFields.fullSpeedSupported = supports(1);
  aFields.highSpeedSupported = supports(2);
  aFields.superSpeedSupported = supports(3);
  const std::int32_t speed = GetUsbSpeedClass(aDevice.speedKbit);
  if (IsSuperSpeed(aDevice))
    aFields.currentSpeedSupported = supports(3) || supports(4);
  else if (speed > 0)
    aFields.currentSpeedSupported = supports(static_cast<unsigned>(speed) - 1);
}

void TakeTexts(const UsbDevice& aDevice, const std::vector<std::string>& aTexts, krsystem::U3VFields& aFields) {
  const auto get = [&aTexts](U3VText aText) {
    const auto index = static_cast<std::size_t>(aText);
    return index < aTexts.size() ? aTexts[index] : std::string();
  };
  const std::string release = aDevice.descriptors ? FormatRelease(aDevice.descriptors->deviceRelease) : std::string();
  aFields.vendorName = Choose(get(U3VText::VendorName), aDevice.manufacturer);
  aFields.modelName = Choose(get(U3VText::ModelName), aDevice.product);
  aFields.version = Choose(get(U3VText::DeviceVersion), release);
  aFields.manufacturerInfo = get(U3VText::ManufacturerInfo);
  aFields.serialNumber = Choose(aDevice.serial, get(U3VText::SerialNumber));
  aFields.userDefinedName = get(U3VText::UserDefinedName);
  aFields.familyName = get(U3VText::FamilyName);
  aFields.u3vSerialNumber = get(U3VText::SerialNumber);
  aFields.deviceGUID = Choose(get(U3VText::DeviceGUID), DeriveGUID(aDevice));
}

// A hub without a supply of its own gives each port one unit load; the kernel leaves a device that asks for more
// without a configuration.
bool LacksPower(const UsbDevice& aDevice, const UsbDevice* aHub) {
  if (aHub == nullptr || !aHub->attributes || (*aHub->attributes & kSelfPowered) != 0 || !aDevice.descriptors)
    return false;
  const bool isSuper = IsSuperSpeed(aDevice);
  const std::uint32_t unitLoad = isSuper ? 150 : 100;
  const auto& all = aDevice.descriptors->configurations;
  return !all.empty() && std::ranges::all_of(all, [&](const UsbConfiguration& aConfiguration) {
    return ToMilliampere(aConfiguration, isSuper) > unitLoad;
  });
}

} // namespace

UsbKind GetUsbKind(const UsbDevice& aDevice) {
  const bool isDescribed = aDevice.descriptors && IsUSB3Vision(*aDevice.descriptors);
  if (!isDescribed && !HasControlInterface(aDevice))
    return UsbKind::Other;
  return aDevice.configuration != 0 && aDevice.isAuthorized ? UsbKind::Camera : UsbKind::Unused;
}

const U3VDeviceInfo* FindDeviceInfo(const UsbDevice& aDevice) {
  std::vector<const UsbConfiguration*> candidates = {FindConfigurationInUse(aDevice)};
  if (aDevice.descriptors)
    for (const UsbConfiguration& configuration : aDevice.descriptors->configurations)
      candidates.push_back(&configuration);
  for (const UsbConfiguration* configuration : candidates) {
    const UsbInterfaceDescriptor* control = configuration != nullptr ? FindControlInterface(*configuration) : nullptr;
    if (control != nullptr && control->deviceInfo)
      return &*control->deviceInfo;
  }
  return nullptr;
}

krsystem::USBHostControllerFields MakeControllerFields(const UsbController& aController) {
  krsystem::USBHostControllerFields fields;
  fields.uniqueID = "usb/" + aController.key;
  fields.displayID = Choose(aController.product, "USB host controller") + " (" + aController.key + ")";
  fields.vendorID = aController.vendorID;
  fields.deviceID = aController.deviceID;
  fields.subsystemID = (std::uint32_t{aController.subsystemDeviceID} << 16) | aController.subsystemVendorID;
  fields.revision = aController.revision;
  fields.speed = GetUsbSpeedClass(aController.speedKbit);
  return fields;
}

krsystem::U3VFields MakeCameraFields(const UsbDevice& aDevice, const std::string& aUniqueID,
                                     const KrResult& aPermission, const std::vector<std::string>& aTexts) {
  krsystem::U3VFields fields;
  const U3VDeviceInfo* info = FindDeviceInfo(aDevice);
  const UsbConfiguration* configuration = FindConfigurationInUse(aDevice);
  TakeTexts(aDevice, aTexts, fields);
  fields.uniqueID = aUniqueID;
  fields.displayID = MakeDisplayID(aDevice, fields.modelName.ToUtf8());
  fields.configurationValid = HasControlInterface(aDevice);
  fields.speed = GetUsbSpeedClass(aDevice.speedKbit);
  fields.speedMessage = DescribeUsbSpeed(aDevice.speedKbit);
  fields.maxPowerMilliampere = aDevice.maxPowerMilliampere;
  if (fields.maxPowerMilliampere == 0 && configuration != nullptr)
    fields.maxPowerMilliampere = ToMilliampere(*configuration, IsSuperSpeed(aDevice));
  if (info != nullptr)
    TakeDeviceInfo(*info, aDevice, fields);
  fields.initializedCapabilities = info != nullptr;
  fields.powerMessage = DescribePower(fields.maxPowerMilliampere, info != nullptr);
  fields.driverInstalled = aPermission.IsOK();
  return fields;
}

krsystem::USBFields MakeUnusedFields(const UsbDevice& aDevice, const std::string& aUniqueID, const UsbDevice* aHub) {
  krsystem::USBFields fields;
  fields.uniqueID = aUniqueID;
  fields.displayID = MakeDisplayID(aDevice, aDevice.product);
  fields.vendorName = aDevice.manufacturer;
  fields.modelName = aDevice.product;
  fields.serialNumber = aDevice.serial;
  fields.configurationValid = false;
  const bool lacksPower = aDevice.isAuthorized && LacksPower(aDevice, aHub);
  fields.status = lacksPower ? kStatusNotEnoughPower : kStatusGeneralFailure;
  return fields;
}

} // namespace krtransport
