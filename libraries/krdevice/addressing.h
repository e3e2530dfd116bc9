#pragma once
// What can be asked of a device on the network without opening it: every registered transport is tried.
// Which of them reaches the device shows in its answer.

#include "krbase/krresult.h"
#include "krsystem/itransport.h"

namespace krdevice {

/// Gives the device of a MAC address another IP configuration. InvalidInput for texts that do not parse, NotFound when
/// no device confirms. Any thread.
KrResult ConfigureIP(const KrString& aMAC, const KrString& aAddress, const KrString& aSubnetMask,
                     const KrString& aGateway);

/// Asks the device of an address who controls it. All transports are asked at once. Any thread.
KrResult AskAccessType(const KrString& aAddress, krsystem::AccessType& aType);

} // namespace krdevice
