#pragma once
// The network adapters of this host with their IPv4 addresses, masks, MAC and gateway, as the kernel tells them.
// Which of them a device can be reached by is answered here too; nothing is sent.

#include "krbase/krresult.h"
#include "krsystem/hostreadings.h"
#include "krsystem/krinterface.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace krtransport {

/// Lists the adapters as MakeAdapterFields does. SystemError when the kernel refuses. Any thread.
KrResult ListNetworkAdapters(std::vector<krsystem::NetworkAdapterFields>& aAdapters);

/// Reads the same adapters as the kernel has them. SystemError when it refuses. Any thread.
KrResult ReadNetworkAdapters(std::vector<krsystem::AdapterReading>& aReadings);

/// The adapter's address from which a device is reached, as krsystem::IsReachedFrom says; nothing when there is none.
/// A device with the adapter's own address that answers is this host itself.
std::optional<std::uint32_t> FindLocalAddress(const krsystem::NetworkAdapterFields& aAdapter, std::uint32_t aDevice);

/// The adapters in whose subnets a device's address lies.
std::vector<krsystem::NetworkAdapterFields>
FindAdaptersOfSubnet(const std::vector<krsystem::NetworkAdapterFields>& aAdapters, std::uint32_t aDevice);

/// Where a broadcast goes on an adapter: to each subnet's broadcast address, once each, or to 255.255.255.255 where
/// aSubnetBroadcast is false or the adapter has no subnet to broadcast in. The loopback adapter has none: its devices
/// listen to 255.255.255.255 alone.
std::vector<std::uint32_t> GetBroadcastAddresses(const krsystem::NetworkAdapterFields& aAdapter, bool aSubnetBroadcast);

} // namespace krtransport
