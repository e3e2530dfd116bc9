#include "panels/framenumbers.h"

#include <utility>

namespace krviewer {

namespace {

constexpr std::uint64_t kGreatestLeap = 10'000'000;
constexpr std::uint64_t kLastOf16Bits = 65535;
/// How near to the ends of 16 bits both numbers are when a fall is the step from 65535 to 1.
constexpr std::uint64_t kNearEnd = 5000;

} // namespace

std::uint64_t FrameNumbers::Follow(std::uint64_t aFrameID) {
  const std::optional<std::uint64_t> last = std::exchange(mLast, aFrameID);
  if (!last)
    return 0;
  if (aFrameID > *last)
    return aFrameID - *last <= kGreatestLeap ? aFrameID - *last - 1 : 0;
  const bool hasWrapped =
      *last <= kLastOf16Bits && *last >= kLastOf16Bits - kNearEnd && aFrameID >= 1 && aFrameID <= kNearEnd;
  return hasWrapped ? kLastOf16Bits - *last + aFrameID - 1 : 0;
}

} // namespace krviewer
