#pragma once
// What stands behind each serial port of a device, and what keeps a map from fitting: for people who look for a port.
// The ports themselves are left to DeviceFeatures.

#include "krdevice/krdevice.h"
#include "krserial/krserialfeatures.h"
#include "serialmap.h"

#include <vector>

namespace krserial {

/// As KrSerialFeatures::Explain, of these maps.
KrResult FindSerialOrigins(KrDevice& aDevice, const SerialMaps& aMaps, std::vector<KrSerialPortOrigin>& aOrigins);

} // namespace krserial
