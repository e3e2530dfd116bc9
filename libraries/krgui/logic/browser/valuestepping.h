#pragma once
// How the up-down control steps an integer.

#include <cstdint>

namespace krgui {

struct IntegerRange {
  std::int64_t min = 0;
  std::int64_t max = 0;
  std::int64_t increment = 1;
};

/// How fast holding the control steps.
class StepAcceleration {
public:
  /// Counts a step and gives how many increments it moves by.
  std::int64_t TakeStep();
  void Reset() { mCounter = 0; }

private:
  std::int32_t mCounter = 0; ///< 0 to 5000.
};

/// The value a step of aIncrements increments away, aligned and clamped. An increment below 1 counts as 1.
std::int64_t StepInteger(std::int64_t aValue, const IntegerRange& aRange, std::int64_t aIncrements, bool aIsUp);

} // namespace krgui
