#include "ipreport.h"

#include "devicewords.h"
#include "jsonwriter.h"
#include "plaintext.h"

#include <vector>

namespace krtool {

namespace {

std::string DescribeAdapter(const KrNetworkAdapter& aAdapter) {
  std::string text = krapps::MakeCell(GetShortName(&aAdapter));
  for (std::size_t index = 0; index < aAdapter.GetIPAddressCount(); ++index)
    text += (index == 0 ? "  " : ", ") + (aAdapter.GetIPAddress(index) + "/" + aAdapter.GetSubnetMask(index)).ToUtf8();
  return text;
}

std::string DescribeOwnAddress(const KrLastingIPConfiguration& aLasting) {
  return (aLasting.persistent ? "on" : "off") +
         ("  " + aLasting.address + ", mask " + aLasting.subnetMask + ", gateway " + aLasting.gateway).ToUtf8();
}

void WriteLasting(JsonWriter& aWriter, const KrLastingIPConfiguration& aLasting) {
  aWriter.BeginObject();
  aWriter.Key("persistent");
  aWriter.Boolean(aLasting.persistent);
  aWriter.Key("dhcp");
  aWriter.Boolean(aLasting.dhcp);
  aWriter.Key("linkLocal");
  aWriter.Boolean(aLasting.linkLocal);
  aWriter.TextMember("ipAddress", aLasting.address);
  aWriter.TextMember("subnetMask", aLasting.subnetMask);
  aWriter.TextMember("defaultGateway", aLasting.gateway);
  aWriter.EndObject();
}

} // namespace

std::string FormatIPReport(const IPReport& aReport) {
  const KrDeviceInfo& device = *aReport.device.device;
  const krsystem::NetworkFields& fields = aReport.device.fields;
  std::vector<std::vector<std::string>> rows = {{"device", krapps::MakeCell(device.GetDisplayID())},
                                                {"MAC address", krapps::MakeCell(fields.macAddress)}};
  if (aReport.device.adapter)
    rows.push_back({"adapter", DescribeAdapter(*aReport.device.adapter)});
  rows.push_back({"IP address", fields.ipAddress.ToUtf8()});
  rows.push_back({"subnet mask", fields.subnetMask.ToUtf8()});
  rows.push_back({"gateway", fields.defaultGateway.ToUtf8()});
  rows.push_back({"state", std::string(GetReachableWord(device))});
  if (const auto* gigE = dynamic_cast<const KrDeviceInfoGEV*>(&device)) {
    rows.push_back({"ways offered", gigE->GetIPConfigOptionsString().ToUtf8()});
    rows.push_back({"ways switched on", gigE->GetIPConfigCurrentString().ToUtf8()});
  }
  if (aReport.lasting) {
    rows.push_back({"own address", DescribeOwnAddress(*aReport.lasting)});
    rows.push_back({"DHCP", aReport.lasting->dhcp ? "on" : "off"});
    rows.push_back({"link-local", aReport.lasting->linkLocal ? "on" : "off"});
  } else if (!aReport.lastingProblem.empty()) {
    rows.push_back({"own address", "cannot be read: " + krapps::MakeCell(aReport.lastingProblem)});
  }
  if (aReport.answeredAfterMs)
    rows.push_back({"answered after", std::to_string(*aReport.answeredAfterMs) + " ms"});
  return krapps::AlignColumns(rows);
}

std::string FormatIPReportJson(const IPReport& aReport) {
  const KrDeviceInfo& device = *aReport.device.device;
  const krsystem::NetworkFields& fields = aReport.device.fields;
  JsonWriter writer;
  writer.BeginObject();
  writer.TextMember("uniqueID", device.GetUniqueID());
  writer.TextMember("displayID", device.GetDisplayID());
  writer.TextMember("macAddress", fields.macAddress);
  writer.TextMember("adapter", GetShortName(aReport.device.adapter));
  writer.TextMember("ipAddress", fields.ipAddress);
  writer.TextMember("subnetMask", fields.subnetMask);
  writer.TextMember("defaultGateway", fields.defaultGateway);
  writer.Key("reachable");
  writer.Boolean(device.IsConfigurationValid());
  if (const auto* gigE = dynamic_cast<const KrDeviceInfoGEV*>(&device)) {
    writer.TextMember("offered", gigE->GetIPConfigOptionsString());
    writer.TextMember("current", gigE->GetIPConfigCurrentString());
  }
  writer.Key("lasting");
  if (aReport.lasting)
    WriteLasting(writer, *aReport.lasting);
  else
    writer.Null();
  if (!aReport.lastingProblem.empty())
    writer.TextMember("lastingProblem", aReport.lastingProblem);
  if (aReport.answeredAfterMs) {
    writer.Key("answeredAfterMs");
    writer.Number(*aReport.answeredAfterMs);
  }
  writer.EndObject();
  return writer.GetText() + "\n";
}

} // namespace krtool
