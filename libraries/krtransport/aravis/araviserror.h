#pragma once
// Converts what a call of Aravis reports into the system's result, once, where it enters.

#include "aravis/gobjectpointer.h"
#include "krbase/krresult.h"

#include <string>

namespace krtransport {

/// Success where no error is set. Otherwise TimeLimitExceeded for a device that kept silent, ProtocolError with its own
/// words for one that refused, NotSupported for a feature that it lacks. aAttempt says what was tried.
KrResult ToResult(const GErrorHolder& aError, const std::string& aAttempt);

} // namespace krtransport
