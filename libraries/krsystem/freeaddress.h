#pragma once
// Proposes an address of a subnet that nobody uses. Asking who uses one is the transport's business, knowing the
// adapter and the devices found the system's.

#include "krbase/krresult.h"
#include "krsystem/itransport.h"

#include <cstddef>
#include <cstdint>
#include <set>
#include <stop_token>
#include <vector>

namespace krsystem {

/// How many addresses are asked at once, how often, and how long answers are awaited.
inline constexpr std::size_t kAddressBatch = 8;
inline constexpr int kMostAddressBatches = 4;
inline constexpr std::uint32_t kAddressBatchMs = 1000;

/// An adapter's address in its subnet.
struct SubnetAddress {
  std::uint32_t address = 0;
  std::uint32_t mask = 0;
};

/// The first aMost addresses of the subnet for a device, starting just above the adapter's and going round: none that
/// is taken, none of network or broadcast (which a subnet of two addresses has not, RFC 3021), none that ends in 0 or
/// 255, which some devices refuse, and none that RFC 3927 reserves among link-local ones. None for a mask that is none.
std::vector<std::uint32_t> ChooseCandidates(const SubnetAddress& aSubnet, const std::set<std::uint32_t>& aTaken,
                                            std::size_t aMost);

/// Finds the first candidate that nobody on the interface uses. NotFound when none is left or too many are used;
/// otherwise results as ITransport::FindUsedAddresses', an exception of which becomes SystemError.
KrResult FindFreeAddress(ITransport& aTransport, const InterfaceFields& aInterface, const SubnetAddress& aSubnet,
                         std::set<std::uint32_t> aTaken, const std::stop_token& aCancel, std::uint32_t& aAddress);

} // namespace krsystem
