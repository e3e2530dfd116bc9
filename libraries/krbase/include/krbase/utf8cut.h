#pragma once
// Where a text that is too long for its place ends. What tells that there was more is left to the caller.

#include <cstddef>
#include <string_view>

namespace krbase {

/// The beginning of a UTF-8 text, of at most so many bytes, that does not end within a character. Any thread.
inline std::string_view CutUtf8(std::string_view aText, std::size_t aMostBytes) {
  if (aText.size() <= aMostBytes)
    return aText;
  std::size_t end = aMostBytes;
  while (end > 0 && (static_cast<unsigned char>(aText[end]) & 0xC0) == 0x80)
    --end;
  return aText.substr(0, end);
}

} // namespace krbase
