#pragma once
// The network adapters of this host with their IPv4 addresses, masks, MAC and gateway, as the kernel tells them.
// Which of them a device can be reached by is answered here too; nothing is sent.

#include "krbase/krresult.h"
#include "krsystem/krinterface.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace krtransport {

/// Lists the adapters: all of Ethernet's kind, up or not, the loopback adapter when it is up, and of any other kind
/// those with an IPv4 address. SystemError when the kernel refuses. Any thread.
KrResult ListNetworkAdapters(std::vector<krsystem::NetworkAdapterFields>& aAdapters);

/// Gives every adapter its unique ID: the MAC, or MAC and "/name" where several share one or there is none.
void AssignUniqueIDs(std::vector<krsystem::NetworkAdapterFields>& aAdapters);

/// Reads the default gateway of each adapter from the text of the kernel's routing table; malformed lines are skipped.
std::map<std::string, std::uint32_t> ParseDefaultGateways(const std::string& aRoutingTable);

/// The adapter's address in whose subnet a device's address lies; nothing when there is none, or the device has
/// 0.0.0.0.
std::optional<std::uint32_t> FindLocalAddress(const krsystem::NetworkAdapterFields& aAdapter, std::uint32_t aDevice);

/// Where a broadcast goes on an adapter: to each subnet's broadcast address, once each, or to 255.255.255.255 where
/// aSubnetBroadcast is false or the adapter has no subnet to broadcast in. The loopback adapter has none: its devices
/// listen to 255.255.255.255 alone.
std::vector<std::uint32_t> GetBroadcastAddresses(const krsystem::NetworkAdapterFields& aAdapter, bool aSubnetBroadcast);

/// The largest IP packet that the adapter takes, in bytes; 1500 where the kernel does not say.
std::uint32_t GetMtu(const std::string& aAdapterName);
/// The speed that the adapter's link has at the moment, in bits per second; 0 where the kernel does not say.
std::uint64_t GetLinkSpeed(const std::string& aAdapterName);

} // namespace krtransport
