#pragma once
// Reasons for missing devices that lie in the host's network adapters. In which order they are told is left to the
// diagnosis.

#include "krsystem/discoverydiagnosis.h"

namespace krsystem {

/// Two frames of a usual camera of four megapixels with 8 bits: one is taken apart while the next one comes in.
inline constexpr std::uint64_t kReceiveBufferNeedBytes = 8'388'608;

/// Appends what is wrong with the adapters, in their order, and with the limit of receive buffers.
void FindAdapterCauses(const HostReadings& aReadings, std::vector<KrFinding>& aFindings);

} // namespace krsystem
