#pragma once
// What a program holds of its heap.

#include <malloc.h>

namespace benchmarks {

/// In bytes; signed, so that a difference of two looks may be negative, which is no figure then.
inline double GetHeapBytes() {
  const auto info = ::mallinfo2();
  return static_cast<double>(info.uordblks) + static_cast<double>(info.hblkhd);
}

} // namespace benchmarks
