#pragma once
// SHA-1 (FIPS 180-4), by which GenCP cameras say what they store.

#include <array>
#include <cstdint>
#include <string_view>

namespace krtransport {

/// Any thread.
std::array<std::uint8_t, 20> MakeSha1(std::string_view aBytes);

} // namespace krtransport
