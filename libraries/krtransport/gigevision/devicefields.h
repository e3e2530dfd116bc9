#pragma once
// Turns what a discovery acknowledge says into the fields by which the rest of the system knows a device.

#include "gigevision/gvcppacket.h"
#include "krsystem/krdeviceinfo.h"
#include "krsystem/krinterface.h"

namespace krtransport {

/// What names a device among all: its MAC address or, for one that states none, its address and serial number, so that
/// two such devices stay apart.
KrString MakeUniqueID(const DiscoveryPayload& aPayload);
/// "Model (address)", for a list; the first other text where it states no model.
KrString MakeDisplayID(const DiscoveryPayload& aPayload);
/// The fields of a device that answered on an adapter. It can be reached when its address lies in one of that adapter's
/// subnets.
krsystem::GEVFields MakeDeviceFields(const DiscoveryPayload& aPayload, const krsystem::NetworkAdapterFields& aAdapter);

} // namespace krtransport
