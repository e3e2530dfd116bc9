#pragma once
// How long a CL Protocol driver may take. Past a limit the process that it runs in is ended.

#include <cstdint>

namespace krcamerabridge {

/// All in milliseconds.
struct CLDriverTimes {
  std::uint32_t accessMs = 500; ///< What a driver is told: how long the camera may take for one answer.

  std::uint32_t loadLimitMs = 10000;         ///< Loading the driver, each call that needs no camera, and closing it.
  std::uint32_t probeLimitMs = 60000;        ///< A probe.
  std::uint32_t descriptionLimitMs = 900000; ///< Reading a description at the lowest speed.
  std::uint32_t callLimitMs = 10000;         ///< Any other call.
  std::uint32_t quietLimitMs = 10000;        ///< Without a use of the line, in any call.
  std::uint32_t cancelLimitMs = 3000;        ///< To come back from a call that was cancelled.
};

} // namespace krcamerabridge
