#pragma once
// Which bridges were saved: the index that is stored beside them. The bridges save themselves.

#include "krpersistence/krpropertylist.h"
#include "krserial/krdeviceserial.h"

#include <span>

namespace krcamerabridge {

/// The name of the list under which the index is stored.
inline constexpr const char* kBridgeIndex = "CameraBridgeIndex";

// Thread: any.

/// One property for each port that was saved, whose value is the port's name.
KrPropertyList MakeBridgeIndex(std::span<const KrDeviceSerial> aPorts);
/// What is told of a name in the index to which there is no port.
KrString FormatMissingPort(const KrString& aName);

} // namespace krcamerabridge
