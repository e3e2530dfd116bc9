#pragma once
// Texts and MAC addresses as devices and people write them. Which field of a datagram holds one is left to the parsers.

#include <array>
#include <cstdint>
#include <span>
#include <string>

namespace krtransport {

using MacBytes = std::array<std::uint8_t, 6>;

/// "aa:bb:cc:dd:ee:ff".
std::string FormatMac(const MacBytes& aMac);
/// Reads six pairs of hexadecimal digits parted by colons; false, and nothing set, for anything else.
bool ParseMac(const std::string& aText, MacBytes& aMac);

/// Reads a text from a field of fixed length: up to the first zero or the field's end. Control characters and bytes
/// that are no UTF-8 become U+FFFD each, so that the result can be shown as it is.
std::string ReadText(std::span<const std::uint8_t> aField);

} // namespace krtransport
