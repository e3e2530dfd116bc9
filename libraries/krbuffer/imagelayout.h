#pragma once
// Where the lines of an image lie in memory, reckoned from its width, height, format and padding without overflow.
// Whether there is enough memory for them is left to the callers.

#include "krbuffer/krpixeltype.h"

#include <cstdint>
#include <optional>

namespace krbuffer {

/// What describes an image; paddings in bytes.
struct ImageShape {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  KrPixelType type = 0;
  std::uint32_t paddingX = 0;
  std::uint32_t paddingY = 0;
};

/// The largest image or buffer that is allocated: 4 GiB.
inline constexpr std::uint64_t kMaxAllocationBytes = std::uint64_t{4} << 30;

/// Bytes of one line, from its first to its last pixel. Pixels of packed formats follow each other without a gap, and
/// every line begins on a byte (PFNC 2.0, line padding).
constexpr std::uint64_t GetLineBytes(const ImageShape& aShape) {
  return (std::uint64_t{aShape.width} * KrGetBitsPerPixel(aShape.type) + 7) / 8;
}

/// Bytes from the begin of one line to the begin of the next.
constexpr std::uint64_t GetStrideBytes(const ImageShape& aShape) {
  return GetLineBytes(aShape) + aShape.paddingX;
}

/// True when the shape has pixels: a width, a height and a format with a size.
constexpr bool HasPixels(const ImageShape& aShape) {
  return aShape.width != 0 && aShape.height != 0 && KrGetBitsPerPixel(aShape.type) != 0;
}

/// Bytes of the whole image with all padding; nothing where 64 bits do not hold them.
std::optional<std::uint64_t> GetImageBytes(const ImageShape& aShape);

} // namespace krbuffer
