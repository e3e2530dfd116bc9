#pragma once
// What a serial port of a simulated camera can be set to while the lab is there.

#include <cstdint>

namespace krtransport {

/// What the camera's registers say of a port.
struct SerialSettings {
  std::uint32_t rate = 0; ///< Bits a second.
  bool isLoopedBack = false;
  bool isPowered = true; ///< Whether the port's cable carries power.
  friend bool operator==(const SerialSettings&, const SerialSettings&) = default;
};

} // namespace krtransport
