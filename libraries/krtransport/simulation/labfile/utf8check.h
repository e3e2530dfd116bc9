#pragma once
// Whether bytes are UTF-8.

#include <cstddef>
#include <optional>
#include <string_view>

namespace krtransport {

/// Where the first byte stands that is no UTF-8 (Unicode 15.0, table 3-7); nothing where all is. Any thread.
std::optional<std::size_t> FindInvalidUtf8(std::string_view aText);

} // namespace krtransport
