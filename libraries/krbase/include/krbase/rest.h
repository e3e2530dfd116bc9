#pragma once
// A pause that a stop ends. How long it is, and what is done after it, is left to the caller.

#include "krbase/krexport.h"

#include <chrono>
#include <stop_token>

namespace krbase {

/// Returns after aTime, or at once when aStop is stopped; false where it is. Thread: any.
KR_EXPORT bool Rest(std::chrono::steady_clock::duration aTime, const std::stop_token& aStop);

} // namespace krbase
