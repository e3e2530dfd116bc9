#pragma once
// Which bytes of one direction of a serial line are lost on order.

#include <cstdint>

namespace krtransport {

/// Thread: one at a time.
class LineLoss {
public:
  /// Every aEvery-th byte from now on; 0 for none.
  void LoseEvery(std::uint32_t aEvery);
  /// The next bytes, besides what is lost by another order of this kind.
  void LoseNext(std::uint32_t aBytes) { mNext += aBytes; }
  void End();
  /// Whether the byte that passes is lost.
  bool TakeByte();

private:
  std::uint32_t mEvery = 0;
  std::uint32_t mPassed = 0; // Since the last byte that was lost as one of every so many.
  std::uint64_t mNext = 0;
};

} // namespace krtransport
