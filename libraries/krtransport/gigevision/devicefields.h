#pragma once
// Turns what a discovery acknowledge says into the fields by which the rest of the system knows a device.

#include "gigevision/gvcppacket.h"
#include "krsystem/krdeviceinfo.h"
#include "krsystem/krinterface.h"

namespace krtransport {

/// The fields of a device that answered on an adapter. It can be reached when its address lies in one of that adapter's
/// subnets. Its unique ID is the MAC; a device that states none is named by its address and serial number, so that two
/// such devices stay apart.
krsystem::GEVFields MakeDeviceFields(const DiscoveryPayload& aPayload, const krsystem::NetworkAdapterFields& aAdapter);

} // namespace krtransport
