#include "devicejson.h"

#include "devicewords.h"

#include <cstddef>
#include <cstdint>
#include <iterator>

namespace krtool {

namespace {

void WriteNumber(JsonWriter& aWriter, std::string_view aName, std::uint64_t aValue) {
  aWriter.Key(aName);
  aWriter.Number(aValue);
}

void WriteFlag(JsonWriter& aWriter, std::string_view aName, bool aValue) {
  aWriter.Key(aName);
  aWriter.Boolean(aValue);
}

// Major and minor number of a standard's version.
KrString FormatVersion(std::uint32_t aVersion) {
  return std::to_string(aVersion >> 16) + "." + std::to_string(aVersion & 0xFFFFU);
}

KrString FormatSpeed(std::int32_t aSpeed) {
  constexpr const char* kSpeeds[] = {"Unknown", "Low", "Full", "High", "Super"};
  return aSpeed > 0 && aSpeed < static_cast<std::int32_t>(std::size(kSpeeds)) ? kSpeeds[aSpeed] : kSpeeds[0];
}

void WriteKind(JsonWriter& aWriter, const KrNetworkAdapter& aAdapter) {
  aWriter.TextMember("name", aAdapter.GetName());
  aWriter.TextMember("description", aAdapter.GetDescription());
  aWriter.TextMember("macAddress", aAdapter.GetMACAddress());
  aWriter.Key("addresses");
  aWriter.BeginArray();
  for (const krsystem::AdapterAddress& address : aAdapter.GetFields().addresses) {
    aWriter.BeginObject();
    aWriter.TextMember("ipAddress", address.address);
    aWriter.TextMember("subnetMask", address.mask);
    aWriter.EndObject();
  }
  aWriter.EndArray();
  aWriter.TextMember("defaultGateway", aAdapter.GetDefaultGateway());
  WriteFlag(aWriter, "driverInstalled", aAdapter.IsTolvanDriverInstalled());
}

void WriteKind(JsonWriter& aWriter, const KrUSBHostController& aController) {
  WriteNumber(aWriter, "vendorID", aController.GetVendorID());
  WriteNumber(aWriter, "deviceID", aController.GetDeviceID());
  aWriter.TextMember("speed", FormatSpeed(aController.GetSpeed()));
}

void WriteNetwork(JsonWriter& aWriter, const krsystem::NetworkFields& aNetwork) {
  aWriter.TextMember("macAddress", aNetwork.macAddress);
  aWriter.TextMember("ipAddress", aNetwork.ipAddress);
  aWriter.TextMember("subnetMask", aNetwork.subnetMask);
  aWriter.TextMember("defaultGateway", aNetwork.defaultGateway);
}

void WriteKind(JsonWriter& aWriter, const KrDeviceInfoGEV& aDevice) {
  WriteNetwork(aWriter, aDevice.GetFields());
  aWriter.TextMember("gevVersion", FormatVersion(aDevice.GetGEVVersion()));
  aWriter.TextMember("ipConfigurationOffered", aDevice.GetIPConfigOptionsString());
  aWriter.TextMember("ipConfigurationCurrent", aDevice.GetIPConfigCurrentString());
}

void WriteKind(JsonWriter& aWriter, const KrDeviceInfoTolvanProtocol& aDevice) {
  WriteNetwork(aWriter, aDevice.GetFields());
}

void WriteKind(JsonWriter& aWriter, const KrDeviceInfoUSB& aDevice) {
  WriteNumber(aWriter, "status", static_cast<std::uint64_t>(aDevice.GetStatus()));
}

void WriteKind(JsonWriter& aWriter, const KrDeviceInfoU3V& aDevice) {
  aWriter.TextMember("deviceGUID", aDevice.GetDeviceGUID());
  aWriter.TextMember("familyName", aDevice.GetFamilyName());
  aWriter.TextMember("u3vVersion", FormatVersion(aDevice.GetU3VVersion()));
  aWriter.TextMember("genCPVersion", FormatVersion(aDevice.GetGenCPVersion()));
  aWriter.TextMember("speed", FormatSpeed(aDevice.GetSpeed()));
  WriteNumber(aWriter, "maxPowerMilliampere", aDevice.GetMaxPower());
  WriteFlag(aWriter, "driverInstalled", aDevice.IsTolvanDriverInstalled());
}

template <typename Kind, typename Object>
void WriteIfKind(JsonWriter& aWriter, const Object& aObject) {
  if (const auto* kind = dynamic_cast<const Kind*>(&aObject))
    WriteKind(aWriter, *kind);
}

} // namespace

void WriteInterface(JsonWriter& aWriter, const KrInterface& aInterface) {
  aWriter.BeginObject();
  aWriter.TextMember("type", GetKindWord(aInterface.GetType()));
  aWriter.TextMember("uniqueID", aInterface.GetUniqueID());
  aWriter.TextMember("displayID", aInterface.GetDisplayID());
  WriteIfKind<KrNetworkAdapter>(aWriter, aInterface);
  WriteIfKind<KrUSBHostController>(aWriter, aInterface);
  WriteNumber(aWriter, "deviceCount", aInterface.GetDeviceCount());
  aWriter.EndObject();
}

void WriteDevice(JsonWriter& aWriter, const KrDeviceInfo& aDevice, const AccessTypes& aAccess) {
  aWriter.BeginObject();
  aWriter.TextMember("type", GetKindWord(aDevice.GetType()));
  aWriter.Key("interface");
  if (aDevice.GetInterface())
    aWriter.Text(aDevice.GetInterface()->GetUniqueID());
  else
    aWriter.Null();
  aWriter.TextMember("adapter", GetShortName(aDevice.GetInterface()));
  aWriter.TextMember("uniqueID", aDevice.GetUniqueID());
  aWriter.TextMember("displayID", aDevice.GetDisplayID());
  aWriter.TextMember("vendorName", aDevice.GetVendorName());
  aWriter.TextMember("modelName", aDevice.GetModelName());
  aWriter.TextMember("version", aDevice.GetVersion());
  aWriter.TextMember("manufacturerInfo", aDevice.GetManufacturerInfo());
  aWriter.TextMember("serialNumber", aDevice.GetSerialNumber());
  aWriter.TextMember("userDefinedName", aDevice.GetUserDefinedName());
  WriteIfKind<KrDeviceInfoGEV>(aWriter, aDevice);
  WriteIfKind<KrDeviceInfoTolvanProtocol>(aWriter, aDevice);
  WriteIfKind<KrDeviceInfoUSB>(aWriter, aDevice);
  WriteIfKind<KrDeviceInfoU3V>(aWriter, aDevice);
  WriteFlag(aWriter, "reachable", aDevice.IsConfigurationValid());
  if (const auto access = aAccess.find(&aDevice); access != aAccess.end())
    aWriter.TextMember("access", GetAccessWord(access->second));
  aWriter.EndObject();
}

std::string FormatJson(const KrSystem& aSystem, const AccessTypes& aAccess) {
  JsonWriter writer;
  writer.BeginObject();
  writer.Key("interfaces");
  writer.BeginArray();
  for (std::size_t index = 0; index < aSystem.GetInterfaceCount(); ++index)
    WriteInterface(writer, *aSystem.GetInterface(index));
  writer.EndArray();
  writer.Key("devices");
  writer.BeginArray();
  for (std::size_t index = 0; index < aSystem.GetDeviceCount(); ++index)
    WriteDevice(writer, *aSystem.GetDeviceInfo(index), aAccess);
  writer.EndArray();
  writer.EndObject();
  return writer.GetText() + "\n";
}

} // namespace krtool
