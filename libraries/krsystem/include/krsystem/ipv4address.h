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

} // namespace krsystem
