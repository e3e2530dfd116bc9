#pragma once
// A text without what surrounds it.

#include <cstddef>
#include <string_view>

namespace krbase {

/// The text without the blanks at its beginning and end, which are those of files' lines where none are named. Any
/// thread.
constexpr std::string_view Trim(std::string_view aText, std::string_view aBlanks = " \t\r\n\f\v") {
  const std::size_t begin = aText.find_first_not_of(aBlanks);
  if (begin == std::string_view::npos)
    return {};
  return aText.substr(begin, aText.find_last_not_of(aBlanks) - begin + 1);
}

} // namespace krbase
