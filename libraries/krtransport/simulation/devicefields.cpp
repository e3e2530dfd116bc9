#include "simulation/devicefields.h"

#include "krsystem/ipv4address.h"

#include <algorithm>
#include <array>
#include <string>

namespace krtransport {

namespace {

constexpr std::array<const char*, 5> kSpeeds = {"Unknown speed", "Low Speed (1.5 Mbit/s)", "Full Speed (12 Mbit/s)",
                                                "High Speed (480 Mbit/s)", "Super Speed (5 Gbit/s)"};

void FillIdentity(const LabIdentity& aIdentity, krsystem::DeviceFields& aFields) {
  aFields.vendorName = aIdentity.vendorName;
  aFields.modelName = aIdentity.modelName;
  aFields.version = aIdentity.version;
  aFields.manufacturerInfo = aIdentity.manufacturerInfo;
  aFields.serialNumber = aIdentity.serialNumber;
  aFields.userDefinedName = aIdentity.userDefinedName;
}

KrString Choose(const KrString& aText, const KrString& aOtherwise) {
  return aText.IsEmpty() ? aOtherwise : aText;
}

template <typename Fields>
void FillNetwork(const KrString& aMAC, const KrString& aName, const IPConfiguration& aIP, const HostSubnets& aSubnets,
                 Fields& aFields) {
  aFields.uniqueID = aMAC;
  aFields.macAddress = aMAC;
  aFields.ipAddress = krsystem::FormatIPv4(aIP.address);
  aFields.subnetMask = krsystem::FormatIPv4(aIP.mask);
  aFields.defaultGateway = krsystem::FormatIPv4(aIP.gateway);
  aFields.displayID = aName + " (" + aFields.ipAddress + ")";
  aFields.configurationValid = aSubnets.Reaches(aIP.address);
}

bool Supports(const LabU3VCamera& aCamera, std::int32_t aSpeed) {
  return std::ranges::find(aCamera.supportedSpeeds, aSpeed) != aCamera.supportedSpeeds.end();
}

KrString DescribePower(const LabU3VCamera& aCamera) {
  KrString text = "Configured, " + KrString(std::to_string(aCamera.maxPowerMilliampere)) + " mA";
  return aCamera.hasInitializedCapabilities ? text : text + "; the device does not describe its capabilities";
}

} // namespace

IPConfiguration ParseConfiguration(const LabNetworkSettings& aSettings) {
  return {krsystem::ParseIPv4(aSettings.ipAddress).value_or(0), krsystem::ParseIPv4(aSettings.subnetMask).value_or(0),
          krsystem::ParseIPv4(aSettings.defaultGateway).value_or(0)};
}

krsystem::GEVFields MakeFields(const LabGEVCamera& aCamera, const GEVState& aState, const HostSubnets& aSubnets) {
  krsystem::GEVFields fields;
  FillIdentity(aCamera, fields);
  FillNetwork(aCamera.macAddress, Choose(aCamera.modelName, "GigE Vision device"), aState.ip, aSubnets, fields);
  fields.userDefinedName = aState.userDefinedName;
  fields.gevVersion = aCamera.gevVersion;
  fields.deviceClass = aCamera.deviceClass;
  fields.ipConfigOptions = aCamera.ipConfigOptions;
  fields.ipConfigCurrent = aState.ipConfigCurrent;
  return fields;
}

krsystem::TolvanProtocolFields MakeFields(const LabTolvanDevice& aDevice, const IPConfiguration& aIP,
                                          const HostSubnets& aSubnets) {
  krsystem::TolvanProtocolFields fields;
  FillIdentity(aDevice, fields);
  FillNetwork(aDevice.macAddress, Choose(aDevice.modelName, "Tolvan protocol device"), aIP, aSubnets, fields);
  fields.deviceID = aDevice.deviceID;
  fields.moduleID = aDevice.moduleID;
  fields.subID = aDevice.subID;
  fields.vendorID = aDevice.vendorID;
  fields.softwareMajor = aDevice.softwareMajor;
  fields.softwareMinor = aDevice.softwareMinor;
  return fields;
}

krsystem::U3VFields MakeFields(const LabU3VCamera& aCamera, const KrString& aUserDefinedName) {
  krsystem::U3VFields fields;
  FillIdentity(aCamera, fields);
  fields.userDefinedName = aUserDefinedName;
  fields.uniqueID = aCamera.deviceGUID;
  fields.displayID =
      Choose(aCamera.modelName, "USB3 Vision device") + " (" + Choose(aCamera.serialNumber, aCamera.deviceGUID) + ")";
  fields.configurationValid = aCamera.isConfigurationValid;
  fields.deviceGUID = aCamera.deviceGUID;
  fields.familyName = aCamera.familyName;
  fields.u3vSerialNumber = aCamera.serialNumber;
  fields.powerMessage = aCamera.powerMessage.IsEmpty() ? DescribePower(aCamera) : aCamera.powerMessage;
  const auto speed = static_cast<std::size_t>(std::max<std::int32_t>(aCamera.speed, 0));
  fields.speedMessage = speed < kSpeeds.size() ? kSpeeds[speed] : kSpeeds[0];
  fields.genCPVersion = aCamera.genCPVersion;
  fields.u3vVersion = aCamera.u3vVersion;
  fields.speed = aCamera.speed;
  fields.maxPowerMilliampere = aCamera.maxPowerMilliampere;
  fields.initializedCapabilities = aCamera.hasInitializedCapabilities;
  fields.lowSpeedSupported = Supports(aCamera, 1);
  fields.fullSpeedSupported = Supports(aCamera, 2);
  fields.highSpeedSupported = Supports(aCamera, 3);
  fields.superSpeedSupported = Supports(aCamera, 4);
  fields.currentSpeedSupported = Supports(aCamera, aCamera.speed);
  fields.driverInstalled = aCamera.isDriverInstalled;
  return fields;
}

krsystem::USBFields MakeFields(const LabPlainUSBDevice& aDevice) {
  krsystem::USBFields fields;
  FillIdentity(aDevice, fields);
  fields.uniqueID = aDevice.id;
  fields.displayID = Choose(aDevice.modelName, "USB device") + " (" + aDevice.id + ")";
  fields.configurationValid = aDevice.status == 0;
  fields.status = aDevice.status;
  return fields;
}

} // namespace krtransport
