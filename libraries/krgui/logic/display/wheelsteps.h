#pragma once
// Counts the steps of a mouse wheel. Fine wheels turn by parts of a step, which add up. What a step does is left to the
// window.

#include <cstdint>

namespace krgui {

/// Thread: one at a time.
class WheelSteps {
public:
  /// What one step of a common wheel turns.
  static constexpr std::int32_t kDeltaPerStep = 120;

  /// Adds a turn, away from the user above 0, and gives the whole steps it completes; what remains counts for the next
  /// one. Turning back takes away what remained first.
  std::int32_t Add(std::int32_t aDelta);

private:
  std::int64_t mRemainder = 0; ///< Less than a step, in either direction.
};

} // namespace krgui
