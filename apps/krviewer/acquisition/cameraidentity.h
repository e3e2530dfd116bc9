#pragma once
// Which devices are one and the same camera, wherever they answer. Where a camera is looked for is left to others.

#include "krsystem/krdeviceinfo.h"

namespace krviewer {

/// Whether both are the same camera: of one unique ID or, where that was made of an address for want of a MAC address,
/// of one maker, model and serial number. Thread: any.
bool IsSameCamera(const KrDeviceInfo& aFirst, const KrDeviceInfo& aSecond);
/// Whether both have the same address; devices without one have.
bool IsSameAddress(const KrDeviceInfo& aFirst, const KrDeviceInfo& aSecond);
/// "a.b.c.d"; empty for a device that has none.
KrString GetAddress(const KrDeviceInfo& aCamera);

} // namespace krviewer
