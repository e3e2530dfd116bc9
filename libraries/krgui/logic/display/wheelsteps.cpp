#include "logic/display/wheelsteps.h"

namespace krgui {

std::int32_t WheelSteps::Add(std::int32_t aDelta) {
  const std::int64_t turned = mRemainder + aDelta;
  mRemainder = turned % kDeltaPerStep;
  return static_cast<std::int32_t>(turned / kDeltaPerStep);
}

} // namespace krgui
