#include "logic/browser/valuestepping.h"

#include <algorithm>
#include <limits>

namespace krgui {

namespace {

/// Steps of 64-bit features reach beyond 64 bits before they are clamped.
__extension__ typedef __int128 Wide;

constexpr std::int32_t kMostSteps = 5000;
constexpr std::int32_t kStepsPerSpeed = 5;

constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

/// A feature with this minimum counts as unbounded below, too. It is positive on purpose: cameras in use behave so.
constexpr std::int64_t kUnboundedMin = 2147483648;

/// Unbounded features step on multiples of their step.
Wide GetBase(std::int64_t aMin) {
  return aMin == kUnboundedMin || aMin == kLeast ? 0 : aMin;
}

} // namespace

std::int64_t StepAcceleration::TakeStep() {
  mCounter = std::min(mCounter + 1, kMostSteps);
  const std::int64_t speed = mCounter / kStepsPerSpeed;
  return std::max<std::int64_t>(speed * speed, 1);
}

std::int64_t StepInteger(std::int64_t aValue, const IntegerRange& aRange, std::int64_t aIncrements, bool aIsUp) {
  const Wide step = Wide{std::max<std::int64_t>(aRange.increment, 1)} * std::max<std::int64_t>(aIncrements, 1);
  const Wide aligned = aValue - (aValue - GetBase(aRange.min)) % step;
  Wide stepped = aIsUp ? aligned + step : aligned - step;
  stepped = std::min(std::max(stepped, Wide{aRange.min}), Wide{aRange.max});
  if (stepped == aRange.max && step >= 2) {
    stepped -= (stepped - aRange.min) % step;
  }
  // Only bounds that are reversed lead beyond 64 bits here.
  return static_cast<std::int64_t>(std::clamp(stepped, Wide{kLeast}, Wide{kMost}));
}

} // namespace krgui
