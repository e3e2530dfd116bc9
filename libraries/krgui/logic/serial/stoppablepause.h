#pragma once
// A wait that a stop ends.

#include <chrono>
#include <stop_token>

namespace krgui {

/// Returns after aDuration, or at once when aStop is stopped. Thread: any.
void PauseUnlessStopped(std::chrono::milliseconds aDuration, const std::stop_token& aStop);

} // namespace krgui
