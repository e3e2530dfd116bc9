#pragma once
// SHA-1 (FIPS 180-4), by which cameras say what they store.

#include <array>
#include <cstdint>
#include <string_view>

namespace krcamerabridge {

using Sha1 = std::array<std::uint8_t, 20>;

/// Thread: any.
Sha1 MakeSha1(std::string_view aBytes);

} // namespace krcamerabridge
