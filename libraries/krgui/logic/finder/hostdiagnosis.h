#pragma once
// One look at the host for the question why a device is missing: a round of discovery that devices of foreign subnets
// hear too, and the diagnosis of what answered. It has a system of its own, so that neither the finder's rounds nor its
// settings are touched. How the findings are told is left to others.

#include "krbase/krresult.h"
#include "krsystem/krfinding.h"

#include <stop_token>
#include <vector>

namespace krgui {

struct HostDiagnosis {
  KrResult result = KrResult::Code::Aborted; ///< What the diagnosis ended with; Aborted where it was stopped before.
  std::vector<KrFinding> findings = {};
};

/// Takes about half a second, and no longer than the transports need to hear of it once aStop asks. Any thread.
HostDiagnosis DiagnoseHost(const std::stop_token& aStop);

} // namespace krgui
