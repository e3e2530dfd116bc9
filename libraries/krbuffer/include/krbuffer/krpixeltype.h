#pragma once
// What the library knows of pixel formats, by their PFNC codes: name, size, order of components, packing. How a format
// is read is the converter's business.

#include "krbase/krexport.h"
#include "krbuffer/krpixel.h"

#include <cstdint>
#include <optional>
#include <string_view>

/// The order in which the components of a format lie in memory. U stands for Cb, V for Cr.
enum class KrPixelLayout {
  Mono,      ///< One component a pixel: grey, one colour, one coordinate, a confidence.
  BayerGR,   ///< A colour filter array whose first line begins green, red.
  BayerRG,   ///< … red, green.
  BayerGB,   ///< … green, blue.
  BayerBG,   ///< … blue, green.
  RGB,       ///< Red, green, blue for each pixel.
  BGR,       ///< Blue, green, red for each pixel.
  RGBa,      ///< Red, green, blue, alpha for each pixel.
  BGRa,      ///< Blue, green, red, alpha for each pixel.
  RGBPlanar, ///< A plane of red, one of green, one of blue, each with all lines of the image.
  YUV,       ///< Y U V for each pixel.
  UYV,       ///< U Y V for each pixel.
  YUYV,      ///< Y U Y V for two pixels.
  UYVY,      ///< U Y V Y for two pixels.
  UYYVYY,    ///< U Y Y V Y Y for four pixels.
  YYUYYV,    ///< Y Y U Y Y V for four pixels.
  Other,     ///< Known by name and size alone.
};

/// How the bits of the samples lie in memory.
enum class KrPixelPacking {
  Words,    ///< Each sample in 8, 16, 32 or 64 bits of its own, least significant byte first, in the lowest bits.
  LsbFirst, ///< Without gaps, least significant bit first (names ending in "p").
  GigE,     ///< Two samples in three bytes as GigE Vision 1.x packs them (names ending in "Packed").
  Other,    ///< In a way of its own.
};

/// What the bits of a sample stand for.
enum class KrSampleKind {
  Unsigned,
  Signed, ///< Two's complement.
  Float,  ///< IEEE 754.
};

/// How luma and chroma become colours.
enum class KrColorSpace {
  None,     ///< The format has no luma and chroma.
  Full601,  ///< ITU-R BT.601 factors, all of 0 to 255 used (as JPEG has it).
  Video601, ///< ITU-R BT.601, luma from 16 to 235, chroma from 16 to 240.
  Video709, ///< ITU-R BT.709, luma from 16 to 235, chroma from 16 to 240.
};

/// What the table says of one format.
struct KrPixelTypeInfo {
  KrPixelType type;           ///< The code.
  std::string_view name;      ///< The PFNC name, for example "Mono12p".
  std::uint8_t bitsPerPixel;  ///< Space that a pixel takes on the average, padding bits included.
  std::uint8_t bitsPerSample; ///< Significant bits of a component; of 565 formats those of green.
  KrPixelLayout layout;       ///< Which components there are, and in which order.
  KrPixelPacking packing;     ///< How samples are put into bytes.
  KrSampleKind sampleKind;    ///< What kind of number a sample is.
  KrColorSpace colorSpace;    ///< What the components mean.
};

/// The table's row for a format, or nothing for a format that the library does not know. Any thread.
KR_EXPORT std::optional<KrPixelTypeInfo> KrFindPixelType(KrPixelType aType);
/// The format of a PFNC name, or nothing. The comparison is exact. Any thread.
KR_EXPORT std::optional<KrPixelType> KrFindPixelType(std::string_view aName);
/// The format that holds the same samples, one in each 8 or 16 bits: for example Mono12 for Mono12p and Mono12Packed,
/// BayerRG10 for BayerRG10p, RGB8 for RGB8_Planar; a format that is so already is its own. Nothing where there is none,
/// and for samples of fewer than 8 bits. Any thread.
KR_EXPORT std::optional<KrPixelType> KrGetUnpackedPixelType(KrPixelType aType);
/// Bits that a pixel takes, as the code itself states them in bits 16 to 23 (PFNC 2.0, section 5); right for unknown
/// formats too. 0 for a code that is none.
constexpr std::uint32_t KrGetBitsPerPixel(KrPixelType aType) {
  return (aType >> 16) & 0xFFu;
}
