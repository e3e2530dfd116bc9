#pragma once
// Which of several readings of one feature counts: threads read at the same time, and a reading that began earlier may
// end later, with what is no more. The readings themselves are left to the node.

#include <atomic>
#include <cstdint>

namespace krgui {

class ReadingOrder {
public:
  /// The number of a reading that begins now. Thread: any.
  std::uint64_t Begin() { return ++mBegun; }
  /// Whether the result of a reading is to be stored: not when one that began later was accepted before.
  /// Thread: one at a time, under the lock that guards what is stored.
  bool Accept(std::uint64_t aNumber) {
    if (aNumber < mAccepted)
      return false;
    mAccepted = aNumber;
    return true;
  }

private:
  std::atomic<std::uint64_t> mBegun = 0;
  std::uint64_t mAccepted = 0;
};

} // namespace krgui
