#pragma once
// The pixel that every reader writes: blue, green, red and alpha in this order in memory, stored as one word so that
// compilers make whole vectors of them.

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace krbuffer {

inline constexpr std::size_t kBgraBytes = 4;
inline constexpr std::uint32_t kOpaque = 0xFF;

inline void StoreBgra(std::uint8_t* aPixel, std::uint32_t aBlue, std::uint32_t aGreen, std::uint32_t aRed,
                      std::uint32_t aAlpha) {
  static_assert(std::endian::native == std::endian::little, "The word's least significant byte is blue.");
  const std::uint32_t word = aBlue | (aGreen << 8) | (aRed << 16) | (aAlpha << 24);
  std::memcpy(aPixel, &word, sizeof word);
}

inline void StoreGrey(std::uint8_t* aPixel, std::uint32_t aGrey) {
  StoreBgra(aPixel, aGrey, aGrey, aGrey, kOpaque);
}

} // namespace krbuffer
