#pragma once
// How the bytes that pixels are made of come from a run of source bytes into a vector of pixels: by whole words to the
// pixels' block of 16 bytes, as vector instructions move bytes within such blocks alone, and then by bytes.

#include "bgrapixel.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace krbuffer {

/// The most pixels that a vector holds. Shorter vectors use the begin of the tables.
inline constexpr std::size_t kMostVectorPixels = 16;
/// Makes a byte 0.
inline constexpr std::uint8_t kNoByte = 0x80;

struct GatherTables {
  alignas(64) std::array<std::uint32_t, kMostVectorPixels> words{};
  alignas(64) std::array<std::uint8_t, kMostVectorPixels * kBgraBytes> bytes{};
};

/// aFindByte(pixel, byteOfPixel) gives the offset of the source byte, or -1 for none; those of a block of four pixels
/// lie within 13 bytes.
template <typename FindByte>
constexpr GatherTables MakeGatherTables(const FindByte& aFindByte) {
  constexpr std::size_t kBlockBytes = 16;
  constexpr std::size_t kWordBytes = 4;
  GatherTables tables;
  for (std::size_t block = 0; block < kMostVectorPixels * kBgraBytes; block += kBlockBytes) {
    int least = std::numeric_limits<int>::max();
    for (std::size_t i = 0; i < kBlockBytes; ++i)
      if (const int byte = aFindByte((block + i) / kBgraBytes, i % kBgraBytes); byte >= 0)
        least = std::min(least, byte);
    const auto firstWord = static_cast<std::size_t>(least) / kWordBytes;
    for (std::size_t i = 0; i < kBlockBytes / kWordBytes; ++i)
      tables.words[block / kWordBytes + i] = static_cast<std::uint32_t>(firstWord + i);
    for (std::size_t i = 0; i < kBlockBytes; ++i) {
      const int byte = aFindByte((block + i) / kBgraBytes, i % kBgraBytes);
      tables.bytes[block + i] =
          byte < 0 ? kNoByte : static_cast<std::uint8_t>(static_cast<std::size_t>(byte) - firstWord * kWordBytes);
    }
  }
  return tables;
}

} // namespace krbuffer
