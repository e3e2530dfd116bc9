#pragma once
// Where the lines of an image lie in memory, reckoned from its width, height, format and padding without overflow.
// Whether there is enough memory for them is left to the callers.

#include "krbuffer/krpixeltype.h"

#include <array>
#include <cstdint>
#include <optional>

namespace krbuffer {

/// What describes an image; paddings in bytes. The padding of a line follows every line of every plane.
struct ImageShape {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  KrPixelType type = 0;
  std::uint32_t paddingX = 0;
  std::uint32_t paddingY = 0;
};

/// The largest image or buffer that is allocated: 4 GiB.
inline constexpr std::uint64_t kMaxAllocationBytes = std::uint64_t{4} << 30;

/// A format whose components lie in planes of their own, one after the other, each with all lines of the image.
struct PlanarFormat {
  KrPixelType type;
  std::uint32_t planes;
};

inline constexpr std::array kPlanarFormats = {
    PlanarFormat{KrPixel::RGB8_Planar, 3},           PlanarFormat{KrPixel::RGB10_Planar, 3},
    PlanarFormat{KrPixel::RGB12_Planar, 3},          PlanarFormat{KrPixel::RGB16_Planar, 3},
    PlanarFormat{KrPixel::Coord3D_AC8_Planar, 2},    PlanarFormat{KrPixel::Coord3D_AC10p_Planar, 2},
    PlanarFormat{KrPixel::Coord3D_AC12p_Planar, 2},  PlanarFormat{KrPixel::Coord3D_AC16_Planar, 2},
    PlanarFormat{KrPixel::Coord3D_AC32f_Planar, 2},  PlanarFormat{KrPixel::Coord3D_ABC8_Planar, 3},
    PlanarFormat{KrPixel::Coord3D_ABC10p_Planar, 3}, PlanarFormat{KrPixel::Coord3D_ABC12p_Planar, 3},
    PlanarFormat{KrPixel::Coord3D_ABC16_Planar, 3},  PlanarFormat{KrPixel::Coord3D_ABC32f_Planar, 3},
};

/// The planes of a format: 1 for every format that is not planar, unknown ones too.
constexpr std::uint32_t GetPlaneCount(KrPixelType aType) {
  for (const PlanarFormat& format : kPlanarFormats)
    if (format.type == aType)
      return format.planes;
  return 1;
}

/// Bytes of one line of one plane, from its first to its last pixel. Pixels of packed formats follow each other without
/// a gap, and every line begins on a byte (PFNC 2.0, line padding).
constexpr std::uint64_t GetLineBytes(const ImageShape& aShape) {
  const std::uint32_t bitsPerPixel = KrGetBitsPerPixel(aShape.type) / GetPlaneCount(aShape.type);
  return (std::uint64_t{aShape.width} * bitsPerPixel + 7) / 8;
}

/// Bytes from the begin of one line to the begin of the next; the first line of a plane follows the last one of the
/// plane before it in the same way.
constexpr std::uint64_t GetStrideBytes(const ImageShape& aShape) {
  return GetLineBytes(aShape) + aShape.paddingX;
}

/// True when the shape has pixels: a width, a height and a format with a size.
constexpr bool HasPixels(const ImageShape& aShape) {
  return aShape.width != 0 && aShape.height != 0 && KrGetBitsPerPixel(aShape.type) != 0;
}

/// Bytes of the whole image, all planes, with all padding; nothing where 64 bits do not hold them.
std::optional<std::uint64_t> GetImageBytes(const ImageShape& aShape);

} // namespace krbuffer
