#pragma once
// The way by which a device is opened that was found on an adapter. Sockets of our own can be bound to the adapter;
// those of an open device that is controlled go where the kernel's routing table sends them, which may know another
// way to the same address.

#include "gigevision/linktarget.h"
#include "krbase/krresult.h"
#include "krsystem/itransport.h"

namespace krtransport {

/// Completes a target, whose device, adapter and access are set, by this host's address on the way and whether the
/// routing table leads elsewhere. NotFound when there is no way, or it leads to something else than this device and
/// reading alone would not do; the text says what to do. Asks the device where the routing table names another adapter,
/// for half a second at most.
KrResult ChooseWay(const krsystem::NetworkAdapterFields& aAdapter, const krsystem::GEVFields& aDevice,
                   LinkTarget& aTarget);

} // namespace krtransport
