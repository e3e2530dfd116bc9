#pragma once
// A camera that was found, kept as long as anybody shows it: what found it lives as long.

#include "krsystem/krdeviceinfo.h"

#include <memory>

namespace krviewer {

/// Shares the system or the finder that owns the information.
using CameraInfo = std::shared_ptr<const KrDeviceInfo>;

/// Of a camera whose information somebody else keeps for as long as it is shown.
inline CameraInfo BorrowCamera(const KrDeviceInfo& aDevice) {
  return {CameraInfo(), &aDevice};
}

} // namespace krviewer
