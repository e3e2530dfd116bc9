#include "gigevision/adapterdiscovery.h"

#include "gigevision/broadcastround.h"
#include "gigevision/devicefields.h"
#include "gigevision/gvcpclient.h"
#include "gigevision/networkadapters.h"
#include "krbase/krlogger.h"
#include "krsystem/ipv4address.h"

#include <algorithm>
#include <set>
#include <utility>

namespace krtransport {
namespace {

using std::chrono::milliseconds;

// More cameras than any subnet has in practice; what claims to be more is a fault or an attack.
constexpr std::size_t kMaxDevicesPerAdapter = 1024;

// The devices that one adapter gave in one round.
class KnownDevices {
public:
  /// Whether a device was not there yet; false, too, for one too many, of which the first is logged.
  bool IsNew(const krsystem::GEVFields& aDevice, const krsystem::NetworkAdapterFields& aAdapter) {
    auto identity = std::make_pair(aDevice.uniqueID, aDevice.ipAddress);
    if (mIdentities.size() < kMaxDevicesPerAdapter)
      return mIdentities.insert(std::move(identity)).second;
    if (!mIsFull && !mIdentities.contains(identity)) {
      mIsFull = true;
      KrLogger("GigEVision")
          .Log(KrLogLevel::Warning, {"DiscoverOnAdapters", "adapterdiscovery"},
               "On the network adapter " + aAdapter.name + " more than " + std::to_string(kMaxDevicesPerAdapter) +
                   " devices answered; the others are left out. Check what answers there.");
    }
    return false;
  }

private:
  std::set<std::pair<KrString, KrString>> mIdentities; // Unique id and address.
  bool mIsFull = false;
};

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

// Asks on each of these adapters for itself; true with the first that answers.
bool AskOnAdapters(const std::vector<krsystem::NetworkAdapterFields>& aAdapters, std::uint32_t aAddress,
                   milliseconds aTimeout, krsystem::NetworkAdapterFields& aAdapter, krsystem::GEVFields& aDevice) {
  const std::uint16_t requestID = TakeRequestID();
  bool isFound = false;
  const auto take = [&](std::size_t aIndex, std::span<const std::uint8_t> aDatagram) {
    DiscoveryPayload payload;
    if (KrResult result = ParseDiscoveryAcknowledge(aDatagram, requestID, payload); !result.IsOK()) {
      LogRefused(aAdapters[aIndex], result);
      return true;
    }
    if (payload.address != aAddress)
      return true;
    aAdapter = aAdapters[aIndex];
    aDevice = MakeDeviceFields(payload, aAdapter);
    // It answered to its own address.
    aDevice.configurationValid = true;
    isFound = true;
    return false;
  };
  const KrResult round = RunBroadcastRound(
      aAdapters, {.command = MakeDiscoveryCommand(requestID), .target = aAddress, .timeout = aTimeout, .cancel = {}},
      take);
  return round.IsOK() && isFound;
}

// Asks by the way that the routing table names.
KrResult AskByRoute(const std::vector<krsystem::NetworkAdapterFields>& aAdapters, std::uint32_t aAddress,
                    milliseconds aTimeout, krsystem::NetworkAdapterFields& aAdapter, krsystem::GEVFields& aDevice) {
  GvcpClient client;
  if (KrResult result = GvcpClient::Connect(aAddress, std::nullopt, client); !result.IsOK())
    return MakeNotFound(aAddress, result.GetDescription());
  const auto* adapter = FindAdapter(aAdapters, client.GetLocalAddress());
  if (adapter == nullptr)
    return MakeNotFound(aAddress, "No network adapter of this host leads there.");
  DiscoveryPayload payload;
  const milliseconds perTry = aTimeout / 2;
  if (KrResult result = client.Discover(payload, {.perTry = perTry, .tries = 2, .total = perTry * 2}); !result.IsOK())
    return MakeNotFound(aAddress, result.GetDescription());
  // It could not be opened: whatever follows goes to the address that it gives.
  if (payload.address != aAddress)
    return MakeNotFound(aAddress, "What answers there, " + MakeDisplayID(payload) + ", says that its address is " +
                                      krsystem::FormatIPv4(payload.address) + ".");
  aAdapter = *adapter;
  aDevice = MakeDeviceFields(payload, *adapter);
  // It answered to its own address, if need be through a router.
  aDevice.configurationValid = true;
  return {};
}

} // namespace

KrResult DiscoverOnAdapters(const std::vector<krsystem::NetworkAdapterFields>& aAdapters,
                            const krsystem::DiscoveryRequest& aRequest, const TakeDevice& aTake) {
  const std::uint16_t requestID = TakeRequestID();
  std::vector<KnownDevices> known(aAdapters.size());
  const auto take = [&](std::size_t aIndex, std::span<const std::uint8_t> aDatagram) {
    DiscoveryPayload payload;
    if (KrResult result = ParseDiscoveryAcknowledge(aDatagram, requestID, payload); !result.IsOK()) {
      LogRefused(aAdapters[aIndex], result);
      return true;
    }
    const krsystem::GEVFields device = MakeDeviceFields(payload, aAdapters[aIndex]);
    if (known[aIndex].IsNew(device, aAdapters[aIndex]))
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
  milliseconds timeout(std::max<std::uint32_t>(aTimeoutMs, 2));
  const std::vector<krsystem::NetworkAdapterFields> candidates = FindAdaptersOfSubnet(aAdapters, aAddress);
  // The routing table names one way alone, where the address may be behind either of several adapters.
  if (candidates.size() > 1) {
    timeout /= 2;
    if (AskOnAdapters(candidates, aAddress, timeout, aAdapter, aDevice))
      return {};
  }
  return AskByRoute(aAdapters, aAddress, timeout, aAdapter, aDevice);
}

} // namespace krtransport
