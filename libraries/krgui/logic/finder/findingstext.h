#pragma once
// A diagnosis in words for the person at the host: one paragraph for each finding, with what to do about it.

#include "krbase/krresult.h"
#include "krsystem/krfinding.h"

#include <span>

namespace krgui {

/// The findings in the order given; for none, where to look next. Lines end with "\n".
KrString FormatFindings(std::span<const KrFinding> aFindings);
/// Why there is no diagnosis.
KrString FormatDiagnosisFailure(const KrResult& aResult);

} // namespace krgui
