#pragma once
// The rows that all devices on the network have: where the device is, and whether its addresses look right.

#include "krsystem/krdeviceinfo.h"
#include "logic/finder/informationrow.h"

#include <vector>

namespace krgui {

/// What an interface or a device has instead of an address.
inline constexpr const char* kNoAddress = "0.0.0.0";

/// "MAC", "IP", "Subnet Mask" and "Default Gateway". The mask is good when it is one of those of the adapter behind
/// which the device was found.
std::vector<InfoRow> MakeNetworkRows(const KrInterface* aOwner, const krsystem::NetworkFields& aFields);

} // namespace krgui
