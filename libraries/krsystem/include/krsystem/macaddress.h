#pragma once
// MAC addresses as six bytes in the order in which they are written and sent.

#include "krbase/krstring.h"

#include <array>
#include <cstdint>
#include <optional>

namespace krsystem {

using MACAddress = std::array<std::uint8_t, 6>;

/// Parses "aa:bb:cc:dd:ee:ff" strictly: six pairs of hexadecimal digits of any case, parted by colons. Any thread.
KR_EXPORT std::optional<MACAddress> ParseMAC(const KrString& aText);
/// Writes an address as "aa:bb:cc:dd:ee:ff", in small letters. Any thread.
KR_EXPORT KrString FormatMAC(const MACAddress& aAddress);

} // namespace krsystem
