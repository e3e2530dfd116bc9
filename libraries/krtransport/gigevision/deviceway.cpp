#include "gigevision/deviceway.h"

#include "gigevision/gvcpclient.h"
#include "gigevision/networkadapters.h"
#include "gigevision/routequery.h"
#include "krsystem/ipv4address.h"
#include "krsystem/macaddress.h"

#include <chrono>
#include <optional>

namespace krtransport {
namespace {

using krsystem::GEVFields;
using krsystem::NetworkAdapterFields;
using std::chrono::milliseconds;

constexpr GvcpPatience kPatience{milliseconds(250), 2, milliseconds(500)};

// This host's address as the routing table chooses it.
std::optional<std::uint32_t> FindRoutedAddress(const GEVFields& aDevice, std::uint32_t aDeviceAddress) {
  GvcpClient client;
  // A broadcast answer from a foreign subnet says nothing about the way back; an answer to its address does.
  if (!aDevice.configurationValid || !GvcpClient::Connect(aDeviceAddress, std::nullopt, client).IsOK())
    return std::nullopt;
  return client.GetLocalAddress();
}

// Whether it is this device to which the routing table leads: two adapters may share one network.
bool IsAtTheRoutesEnd(const GEVFields& aDevice, const LinkTarget& aTarget) {
  GvcpClient client;
  DiscoveryPayload payload;
  return GvcpClient::Connect(aTarget.deviceAddress, aTarget.localAddress, client).IsOK() &&
         client.Discover(payload, kPatience).IsOK() && krsystem::ParseMAC(aDevice.macAddress) == payload.mac;
}

KrResult RefuseOtherRoute(const NetworkAdapterFields& aAdapter, const GEVFields& aDevice,
                          const std::string& aRouteAdapter) {
  return {KrResult::Code::NotFound,
          "The device " + aDevice.displayID + " answers on the network adapter " + aAdapter.name +
              " and cannot be controlled there: this host sends what goes to " + aDevice.ipAddress +
              " by the network adapter " + aRouteAdapter +
              ", whose subnet holds that address, too. Give the adapters different subnets, or have the system send it "
              "by the right one: ip route add " +
              aDevice.ipAddress + "/32 dev " + aAdapter.name};
}

} // namespace

KrResult ChooseWay(const NetworkAdapterFields& aAdapter, const GEVFields& aDevice, LinkTarget& aTarget) {
  const auto ofSubnet = FindLocalAddress(aAdapter, aTarget.deviceAddress);
  const auto local = ofSubnet ? ofSubnet : FindRoutedAddress(aDevice, aTarget.deviceAddress);
  if (!local)
    return {KrResult::Code::NotFound, "The device " + aDevice.displayID +
                                          " cannot be reached from the network adapter " + aAdapter.displayID +
                                          ". Give it an address of that adapter's subnet."};
  aTarget.localAddress = *local;
  if (!ofSubnet)
    return {};
  const std::string routeAdapter = FindRouteAdapter(*local, aTarget.deviceAddress);
  if (routeAdapter.empty() || routeAdapter == aTarget.adapterName || IsAtTheRoutesEnd(aDevice, aTarget))
    return {};
  if (aTarget.access != krsystem::DeviceAccess::Monitor)
    return RefuseOtherRoute(aAdapter, aDevice, routeAdapter);
  aTarget.isOffRoute = true;
  return {};
}

} // namespace krtransport
