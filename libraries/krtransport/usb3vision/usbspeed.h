#pragma once
// The speeds of USB: how the kernel writes them, how people call them, how the finder numbers them.

#include <cstdint>
#include <string>

namespace krtransport {

/// Reads the kernel's text in Mbit/s, for example "1.5" or "5000", as thousands of bits a second; 0 for any other text.
std::uint32_t ParseUsbSpeed(const std::string& aText);

/// 1 low, 2 full, 3 high, 4 super or above, 0 unknown.
std::int32_t GetUsbSpeedClass(std::uint32_t aSpeedKbit);

/// For people, for example "Super Speed (5 Gbit/s)".
std::string DescribeUsbSpeed(std::uint32_t aSpeedKbit);

} // namespace krtransport
