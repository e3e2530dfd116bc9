#pragma once
// The words and texts for interfaces and devices, as all listings have them. How they are laid out is left to those.

#include "krdevice/krdevicegev.h"
#include "krsystem/krdeviceinfo.h"
#include "krsystem/krinterface.h"

#include <optional>
#include <string_view>

namespace krtool {

/// GEV, TolvanProtocol, USB or U3V.
std::string_view GetKindWord(KrDeviceInfoType aType);
/// NetworkAdapter or USBHostController.
std::string_view GetKindWord(KrInterfaceType aType);
/// Unknown, Open, Control, Exclusive or ReadOnly.
std::string_view GetAccessWord(KrAccessType aType);
/// reachable or unreachable.
std::string_view GetReachableWord(const KrDeviceInfo& aDevice);

/// What a device on the network states of itself; nothing for any other device.
std::optional<krsystem::NetworkFields> GetNetworkFields(const KrDeviceInfo& aDevice);

/// The system's name of an adapter, the unique ID of any other interface; empty for null.
KrString GetShortName(const KrInterface* aInterface);
/// All addresses of an adapter, parted by commas; empty for any other interface.
KrString JoinAddresses(const KrInterface& aInterface);

} // namespace krtool
