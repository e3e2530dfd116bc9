#include "gigevision/adapterdiscovery.h"

#include "gigevision/broadcastround.h"
#include "gigevision/devicefields.h"
#include "gigevision/gvcpclient.h"
#include "gigevision/networkadapters.h"
#include "krbase/krlogger.h"
#include "krsystem/ipv4address.h"

#include <algorithm>
#include <set>
#include <tuple>

namespace krtransport {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kForceIPTimeout{1000};

// Datagrams that are no answer of ours are ordinary on a broadcast network: worth a note for who looks for a fault.
void LogRefused(const krsystem::NetworkAdapterFields& aAdapter, const KrResult& aReason) {
  KrLogger("GigEVision")
      .Log(KrLogLevel::Debug, {"DiscoverOnAdapters", "adapterdiscovery"},
           "On the network adapter " + aAdapter.name + ": " + aReason.GetDescription());
}

// The adapter that holds an address of this host; the routing table chose the address.
const krsystem::NetworkAdapterFields* FindAdapter(const std::vector<krsystem::NetworkAdapterFields>& aAdapters,
                                                  std::uint32_t aLocalAddress) {
  const KrString text = krsystem::FormatIPv4(aLocalAddress);
  const auto holds = [&text](const krsystem::NetworkAdapterFields& aAdapter) {
    return std::any_of(aAdapter.addresses.begin(), aAdapter.addresses.end(),
                       [&text](const krsystem::AdapterAddress& aRow) { return aRow.address == text; });
  };
  const auto adapter = std::find_if(aAdapters.begin(), aAdapters.end(), holds);
  return adapter == aAdapters.end() ? nullptr : &*adapter;
}

KrResult MakeNotFound(std::uint32_t aAddress, const KrString& aReason) {
  return {KrResult::Code::NotFound,
          "No GigE Vision device was found at " + krsystem::FormatIPv4(aAddress) + ". " + aReason};
}

} // namespace

KrResult DiscoverOnAdapters(const std::vector<krsystem::NetworkAdapterFields>& aAdapters,
                            const krsystem::DiscoveryRequest& aRequest, const TakeDevice& aTake) {
  const std::uint16_t requestID = TakeRequestID();
  std::set<std::tuple<std::size_t, KrString, KrString>> known;
  const auto take = [&](std::size_t aIndex, std::span<const std::uint8_t> aDatagram) {
    DiscoveryPayload payload;
    if (KrResult result = ParseDiscoveryAcknowledge(aDatagram, requestID, payload); !result.IsOK()) {
      LogRefused(aAdapters[aIndex], result);
      return true;
    }
    const krsystem::GEVFields device = MakeDeviceFields(payload, aAdapters[aIndex]);
    if (known.emplace(aIndex, device.uniqueID, device.ipAddress).second)
      aTake(aIndex, device);
    return true;
  };
  return RunBroadcastRound(aAdapters,
                           {.command = MakeDiscoveryCommand(requestID),
                            .subnetBroadcast = aRequest.subnetBroadcast,
                            .timeout = milliseconds(aRequest.timeoutMs),
                            .cancel = aRequest.cancel},
                           take);
}

KrResult DiscoverAddress(const std::vector<krsystem::NetworkAdapterFields>& aAdapters, std::uint32_t aAddress,
                         std::uint32_t aTimeoutMs, krsystem::NetworkAdapterFields& aAdapter,
                         krsystem::GEVFields& aDevice) {
  GvcpClient client;
  if (KrResult result = GvcpClient::Connect(aAddress, std::nullopt, client); !result.IsOK())
    return MakeNotFound(aAddress, result.GetDescription());
  const auto* adapter = FindAdapter(aAdapters, client.GetLocalAddress());
  if (adapter == nullptr)
    return MakeNotFound(aAddress, "No network adapter of this host leads there.");
  DiscoveryPayload payload;
  const milliseconds perTry = milliseconds(std::max<std::uint32_t>(aTimeoutMs, 2)) / 2;
  if (KrResult result = client.Discover(payload, {.perTry = perTry, .tries = 2}); !result.IsOK())
    return MakeNotFound(aAddress, result.GetDescription());
  aAdapter = *adapter;
  aDevice = MakeDeviceFields(payload, *adapter);
  // It answered to its own address, if need be through a router.
  aDevice.configurationValid = true;
  return {};
}

KrResult ForceIP(const std::vector<krsystem::NetworkAdapterFields>& aAdapters, const MacBytes& aMac,
                 std::uint32_t aAddress, std::uint32_t aMask, std::uint32_t aGateway) {
  const std::uint16_t requestID = TakeRequestID();
  KrResult result(KrResult::Code::NotFound, "No device acknowledged the new IP configuration for " +
                                                KrString(FormatMac(aMac)) +
                                                ". Check that it is connected and switched on.");
  const auto take = [&](std::size_t aIndex, std::span<const std::uint8_t> aDatagram) {
    const KrResult answer = ParseForceIPAcknowledge(aDatagram, requestID);
    if (answer == KrResult::Code::BadData) {
      LogRefused(aAdapters[aIndex], answer);
      return true;
    }
    result = answer;
    return false;
  };
  // A device on a foreign subnet does not hear a subnet's broadcast.
  const KrResult round = RunBroadcastRound(aAdapters,
                                           {.command = MakeForceIPCommand(requestID, aMac, aAddress, aMask, aGateway),
                                            .subnetBroadcast = false,
                                            .timeout = kForceIPTimeout,
                                            .cancel = {}},
                                           take);
  return round.IsOK() ? result : round;
}

} // namespace krtransport
