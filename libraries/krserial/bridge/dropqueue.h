#pragma once
// Bytes that wait for somebody who may never come: no more than a limit, of which the newest are kept.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>

namespace krserial {

/// Thread: one at a time.
class DropQueue {
public:
  explicit DropQueue(std::size_t aLimit) : mLimit(aLimit) {}

  bool IsEmpty() const { return mBytes.empty(); }
  void Push(const std::uint8_t* aBytes, std::size_t aSize) {
    const std::size_t kept = std::min(aSize, mLimit);
    Drop(mBytes.size() + kept > mLimit ? mBytes.size() + kept - mLimit : 0);
    mBytes.insert(mBytes.end(), aBytes + (aSize - kept), aBytes + aSize);
  }
  /// Copies the oldest, at most aSize, which stay; says how many.
  std::size_t Peek(std::uint8_t* aBytes, std::size_t aSize) const {
    const std::size_t count = std::min(aSize, mBytes.size());
    std::copy_n(mBytes.begin(), count, aBytes);
    return count;
  }
  /// Drops so many of the oldest, which must be there.
  void Drop(std::size_t aSize) { mBytes.erase(mBytes.begin(), mBytes.begin() + static_cast<std::ptrdiff_t>(aSize)); }

private:
  const std::size_t mLimit;
  std::deque<std::uint8_t> mBytes;
};

} // namespace krserial
