#pragma once
// Which parameters of a device the terminal drives for a port.

#include "krbase/krstring.h"
#include "krserial/krdeviceserial.h"

#include <functional>

namespace krgui {

/// Whether the device has a parameter of a name.
using HasParameter = std::function<bool(const KrString&)>;

/// The boolean that switches the loopback of a port on; an empty name where there is none. Only for bulk ports is the
/// device asked: a serial port always has its own. Thread: any.
KrString FindLoopbackParameter(KrDeviceSerial aPort, const HasParameter& aHasParameter);
/// The enumeration of a port's speeds; likewise. Thread: any.
KrString FindBaudRateParameter(KrDeviceSerial aPort, const HasParameter& aHasParameter);
/// The enumeration that chooses one of the bulk ports.
inline constexpr const char* kBulkSelector = "BulkSelector";

} // namespace krgui
