#include "gigevision/devicefields.h"

#include "gigevision/networkadapters.h"
#include "krsystem/ipv4address.h"

namespace krtransport {
namespace {

// The first text that is not empty, for a list.
std::string ChooseName(const DiscoveryPayload& aPayload) {
  for (const std::string* text : {&aPayload.model, &aPayload.manufacturer, &aPayload.serialNumber})
    if (!text->empty())
      return *text;
  return "GigE Vision device";
}

} // namespace

KrString MakeUniqueID(const DiscoveryPayload& aPayload) {
  return aPayload.mac != krsystem::MACAddress{} ? krsystem::FormatMAC(aPayload.mac)
                                                : krsystem::FormatIPv4(aPayload.address) + "/" + aPayload.serialNumber;
}

KrString MakeDisplayID(const DiscoveryPayload& aPayload) {
  return KrString(ChooseName(aPayload)) + " (" + krsystem::FormatIPv4(aPayload.address) + ")";
}

krsystem::GEVFields MakeDeviceFields(const DiscoveryPayload& aPayload, const krsystem::NetworkAdapterFields& aAdapter) {
  krsystem::GEVFields fields;
  fields.macAddress = krsystem::FormatMAC(aPayload.mac);
  fields.ipAddress = krsystem::FormatIPv4(aPayload.address);
  fields.subnetMask = krsystem::FormatIPv4(aPayload.mask);
  fields.defaultGateway = krsystem::FormatIPv4(aPayload.gateway);
  fields.uniqueID = MakeUniqueID(aPayload);
  fields.displayID = MakeDisplayID(aPayload);
  fields.vendorName = aPayload.manufacturer;
  fields.modelName = aPayload.model;
  fields.version = aPayload.deviceVersion;
  fields.manufacturerInfo = aPayload.manufacturerInfo;
  fields.serialNumber = aPayload.serialNumber;
  fields.userDefinedName = aPayload.userDefinedName;
  fields.configurationValid = FindLocalAddress(aAdapter, aPayload.address).has_value();
  fields.gevVersion = aPayload.version;
  fields.deviceClass = GetDeviceClass(aPayload.deviceMode);
  fields.ipConfigOptions = aPayload.ipConfigOptions;
  fields.ipConfigCurrent = aPayload.ipConfigCurrent;
  return fields;
}

} // namespace krtransport
