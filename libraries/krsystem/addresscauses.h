#pragma once
// Reasons for unreachable devices that lie in the addresses of those that answered. In which order they are told is
// left to the diagnosis.

#include "krsystem/discoverydiagnosis.h"

namespace krsystem {

/// Appends foreign subnets, addresses that are used twice and MAC addresses that are, in the order of the answers.
void FindAddressCauses(const HostReadings& aReadings, const std::vector<AnsweredDevice>& aAnswered,
                       std::vector<KrFinding>& aFindings);

} // namespace krsystem
