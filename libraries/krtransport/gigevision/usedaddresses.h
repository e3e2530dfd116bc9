#pragma once
// Which addresses of a network adapter's network somebody uses, whoever it is: found without special rights, by sending
// something and looking whether the kernel found anybody to send it to. Which address to take is left to others.

#include "gigevision/kerneltables.h"
#include "krbase/krresult.h"
#include "krsystem/krinterface.h"

#include <chrono>
#include <cstdint>
#include <set>
#include <stop_token>
#include <vector>

namespace krtransport {

/// Whether an entry of the kernel's neighbour table speaks for somebody at its address. One that was not confirmed
/// lately counts, too: confirming takes the kernel seconds, and an address taken for used does no harm.
bool IsUsed(const KernelNeighbour& aNeighbour);

/// Which of these addresses somebody uses: this host, a camera that answers, or anybody who answers the kernel's
/// address resolution; one to which nothing could be sent counts as used, too. Takes all of the limit. NotSupported for
/// an adapter without an address, SystemError for one on which nothing can be sent, Aborted when aCancel asks. Any
/// thread.
KrResult FindUsedAddresses(const krsystem::NetworkAdapterFields& aAdapter, const std::vector<std::uint32_t>& aAddresses,
                           std::chrono::milliseconds aTimeout, const std::stop_token& aCancel,
                           std::vector<std::uint32_t>& aUsed);

} // namespace krtransport
