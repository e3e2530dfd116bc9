#pragma once
// The baud rates that the serial bridge's windows know, and the words for one.

#include "krbase/krstring.h"

#include <array>
#include <cstdint>
#include <string>

namespace krgui {

/// In the order of the window's labels.
inline constexpr std::array<std::uint32_t, 10> kBaudRates = {9600,  14400,  19200,  28800,  38400,
                                                             57600, 115200, 230400, 460800, 921600};

/// What a device's port can be said to have where the device cannot tell.
inline constexpr std::array<std::uint32_t, 8> kHardCodedBaudRates = {9600,   19200,  38400,  57600,
                                                                     115200, 230400, 460800, 921600};

/// For example "9600 baud". Thread: any.
inline KrString FormatBaudRate(std::uint32_t aBaudRate) {
  return std::to_string(aBaudRate) + " baud";
}

} // namespace krgui
