#include "description/linetable.h"

#include <algorithm>

namespace krgenicam {

LineTable::LineTable(std::string_view aText) : mBegins{0} {
  for (std::size_t end = aText.find('\n'); end != std::string_view::npos; end = aText.find('\n', end + 1))
    mBegins.push_back(static_cast<std::uint32_t>(end + 1));
}

std::uint32_t LineTable::GetLine(std::size_t aOffset) const {
  return static_cast<std::uint32_t>(std::ranges::upper_bound(mBegins, aOffset) - mBegins.begin());
}

std::string LineTable::Describe(std::size_t aOffset) const {
  const std::uint32_t line = GetLine(aOffset);
  return "line " + std::to_string(line) + ", column " + std::to_string(aOffset - mBegins[line - 1] + 1);
}

} // namespace krgenicam
