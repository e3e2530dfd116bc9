#include "gigevision/forceip.h"

#include "gigevision/broadcastround.h"
#include "gigevision/gvcpclient.h"
#include "gigevision/gvcppacket.h"
#include "gigevision/networkadapters.h"

#include <algorithm>
#include <numeric>
#include <string>

namespace krtransport {
namespace {

using krsystem::NetworkAdapterFields;
using std::chrono::milliseconds;

constexpr milliseconds kSearchTimeout{300};
constexpr milliseconds kAcknowledgeTimeout{1000};

bool HasSubnetOf(const NetworkAdapterFields& aAdapter, std::uint32_t aAddress) {
  return FindLocalAddress(aAdapter, aAddress).has_value();
}

// The adapters on which a device of the MAC address answers. Ends with the answer after which no better adapter can
// answer.
std::set<std::size_t> FindAnswering(const std::vector<NetworkAdapterFields>& aAdapters,
                                    const ForcedConfiguration& aConfiguration) {
  const bool hasPreferred = std::ranges::any_of(
      aAdapters, [&](const auto& aAdapter) { return HasSubnetOf(aAdapter, aConfiguration.address); });
  const std::uint16_t requestID = TakeRequestID();
  std::set<std::size_t> answering;
  const auto take = [&](std::size_t aIndex, std::span<const std::uint8_t> aDatagram) {
    DiscoveryPayload payload;
    if (!ParseDiscoveryAcknowledge(aDatagram, requestID, payload).IsOK() || payload.mac != aConfiguration.mac)
      return true;
    answering.insert(aIndex);
    return hasPreferred && !HasSubnetOf(aAdapters[aIndex], aConfiguration.address);
  };
  const KrResult round = RunBroadcastRound(
      aAdapters,
      {.command = MakeDiscoveryCommand(requestID), .subnetBroadcast = false, .timeout = kSearchTimeout, .cancel = {}},
      take);
  static_cast<void>(round); // It is not cancelled, and what it did not find is tried all the same.
  return answering;
}

KrString DescribePlace(const std::vector<NetworkAdapterFields>& aTold, bool aWasHeard) {
  if (!aWasHeard)
    return "It did not answer on any network adapter either. Check that it is connected and switched on.";
  return "It answers on the network adapter " + aTold.front().name +
         ", but does not acknowledge. An application may control it, which keeps some devices from taking one: close "
         "that application. Or it took the configuration and is heard no more: look for it again.";
}

} // namespace

std::vector<std::size_t> ChooseAdapters(const std::vector<NetworkAdapterFields>& aAdapters,
                                        const std::set<std::size_t>& aAnswered, std::uint32_t aNewAddress) {
  if (aAnswered.empty()) {
    std::vector<std::size_t> all(aAdapters.size());
    std::iota(all.begin(), all.end(), std::size_t{0});
    return all;
  }
  const auto preferred =
      std::ranges::find_if(aAnswered, [&](std::size_t aIndex) { return HasSubnetOf(aAdapters[aIndex], aNewAddress); });
  return {preferred != aAnswered.end() ? *preferred : *aAnswered.begin()};
}

KrResult ForceIP(const std::vector<NetworkAdapterFields>& aAdapters, const ForcedConfiguration& aConfiguration) {
  const std::set<std::size_t> answering = FindAnswering(aAdapters, aConfiguration);
  std::vector<NetworkAdapterFields> told;
  for (const std::size_t index : ChooseAdapters(aAdapters, answering, aConfiguration.address))
    told.push_back(aAdapters[index]);
  KrResult result(KrResult::Code::NotFound, "No device acknowledged the new IP configuration for " +
                                                krsystem::FormatMAC(aConfiguration.mac) + ". " +
                                                DescribePlace(told, !answering.empty()));
  const std::uint16_t requestID = TakeRequestID();
  const auto take = [&](std::size_t, std::span<const std::uint8_t> aDatagram) {
    const KrResult answer = ParseForceIPAcknowledge(aDatagram, requestID);
    if (answer != KrResult::Code::BadData)
      result = answer;
    // Who acknowledges cannot be told from who refuses: one of them that took the configuration is what was asked for.
    return !answer.IsOK();
  };
  const BroadcastRound round = {.command = MakeForceIPCommand(requestID, aConfiguration.mac, aConfiguration.address,
                                                              aConfiguration.mask, aConfiguration.gateway),
                                // A device on a foreign subnet does not hear a subnet's broadcast.
                                .subnetBroadcast = false,
                                .timeout = kAcknowledgeTimeout,
                                .cancel = {}};
  KrResult sent = RunBroadcastRound(told, round, take);
  return sent.IsOK() ? result : sent;
}

} // namespace krtransport
