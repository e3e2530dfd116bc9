#pragma once
// Tables that are looked up by an enumerator's number, and the check that they have their rows where they belong.

#include <cstddef>

namespace krgenicam {

/// Whether the row of each enumerator is at the enumerator's number.
template <typename Row, std::size_t kCount, typename Enumeration>
constexpr bool IsInOrderOf(const Row (&aRows)[kCount], Enumeration Row::*aKey) {
  for (std::size_t i = 0; i < kCount; ++i) {
    if (static_cast<std::size_t>(aRows[i].*aKey) != i)
      return false;
  }
  return true;
}

} // namespace krgenicam
