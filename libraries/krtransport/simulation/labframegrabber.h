#pragma once
// What makes a simulated device a frame grabber with Camera Link inputs.

#include "krbase/krstring.h"

#include <cstdint>
#include <vector>

namespace krtransport {

/// Power over Camera Link: a device does without it, or begins with it switched off or on.
enum class LabPocl { None, Off, On };

/// The Camera Link side of a frame grabber; a device without sources is none.
struct LabFrameGrabber {
  std::uint32_t sources = 0; ///< Entries of SourceSelector, 0 to 8.
  LabPocl pocl = LabPocl::None;
};

} // namespace krtransport
