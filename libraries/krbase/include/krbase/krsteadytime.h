#pragma once
// The time for measuring how long something takes, as a plain number that can be kept, compared and injected.

#include <chrono>
#include <cstdint>

/// Nanoseconds of a steady clock, of which only differences mean anything.
///
/// Thread: any.
inline std::uint64_t KrGetSteadyNs() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(now).count());
}

/// The same in whole milliseconds.
///
/// Thread: any.
inline std::uint64_t KrGetSteadyMs() {
  return KrGetSteadyNs() / 1'000'000;
}
