#pragma once
// The application that is tested: it looks at parts, one to a frame. What it does with a good part is left out.

#include "krdevice/krdevice.h"
#include "krsystem/krsystem.h"

#include <cstdint>
#include <functional>
#include <memory>

/// What an inspection came to.
struct InspectionReport {
  std::uint32_t inspected = 0; ///< Parts that were seen whole.
  std::uint32_t spoilt = 0;    ///< Frames that came incomplete: their parts have to pass once more.
  KrResult result;             ///< Why it ended; OK when all parts were inspected.
};

/// Opens the camera that its user has given this name. NotFound where there is none, else as KrDevice::Open.
KrResult OpenCamera(const KrString& aName, std::unique_ptr<KrDevice>& aDevice);

/// Sets the exposure time in µs, as the camera's description has it.
KrResult SetExposureTime(KrDevice& aDevice, double aMicroseconds);

/// Inspects so many parts; aOnFrame, where there is one, is called for each frame that came, whole or not.
InspectionReport Inspect(KrDevice& aDevice, std::uint32_t aParts, const std::function<void()>& aOnFrame = {});
