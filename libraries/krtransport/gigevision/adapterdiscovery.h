#pragma once
// Finding GigE Vision devices: by broadcast on each adapter, or by address.
// How long found devices live, and which answers count as one, is decided by KrSystem.

#include "gigevision/gvcppacket.h"
#include "krbase/krresult.h"
#include "krsystem/itransport.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace krtransport {

/// Receives a device: the index of the adapter in the list given, and its fields; on the caller's thread.
using TakeDevice = std::function<void(std::size_t aAdapterIndex, const krsystem::GEVFields& aDevice)>;

/// Does one round on all adapters. A device that answers twice on one adapter is handed over once.
/// Aborted when the round was cancelled.
KrResult DiscoverOnAdapters(const std::vector<krsystem::NetworkAdapterFields>& aAdapters,
                            const krsystem::DiscoveryRequest& aRequest, const TakeDevice& aTake);

/// Asks one address, on each adapter in whose subnet it lies where there are several, else and afterwards by the way
/// that the routing table names; ends at the first right answer.
/// NotFound when nothing answers in time.
KrResult DiscoverAddress(const std::vector<krsystem::NetworkAdapterFields>& aAdapters, std::uint32_t aAddress,
                         std::uint32_t aTimeoutMs, krsystem::NetworkAdapterFields& aAdapter,
                         krsystem::GEVFields& aDevice);

} // namespace krtransport
