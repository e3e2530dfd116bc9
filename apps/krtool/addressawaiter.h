#pragma once
// Waits for a device to answer with another address than before.

#include "krsystem/krsystem.h"
#include "networkselection.h"

#include <cstdint>

namespace krtool {

/// Looks until a device answers on its adapter with these address, mask and gateway; then aDevice has its new state and
/// aTookMs says how long it took. TimeLimitExceeded when it does not within the limit; the text says what it answered
/// instead. The system's detection timeout stays as it was.
KrResult AwaitAddress(KrSystem& aSystem, const krsystem::NetworkFields& aWanted, std::uint32_t aTimeoutMs,
                      NetworkDevice& aDevice, std::uint64_t& aTookMs);

} // namespace krtool
