#pragma once
// One character of UTF-8 (RFC 3629) after the other. What becomes of bytes that are none is left to the caller.

#include "krbase/krexport.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace krbase {

/// The bytes of one character, or of what is none.
struct Utf8Sequence {
  char32_t point = 0xFFFD; ///< U+FFFD for what is malformed.
  /// In bytes. A malformed one ends before the first byte that cannot continue it (a maximal subpart, Unicode 15.0,
  /// D93b), so that no good character after it is swallowed.
  std::size_t length = 1;
  bool isWellFormed = false; ///< It is a character.
};

/// Reads the first sequence of a text that is not empty. Any thread.
KR_EXPORT Utf8Sequence ReadUtf8(std::string_view aText);

/// Appends a code point that is no surrogate. Any thread.
KR_EXPORT void AppendUtf8(std::string& aText, char32_t aPoint);

} // namespace krbase
