#pragma once
// Lines of IEEE 754 numbers of 32 bits, least significant byte first and not necessarily aligned, by vectors.

#include "krbuffer/krconversionsettings.h"
#include "linesource.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace krbuffer {

inline float ReadFloat(const std::uint8_t* aLine, std::size_t aIndex) {
  const std::uint8_t* bytes = aLine + sizeof(float) * aIndex;
  return std::bit_cast<float>(bytes[0] | (std::uint32_t{bytes[1]} << 8) | (std::uint32_t{bytes[2]} << 16) |
                              (std::uint32_t{bytes[3]} << 24));
}

/// Empty, the least above the greatest, until a finite value was met.
struct FloatRange {
  float least = std::numeric_limits<float>::max();
  float greatest = std::numeric_limits<float>::lowest();
};

/// Widens the range by the finite values of a line. Any thread.
void WidenRange(const std::uint8_t* aLine, std::size_t aCount, FloatRange& aRange);

/// Writes one line as opaque grey, the window's low end, which is below its high one, as black and that as white,
/// between them rounded to the nearest. What is no number is black. Any thread.
void ShowFloats(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra, StoreKind aStores,
                const KrSampleWindow& aWindow);

} // namespace krbuffer
