#include "simulation/serial/linepace.h"

#include <algorithm>

namespace krtransport {

namespace {

constexpr std::uint64_t kBitNsAtOneBaud = 1000000000;
constexpr std::uint64_t kBitsPerByte = 10; // Start, eight of data, stop.
constexpr std::uint64_t kByteNsAtOneBaud = kBitsPerByte * kBitNsAtOneBaud;
// So long a wait makes every byte due that any queue holds; what is beyond it would not fit into 64 bits.
constexpr std::uint64_t kLongestNs = 1000 * kBitNsAtOneBaud;

} // namespace

void LinePace::Begin(std::uint64_t aNowNs) {
  if (!mIsBusy)
    mBeginNs = aNowNs;
  mIsBusy = true;
}

std::size_t LinePace::GetDue(std::uint64_t aNowNs, std::size_t aWaiting) const {
  if (!mIsBusy)
    return 0;
  if (mRate == 0)
    return aWaiting;
  const std::uint64_t passedNs = std::min(aNowNs - std::min(mBeginNs, aNowNs), kLongestNs);
  // The bytes whose rounded duration has passed, so that GetNextNs and this agree.
  std::size_t due = std::min<std::uint64_t>(aWaiting, passedNs * mRate / kByteNsAtOneBaud);
  if (due < aWaiting && GetDurationNs(due + 1) <= passedNs)
    ++due;
  return due;
}

void LinePace::Advance(std::size_t aBytes) {
  mBeginNs += GetDurationNs(aBytes);
}

void LinePace::Hold(std::uint64_t aNowNs) {
  const std::uint64_t byteNs = GetDurationNs(1);
  if (mIsBusy && aNowNs > mBeginNs + byteNs)
    mBeginNs = aNowNs - byteNs;
}

std::uint64_t LinePace::GetNextNs() const {
  return mIsBusy ? mBeginNs + GetDurationNs(1) : kNever;
}

std::uint64_t LinePace::GetDurationNs(std::size_t aBytes) const {
  return mRate == 0 ? 0 : aBytes * kByteNsAtOneBaud / mRate;
}

} // namespace krtransport
