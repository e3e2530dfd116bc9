#pragma once
// What makes a map forget a parameter, which sinks that know nothing of it yet tell apart. What is forgotten is left to
// the map.

#include <cstdint>

namespace krgenicam {

/// Why a parameter is forgotten.
enum class Invalidation : std::uint8_t {
  Write,      ///< It was written, or what it stands on, or the device spoke of it.
  Poll,       ///< It is time to ask for it again.
  Forgetting, ///< All parameters are.
};

} // namespace krgenicam
