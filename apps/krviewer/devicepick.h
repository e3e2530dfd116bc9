#pragma once
// The viewer's first action when no camera was named: its user picks one.

#include "krbase/krresult.h"
#include "krgui/krdevicefinderwnd.h"

namespace krviewer {

/// Shows the finder until the user has picked a device; Cancelled when he did not want to, or when the program was
/// interrupted meanwhile. The device lives as long as the finder.
KrResult PickDevice(KrDeviceFinderWnd& aFinder, const KrDeviceInfo*& aDevice);

/// Says in a box why the device that the user has picked cannot be shown; returns when he has read it, or when the
/// program was interrupted. Cancelled in the latter case.
KrResult TellFailure(const KrDeviceInfo& aDevice, const KrResult& aFailure);

} // namespace krviewer
