#pragma once
// What happens on order to the bytes of one direction of a serial line: they are lost, come twice, or come changed.

#include <cstdint>

namespace krtransport {

/// Which bytes something happens to. Thread: one at a time.
class ByteOrder {
public:
  /// Every aEvery-th byte from now on; 0 for none.
  void SetEvery(std::uint32_t aEvery);
  /// The next bytes, besides what another order of this kind has left.
  void AddNext(std::uint32_t aBytes) { mNext += aBytes; }
  /// Whether it happens to the byte that passes.
  bool TakeByte();

private:
  std::uint32_t mEvery = 0;
  std::uint32_t mPassed = 0; // Since the last byte that was one of every so many.
  std::uint64_t mNext = 0;
};

/// Thread: one at a time.
struct LineFaults {
  ByteOrder lost;
  ByteOrder repeated;
  ByteOrder corrupted;

  /// What a corrupted byte differs in from the one that was sent.
  static constexpr std::uint8_t kCorruption = 0x10;
};

} // namespace krtransport
