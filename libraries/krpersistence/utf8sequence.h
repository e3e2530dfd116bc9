#pragma once
// One character of UTF-8 (RFC 3629) after the other, with a plain no for bytes that are none.

#include "krbase/utf8sequence.h"

#include <cstddef>
#include <string_view>

namespace krpersistence {

/// A code point and the number of its bytes; 0 bytes where the text does not begin with a well-formed sequence.
struct Utf8Sequence {
  char32_t point = 0;
  std::size_t length = 0;
};

/// True for printable ASCII: most texts are little else, and these bytes need no closer look.
constexpr bool IsPrintable(char aByte) {
  return aByte >= 0x20 && aByte <= 0x7E;
}

/// Reads the first sequence of a text that is not empty.
Utf8Sequence ReadUtf8(std::string_view aText);

/// True for the characters that an XML document may hold (XML 1.0, 2.2, production 2).
bool IsXmlCharacter(char32_t aPoint);

} // namespace krpersistence
