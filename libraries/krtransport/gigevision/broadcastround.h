#pragma once
// One command, broadcast on several adapters at once, and the answers that come until a moment. What is asked, and
// which answers count, is left to discovery and to the configuration of addresses.

#include "krbase/krresult.h"
#include "krsystem/krinterface.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <stop_token>
#include <vector>

namespace krtransport {

/// A round of a broadcast command.
struct BroadcastRound {
  std::vector<std::uint8_t> command;
  bool subnetBroadcast = true; ///< To each subnet; otherwise to 255.255.255.255.
  /// To this address alone instead, on each adapter; what others send is passed over then.
  std::optional<std::uint32_t> target = {};
  bool isSentTwice = true;
  std::chrono::milliseconds timeout{1000};
  std::stop_token cancel;
};

/// Receives one datagram that came: the index of its adapter, its bytes. Returns false to end the round.
using TakeDatagram = std::function<bool(std::size_t aAdapterIndex, std::span<const std::uint8_t> aDatagram)>;

/// Sends the command on every adapter, by default twice, and hands over what comes, until the time is over (OK), the
/// taker has enough (OK) or the round is cancelled (Aborted). An adapter that fails is passed over, which is logged
/// when it was not so before.
KrResult RunBroadcastRound(const std::vector<krsystem::NetworkAdapterFields>& aAdapters, const BroadcastRound& aRound,
                           const TakeDatagram& aTake);

} // namespace krtransport
