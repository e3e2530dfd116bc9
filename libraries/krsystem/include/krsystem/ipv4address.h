#pragma once
// IPv4 addresses as numbers with the first dotted field in the most significant byte.

#include "krbase/krstring.h"

#include <cstdint>
#include <optional>

namespace krsystem {

/// Parses "a.b.c.d" strictly: four decimal fields of 0 to 255, nothing before or after. Any thread.
KR_EXPORT std::optional<std::uint32_t> ParseIPv4(const KrString& aText);
/// Writes an address as "a.b.c.d". Any thread.
KR_EXPORT KrString FormatIPv4(std::uint32_t aAddress);
/// Whether a mask's ones all come before its zeros, as those of subnets do; none of either is one, too. Any thread.
constexpr bool IsContiguousMask(std::uint32_t aMask) {
  const std::uint32_t hosts = ~aMask;
  return (hosts & (hosts + 1)) == 0;
}
/// Whether a device may have an address with a mask: not that of the subnet itself, not its broadcast address. A subnet
/// of one or two addresses keeps none for itself (RFC 3021). Any thread.
KR_EXPORT bool IsForDevice(std::uint32_t aAddress, std::uint32_t aMask);
/// Whether a device is reached directly from one of this host's addresses: it has an address for devices in that
/// subnet. 0.0.0.0, here or there, and a mask of 0 reach nothing. Any thread.
KR_EXPORT bool IsReachedFrom(std::uint32_t aHostAddress, std::uint32_t aHostMask, std::uint32_t aDevice);

} // namespace krsystem
