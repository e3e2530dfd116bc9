#pragma once
// Texts as devices write them. Which field of a datagram holds one is left to the parsers.

#include <cstdint>
#include <span>
#include <string>

namespace krtransport {

/// Reads a text from a field of fixed length: up to the first zero or the field's end. Control characters,
/// marks that change how others are shown, and bytes that are no UTF-8 become U+FFFD each, so that the result can be
/// shown as it is.
std::string ReadText(std::span<const std::uint8_t> aField);

} // namespace krtransport
