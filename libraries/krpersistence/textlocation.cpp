#include "textlocation.h"

#include <algorithm>

namespace krpersistence {

std::string DescribeLocation(std::string_view aText, std::size_t aOffset) {
  const std::string_view before = aText.substr(0, std::min(aOffset, aText.size()));
  std::size_t line = 1;
  std::size_t column = 1;
  for (std::size_t index = 0; index < before.size(); ++index) {
    const char byte = before[index];
    const bool endsLine = byte == '\n' || (byte == '\r' && !aText.substr(index).starts_with("\r\n"));
    const bool continuesCharacter = (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
    line += endsLine ? 1 : 0;
    column = endsLine ? 1 : column + (continuesCharacter ? 0 : 1);
  }
  return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

} // namespace krpersistence
