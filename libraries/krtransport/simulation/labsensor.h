#pragma once
// What a simulated camera sees with, as a lab describes it.

#include "krbuffer/krpixeltype.h"

#include <cstdint>
#include <vector>

namespace krtransport {

/// A camera's sensor.
struct LabSensor {
  std::uint32_t sensorWidth = 640;                          ///< Pixels, a multiple of 4 and at least 64.
  std::uint32_t sensorHeight = 480;                         ///< Lines, a multiple of 2 and at least 16.
  double framesPerSecond = 30.0;                            ///< Between 1 and 1000.
  std::vector<KrPixelType> pixelFormats = {KrPixel::Mono8}; ///< At least one; the first is set at the start.
};

} // namespace krtransport
