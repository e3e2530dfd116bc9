#pragma once
// Text of which no part can be missing, twice or elsewhere without notice.

#include <cstddef>
#include <string>

namespace krtest {

/// So many bytes, in lines with a number each.
inline std::string MakeNumberedLines(std::size_t aSize, int aFirst = 0) {
  std::string lines;
  for (int number = aFirst; lines.size() < aSize; ++number)
    lines += "line " + std::to_string(number) + "\r\n";
  return lines.substr(0, aSize);
}

} // namespace krtest
