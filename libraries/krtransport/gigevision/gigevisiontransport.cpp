#include "gigevision/gigevisiontransport.h"

#include "gigevision/accessquestion.h"
#include "gigevision/adapterdiscovery.h"
#include "gigevision/deviceway.h"
#include "gigevision/forceip.h"
#include "gigevision/gigevisionlink.h"
#include "gigevision/networkadapters.h"
#include "gigevision/receivelimit.h"
#include "gigevision/usedaddresses.h"
#include "krsystem/ipv4address.h"
#include "krsystem/macaddress.h"

#include <optional>
#include <utility>

namespace krtransport {
namespace {

using krsystem::AccessType;
using krsystem::GEVFields;
using krsystem::NetworkAdapterFields;

KrResult RefuseKind(const char* aAttempt) {
  return {KrResult::Code::InvalidInput, std::string(aAttempt) + " needs a GigE Vision device on a network adapter."};
}

} // namespace

GigEVisionTransport::GigEVisionTransport(LinkSpeedReader aReadLinkSpeed) : mReadLinkSpeed(std::move(aReadLinkSpeed)) {}

KrResult GigEVisionTransport::ListInterfaces(std::vector<krsystem::InterfaceFields>& aInterfaces) {
  std::vector<NetworkAdapterFields> adapters;
  if (KrResult result = ListNetworkAdapters(adapters); !result.IsOK())
    return result;
  aInterfaces.assign(adapters.begin(), adapters.end());
  return {};
}

KrResult GigEVisionTransport::Discover(const std::vector<krsystem::InterfaceFields>& aInterfaces,
                                       const krsystem::DiscoveryRequest& aRequest,
                                       const krsystem::DeviceReport& aReport) {
  std::vector<NetworkAdapterFields> adapters;
  std::vector<std::size_t> indices;
  for (std::size_t i = 0; i < aInterfaces.size(); ++i) {
    if (const auto* adapter = std::get_if<NetworkAdapterFields>(&aInterfaces[i])) {
      adapters.push_back(*adapter);
      indices.push_back(i);
    }
  }
  return DiscoverOnAdapters(adapters, aRequest, [&](std::size_t aAdapterIndex, const GEVFields& aDevice) {
    aReport(indices[aAdapterIndex], aDevice);
  });
}

KrResult GigEVisionTransport::FindAddress(std::uint32_t aAddress, std::uint32_t aTimeoutMs,
                                          krsystem::InterfaceFields& aInterface, krsystem::AnyDeviceFields& aDevice) {
  std::vector<NetworkAdapterFields> adapters;
  if (KrResult result = ListNetworkAdapters(adapters); !result.IsOK())
    return result;
  NetworkAdapterFields adapter;
  GEVFields device;
  if (KrResult result = DiscoverAddress(adapters, aAddress, aTimeoutMs, adapter, device); !result.IsOK())
    return result;
  aInterface = std::move(adapter);
  aDevice = std::move(device);
  return {};
}

KrResult GigEVisionTransport::ConfigureIP(const KrString& aMAC, const KrString& aAddress, const KrString& aMask,
                                          const KrString& aGateway) {
  const auto mac = krsystem::ParseMAC(aMAC);
  const auto address = krsystem::ParseIPv4(aAddress);
  const auto mask = krsystem::ParseIPv4(aMask);
  const auto gateway = krsystem::ParseIPv4(aGateway);
  if (!mac || !address || !mask || !gateway)
    return {KrResult::Code::InvalidInput, "The IP configuration " + aAddress + ", " + aMask + ", " + aGateway +
                                              " for " + aMAC + " holds a text that is no address."};
  std::vector<NetworkAdapterFields> adapters;
  if (KrResult result = ListNetworkAdapters(adapters); !result.IsOK())
    return result;
  return ForceIP(adapters, {.mac = *mac, .address = *address, .mask = *mask, .gateway = *gateway});
}

KrResult GigEVisionTransport::GetAccessType(const krsystem::AnyDeviceFields& aDevice, AccessType& aType) {
  const auto* device = std::get_if<GEVFields>(&aDevice);
  const auto address = device != nullptr ? krsystem::ParseIPv4(device->ipAddress) : std::nullopt;
  if (!address)
    return RefuseKind("Asking who controls a device");
  std::vector<NetworkAdapterFields> adapters;
  if (KrResult result = ListNetworkAdapters(adapters); !result.IsOK())
    return result;
  return AskAccessType(adapters, *address, aType);
}

KrResult GigEVisionTransport::Open(const krsystem::InterfaceFields& aInterface,
                                   const krsystem::AnyDeviceFields& aDevice, krsystem::DeviceAccess aAccess,
                                   std::unique_ptr<krsystem::IDeviceLink>& aLink) {
  const auto* adapter = std::get_if<NetworkAdapterFields>(&aInterface);
  const auto* device = std::get_if<GEVFields>(&aDevice);
  const auto address = device != nullptr ? krsystem::ParseIPv4(device->ipAddress) : std::nullopt;
  if (adapter == nullptr || !address)
    return RefuseKind("Opening");
  LinkTarget target = {.deviceAddress = *address,
                       .uniqueID = device->uniqueID,
                       .adapterName = adapter->name.ToUtf8(),
                       .readLinkSpeed = mReadLinkSpeed,
                       .access = aAccess};
  if (KrResult result = ChooseWay(*adapter, *device, target); !result.IsOK())
    return result;
  return GigEVisionLink::Open(target, aLink);
}

KrResult GigEVisionTransport::ReadHost(krsystem::HostReadings& aReadings) {
  aReadings.hasNetworkTransport = true;
  if (const auto limit = ReadReceiveLimit())
    aReadings.receiveBufferLimitBytes = limit;
  std::vector<krsystem::AdapterReading> adapters;
  if (KrResult result = ReadNetworkAdapters(adapters); !result.IsOK())
    return result;
  aReadings.adapters.insert(aReadings.adapters.end(), adapters.begin(), adapters.end());
  return {};
}

KrResult GigEVisionTransport::FindUsedAddresses(const krsystem::InterfaceFields& aInterface,
                                                const std::vector<std::uint32_t>& aAddresses, std::uint32_t aTimeoutMs,
                                                const std::stop_token& aCancel, std::vector<std::uint32_t>& aUsed) {
  const auto* adapter = std::get_if<NetworkAdapterFields>(&aInterface);
  if (adapter == nullptr)
    return RefuseKind("Looking for used addresses");
  return krtransport::FindUsedAddresses(*adapter, aAddresses, std::chrono::milliseconds(aTimeoutMs), aCancel, aUsed);
}

} // namespace krtransport
