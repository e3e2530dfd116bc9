#pragma once
// Where in a text an offset is, as people count.

#include <cstddef>
#include <string>
#include <string_view>

namespace krpersistence {

/// "line L, column C" of the byte at an offset, both from 1; columns count characters. Lines end with "\n" as well as
/// with "\r\n" and a lone "\r". An offset beyond the end counts as the end.
std::string DescribeLocation(std::string_view aText, std::size_t aOffset);

} // namespace krpersistence
