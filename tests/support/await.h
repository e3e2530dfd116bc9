#pragma once
// The wait for what other threads and processes bring about, with a limit that only a fault can reach. Where the
// waiting thread has events to handle meanwhile, windowwait.h waits.

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <thread>

namespace krtest {

/// How many times slower than usual the programs of this run are, with a sanitizer: the build says so in the
/// environment.
inline int GetTimeFactor() {
  const char* const factor = std::getenv("KR_TEST_TIME_FACTOR");
  return factor ? std::max(std::atoi(factor), 1) : 1;
}

/// What is longer than anything takes on a busy machine.
inline std::chrono::milliseconds GetGenerousLimit() {
  return std::chrono::minutes(1) * GetTimeFactor();
}

/// The same for calls that take a number.
inline int GetGenerousMs() {
  return static_cast<int>(GetGenerousLimit().count());
}

/// Looks until a condition holds; false where it does not within the limit.
template <typename Condition>
[[nodiscard]] bool Await(Condition aCondition, std::chrono::milliseconds aLimit = GetGenerousLimit()) {
  constexpr int kHastyLooks = 1000; // Most waits are over by then; the others leave the processor to who is waited for.
  const auto end = std::chrono::steady_clock::now() + aLimit;
  for (int looks = 0; !aCondition(); ++looks) {
    if (std::chrono::steady_clock::now() >= end)
      return false;
    if (looks < kHastyLooks)
      std::this_thread::yield();
    else
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

} // namespace krtest
