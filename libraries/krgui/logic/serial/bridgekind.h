#pragma once
// The ways in which the host reaches a device's serial port. How is SerialBridge's.

#include <cstdint>

namespace krgui {

enum class BridgeKind : std::uint32_t {
  None = 0,
  COMPort = 1,      ///< Linked to a serial port of the host.
  CameraLinkDLL = 2 ///< Published for programs that use the Camera Link serial functions.
};

} // namespace krgui
