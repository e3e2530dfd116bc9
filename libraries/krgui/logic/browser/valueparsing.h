#pragma once
// What a user typed, as a value.

#include "krbase/krstring.h"

#include <cstdint>
#include <optional>

namespace krgui {

/// An integer as scanf reads it in the C locale: decimal, or hexadecimal with or without "0x"; what follows the number
/// is not looked at. Nothing where there is no number.
std::optional<std::int64_t> ParseInteger(const KrString& aText, bool aIsHexadecimal);
/// As strtod reads it in the C locale; 0 where there is no number.
double ParseFloat(const KrString& aText);
/// Four numbers parted by dots, as scanf's %i reads them; nothing for fewer or a part outside 0 to 255.
std::optional<std::uint32_t> ParseIPAddress(const KrString& aText);

} // namespace krgui
