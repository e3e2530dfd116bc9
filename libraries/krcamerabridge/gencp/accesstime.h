#pragma once
// How long the registers of a GenCP camera take on their way, by which accesses are limited.

#include <cstddef>
#include <cstdint>

namespace krcamerabridge {

/// How long an access to so many bytes may take on the line beside a caller's limit, which is for one packet and what
/// is lost of it: the smallest pieces that cameras need, each with its answer, twice over. Milliseconds; 0 for what one
/// packet carries.
std::uint64_t GetAccessLineMs(std::size_t aBytes, std::uint32_t aBaudRate, std::uint32_t aResponseMs);

} // namespace krcamerabridge
