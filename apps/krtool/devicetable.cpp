#include "devicetable.h"

#include "jsonwriter.h"
#include "plaintext.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace krtool {

namespace {

using Row = std::vector<std::string>;

constexpr std::string_view GetKindName(KrDeviceInfoType aType) {
  constexpr struct {
    KrDeviceInfoType type;
    std::string_view name;
  } kNames[] = {{KrDeviceInfoType::GEV, "GEV"},
                {KrDeviceInfoType::TolvanProtocol, "TolvanProtocol"},
                {KrDeviceInfoType::USB, "USB"},
                {KrDeviceInfoType::U3V, "U3V"}};
  for (const auto& row : kNames)
    if (row.type == aType)
      return row.name;
  return "Unknown";
}

constexpr std::string_view GetKindName(KrInterfaceType aType) {
  return aType == KrInterfaceType::NetworkAdapter ? "NetworkAdapter" : "USBHostController";
}

struct NetworkTexts {
  KrString ipAddress;
  KrString macAddress;
};

template <typename Device>
NetworkTexts ReadNetworkTexts(const Device& aDevice) {
  return {aDevice.GetIPAddress(), aDevice.GetMACAddress()};
}

NetworkTexts GetNetworkTexts(const KrDeviceInfo& aDevice) {
  if (const auto* gigE = dynamic_cast<const KrDeviceInfoGEV*>(&aDevice))
    return ReadNetworkTexts(*gigE);
  if (const auto* tolvan = dynamic_cast<const KrDeviceInfoTolvanProtocol*>(&aDevice))
    return ReadNetworkTexts(*tolvan);
  return {};
}

KrString JoinAddresses(const KrNetworkAdapter& aAdapter) {
  KrString joined;
  for (std::size_t index = 0; index < aAdapter.GetIPAddressCount(); ++index)
    joined += (index > 0 ? "," : "") + aAdapter.GetIPAddress(index);
  return joined;
}

Row MakeRow(const KrInterface& aInterface) {
  NetworkTexts network;
  if (const auto* adapter = dynamic_cast<const KrNetworkAdapter*>(&aInterface))
    network = {JoinAddresses(*adapter), adapter->GetMACAddress()};
  const std::string state =
      std::to_string(aInterface.GetDeviceCount()) + (aInterface.GetDeviceCount() == 1 ? " device" : " devices");
  return {"interface",
          std::string(GetKindName(aInterface.GetType())),
          krapps::MakeCell(aInterface.GetUniqueID()),
          krapps::MakeCell(network.ipAddress),
          krapps::MakeCell(network.macAddress),
          krapps::MakeCell(aInterface.GetDisplayID()),
          "-",
          "-",
          state};
}

Row MakeRow(const KrDeviceInfo& aDevice) {
  const NetworkTexts network = GetNetworkTexts(aDevice);
  return {"device",
          std::string(GetKindName(aDevice.GetType())),
          krapps::MakeCell(aDevice.GetUniqueID()),
          krapps::MakeCell(network.ipAddress),
          krapps::MakeCell(network.macAddress),
          krapps::MakeCell(aDevice.GetVendorName() + " " + aDevice.GetModelName()),
          krapps::MakeCell(aDevice.GetSerialNumber()),
          krapps::MakeCell(aDevice.GetUserDefinedName()),
          aDevice.IsConfigurationValid() ? "reachable" : "unreachable"};
}

void WriteInterface(JsonWriter& aWriter, const KrInterface& aInterface) {
  aWriter.BeginObject();
  aWriter.TextMember("type", GetKindName(aInterface.GetType()));
  aWriter.TextMember("uniqueID", aInterface.GetUniqueID());
  aWriter.TextMember("displayID", aInterface.GetDisplayID());
  if (const auto* adapter = dynamic_cast<const KrNetworkAdapter*>(&aInterface)) {
    aWriter.TextMember("macAddress", adapter->GetMACAddress());
    aWriter.Key("addresses");
    aWriter.BeginArray();
    for (std::size_t index = 0; index < adapter->GetIPAddressCount(); ++index) {
      aWriter.BeginObject();
      aWriter.TextMember("ipAddress", adapter->GetIPAddress(index));
      aWriter.TextMember("subnetMask", adapter->GetSubnetMask(index));
      aWriter.EndObject();
    }
    aWriter.EndArray();
  }
  aWriter.Key("deviceCount");
  aWriter.Number(aInterface.GetDeviceCount());
  aWriter.EndObject();
}

void WriteDevice(JsonWriter& aWriter, const KrDeviceInfo& aDevice) {
  const NetworkTexts network = GetNetworkTexts(aDevice);
  aWriter.BeginObject();
  aWriter.TextMember("type", GetKindName(aDevice.GetType()));
  aWriter.Key("interface");
  if (aDevice.GetInterface())
    aWriter.Text(aDevice.GetInterface()->GetUniqueID());
  else
    aWriter.Null();
  aWriter.TextMember("uniqueID", aDevice.GetUniqueID());
  aWriter.TextMember("displayID", aDevice.GetDisplayID());
  aWriter.TextMember("vendorName", aDevice.GetVendorName());
  aWriter.TextMember("modelName", aDevice.GetModelName());
  aWriter.TextMember("version", aDevice.GetVersion());
  aWriter.TextMember("manufacturerInfo", aDevice.GetManufacturerInfo());
  aWriter.TextMember("serialNumber", aDevice.GetSerialNumber());
  aWriter.TextMember("userDefinedName", aDevice.GetUserDefinedName());
  if (!network.macAddress.IsEmpty()) {
    aWriter.TextMember("macAddress", network.macAddress);
    aWriter.TextMember("ipAddress", network.ipAddress);
  }
  aWriter.Key("reachable");
  aWriter.Boolean(aDevice.IsConfigurationValid());
  aWriter.EndObject();
}

} // namespace

std::string FormatTable(const KrSystem& aSystem) {
  std::vector<Row> rows;
  if (aSystem.GetInterfaceCount() > 0)
    rows.push_back({"entry", "kind", "unique ID", "IP address", "MAC address", "name", "serial number",
                    "user-defined name", "state"});
  for (std::size_t index = 0; index < aSystem.GetInterfaceCount(); ++index) {
    const KrInterface& interface = *aSystem.GetInterface(index);
    rows.push_back(MakeRow(interface));
    for (std::size_t device = 0; device < interface.GetDeviceCount(); ++device)
      rows.push_back(MakeRow(*interface.GetDeviceInfo(device)));
  }
  std::string text = krapps::AlignColumns(rows);
  if (aSystem.GetInterfaceCount() == 0)
    text += "No interfaces found.\n";
  if (aSystem.GetDeviceCount() == 0)
    text += "No devices found.\n";
  return text;
}

std::string FormatJson(const KrSystem& aSystem) {
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
    WriteDevice(writer, *aSystem.GetDeviceInfo(index));
  writer.EndArray();
  writer.EndObject();
  return writer.GetText() + "\n";
}

} // namespace krtool
