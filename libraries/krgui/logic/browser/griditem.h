#pragma once
// The handle of a row of the property grid. What is in the row is left to the browser tree.

#include <cstdint>

namespace krgui {

/// Never given twice by one tree, so that a message that names a row of an earlier filling finds nothing.
using GridItem = std::uint64_t;

/// No row; as a parent, the top level.
inline constexpr GridItem kNoItem = 0;

} // namespace krgui
