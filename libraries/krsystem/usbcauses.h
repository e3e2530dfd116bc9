#pragma once
// Reasons for missing or slow USB3 Vision devices. In which order they are told is left to the diagnosis.

#include "krsystem/discoverydiagnosis.h"

namespace krsystem {

/// Large frames are fetched by several transfers at once; with the kernel's 16 MB for all devices they do not start.
inline constexpr std::uint64_t kUSBMemoryNeedMegabytes = 128;

/// Appends what is wrong with the devices, in their order, and with the memory that they share.
void FindUSBCauses(const HostReadings& aReadings, const std::vector<AnsweredDevice>& aAnswered,
                   std::vector<KrFinding>& aFindings);

} // namespace krsystem
