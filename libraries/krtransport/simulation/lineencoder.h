#pragma once
// How a line of colours is stored in each pixel format, written from the formats' definitions alone: what reads images
// elsewhere can be checked against it. Which colours a picture has is left to the painter.

#include "krbuffer/krpixeltype.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace krtransport {

/// A pixel before it is stored; components from 0 to 255. Formats of one component without a colour filter take grey.
struct PatternColour {
  std::uint8_t grey = 0;
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;
};

/// Stores lines in one format. A component c becomes, in n bits, c >> (8 - n) up to 8 bits and c * (2^n - 1) / 255
/// beyond; a signed sample is that less 2^(n-1), a float sample c itself; alpha is the largest value. Luma and chroma
/// are rounded; pixels that share chroma have that of the first of them.
///
/// Thread: any.
class LineEncoder {
public:
  LineEncoder() = default;
  /// A format that CanEncode takes.
  explicit LineEncoder(const KrPixelTypeInfo& aInfo);
  /// False for formats of a layout of their own, for samples beyond 32 bits, and for luma and chroma beyond 8.
  static bool CanEncode(const KrPixelTypeInfo& aInfo);

  /// Planes that follow each other, each with all lines: 3 for planar formats, else 1.
  std::uint32_t GetPlaneCount() const;
  /// How many kinds of lines there are: the planes, or even and odd lines of a colour filter.
  std::uint32_t GetLineKindCount() const;
  std::uint32_t GetLineKind(std::uint32_t aPlane, std::uint32_t aLine) const;
  /// Pixels after which storing begins anew: at a byte, with the same filter colour, with chroma of its own.
  std::uint32_t GetGroupPixels() const;
  /// Bytes of a line of one plane; every line begins at a byte.
  std::size_t GetLineBytes(std::size_t aWidth) const;
  /// The bits of a line's last byte that hold samples.
  std::uint8_t GetTailMask(std::size_t aWidth) const;
  /// Stores a line of GetLineBytes(aPixels.size()) bytes; bits without a sample are 0.
  void Encode(std::uint32_t aLineKind, std::span<const PatternColour> aPixels, std::uint8_t* aOut) const;

private:
  std::uint32_t GetBitsPerPixel() const; ///< In one plane.
  void EncodeComponents(std::uint32_t aLineKind, std::span<const PatternColour> aPixels, std::uint8_t* aOut) const;
  void EncodePairs(std::uint32_t aLineKind, std::span<const PatternColour> aPixels, std::uint8_t* aOut) const;
  void EncodeLumaChroma(std::span<const PatternColour> aPixels, std::uint8_t* aOut) const;

  KrPixelTypeInfo mInfo = {};
};

} // namespace krtransport
