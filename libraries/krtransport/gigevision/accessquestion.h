#pragma once
// Who controls a device, asked without opening it and without a second try: by one read of its privilege register on
// each network adapter behind which the device may be. How long that may take is decided here, too.

#include "krbase/krresult.h"
#include "krsystem/itransport.h"

#include <cstdint>
#include <vector>

namespace krtransport {

/// Asks on each adapter in whose subnet the address lies where there are several, at once, else by the way that the
/// routing table names; the first right answer counts. A device that lets nobody else read counts as held exclusively;
/// TimeLimitExceeded when it keeps silent for 200 ms.
KrResult AskAccessType(const std::vector<krsystem::NetworkAdapterFields>& aAdapters, std::uint32_t aAddress,
                       krsystem::AccessType& aType);

} // namespace krtransport
