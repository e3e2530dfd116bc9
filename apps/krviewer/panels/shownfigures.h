#pragma once
// What the status bar says of a camera's page. Where the numbers come from is left to the page.

#include "krdevice/krstream.h"
#include "krgui/krdisplaystatistics.h"

#include <cstdint>
#include <optional>

namespace krviewer {

struct ShownFigures {
  double framesPerSecond = 0;
  double megabytesPerSecond = 0;
  std::uint64_t frames = 0;                 ///< That came, whole or not.
  KrStreamStatistics statistics = {};       ///< Of all connections together.
  std::optional<double> temperatureC = {};  ///< Of the device, where it says one.
  std::optional<KrDisplayPixel> pixel = {}; ///< Under the cursor.
};

} // namespace krviewer
