#include "frameledger.h"

#include <algorithm>

namespace krdevice {

namespace {

constexpr std::uint64_t kLastBlockID = 0xFFFF; // Of 16 bits; the one after it is 1.
// So near to the end and to the beginning of 16 bits a step backwards is the wrap, elsewhere a new numbering.
constexpr std::uint64_t kWrapReach = 4096;
// At a thousand frames in a second more than four hours.
constexpr std::uint64_t kFarthestLeap = std::uint64_t{1} << 24;

std::uint64_t CountBetween(std::uint64_t aLast, std::uint64_t aNext) {
  if (aNext > aLast) {
    const std::uint64_t skipped = aNext - aLast - 1;
    return skipped <= kFarthestLeap ? skipped : 0;
  }
  const bool isNearEnd = aLast <= kLastBlockID && aLast + kWrapReach > kLastBlockID;
  const bool isNearBegin = aNext >= 1 && aNext <= kWrapReach;
  return isNearEnd && isNearBegin ? kLastBlockID - aLast + aNext - 1 : 0;
}

} // namespace

std::uint64_t FrameLedger::Follow(std::uint64_t aFrameID) {
  const std::uint64_t skipped = mLastID ? CountBetween(*mLastID, aFrameID) : 0;
  mLastID = aFrameID;
  return skipped;
}

void FrameLedger::CountSkipped(std::uint64_t aSkipped, std::uint64_t aDiscarded) {
  const std::uint64_t notYetFound = aDiscarded > mDiscardsFound ? aDiscarded - mDiscardsFound : 0;
  const std::uint64_t found = std::min(aSkipped, notYetFound);
  mDiscardsFound += found;
  mMissing += aSkipped - found;
}

} // namespace krdevice
