#include "gigevision/packetsizesearch.h"

#include <algorithm>

namespace krtransport {
namespace {

// What every IPv4 host takes whole, and the most that adapters and devices are known to send at once.
constexpr std::uint32_t kLeastPacketSize = 576;
constexpr std::uint32_t kMostPacketSize = 16384;
constexpr std::uint32_t kUsualStep = 4;
// The size that passes where jumbo frames do not.
constexpr std::uint32_t kEthernetPacketSize = 1500;
// Not worth another trial.
constexpr std::uint32_t kFineEnough = 64;

bool IsSensible(const StatedPacketSizes& aStated) {
  return aStated.smallest > 0 && aStated.largest >= aStated.smallest && aStated.largest <= UINT16_MAX &&
         aStated.step > 0 && aStated.step <= kEthernetPacketSize;
}

std::uint32_t RoundDown(std::uint32_t aBytes, const PacketSizeRange& aRange) {
  if (aBytes <= aRange.smallest)
    return aRange.smallest;
  return aRange.smallest + (aBytes - aRange.smallest) / aRange.step * aRange.step;
}

} // namespace

PacketSizeRange MakePacketSizeRange(const StatedPacketSizes& aStated, std::uint32_t aMtu) {
  PacketSizeRange range{kLeastPacketSize, kMostPacketSize, kUsualStep};
  if (IsSensible(aStated)) {
    range = {static_cast<std::uint32_t>(aStated.smallest), static_cast<std::uint32_t>(aStated.largest),
             static_cast<std::uint32_t>(aStated.step)};
    // On the device's own grid, so that the steps above are the device's, too; packets of less than this are no use.
    if (range.smallest < kLeastPacketSize && range.largest > kLeastPacketSize)
      range.smallest += (kLeastPacketSize - range.smallest + range.step - 1) / range.step * range.step;
  }
  range.largest = RoundDown(std::min({range.largest, aMtu, kMostPacketSize}), range);
  return range;
}

PacketSizeChoice SearchPacketSize(const PacketSizeRange& aRange, const PacketTrial& aTry,
                                  const std::function<bool()>& aHasTime) {
  if (!aTry(aRange.smallest))
    return {aRange.largest, false};
  if (aRange.largest == aRange.smallest || aTry(aRange.largest))
    return {aRange.largest, true};
  std::uint32_t passing = aRange.smallest;
  std::uint32_t failing = aRange.largest;
  std::uint32_t next = RoundDown(kEthernetPacketSize, aRange);
  while (failing - passing > std::max(kFineEnough, aRange.step) && aHasTime()) {
    if (next <= passing || next >= failing)
      next = RoundDown(passing + (failing - passing) / 2, aRange);
    (aTry(next) ? passing : failing) = next;
  }
  return {passing, true};
}

} // namespace krtransport
