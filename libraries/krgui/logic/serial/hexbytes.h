#pragma once
// Bytes as people type them in hexadecimal.

#include <cstdint>
#include <string_view>
#include <vector>

namespace krgui {

/// What a text gave; without bytes where it is no good.
struct ParsedBytes {
  bool ok = false;
  std::vector<std::uint8_t> bytes;
};

/// Reads upper-case hexadecimal digits left to right, two a byte, with or without blanks between them; a digit that a
/// blank or the end leaves alone is a byte by itself. Anything but 0-9, A-F and U+0020 is no good. Thread: any.
ParsedBytes ParseHexString(std::u16string_view aUpperCase);

} // namespace krgui
