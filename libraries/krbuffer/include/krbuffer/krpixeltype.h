#pragma once
// Pixel formats by their PFNC codes, in one table: name, size, layout. How a format is read is the converter's
// business.

#include "krbase/krexport.h"

#include <cstdint>
#include <optional>
#include <string_view>

/// A 32-bit pixel format code of the GenICam Pixel Format Naming Convention (PFNC). Codes outside the table are carried
/// unchanged, so that a format that we do not know can still be named by its number.
using KrPixelType = std::uint32_t;

/// The formats that the library knows by name.
namespace KrPixel {
inline constexpr KrPixelType Mono8 = 0x01080001;
inline constexpr KrPixelType Mono10 = 0x01100003;
inline constexpr KrPixelType Mono12 = 0x01100005;
inline constexpr KrPixelType Mono14 = 0x01100025;
inline constexpr KrPixelType Mono16 = 0x01100007;
inline constexpr KrPixelType Mono12p = 0x010C0047;
inline constexpr KrPixelType BayerGR8 = 0x01080008;
inline constexpr KrPixelType BayerRG8 = 0x01080009;
inline constexpr KrPixelType BayerGB8 = 0x0108000A;
inline constexpr KrPixelType BayerBG8 = 0x0108000B;
inline constexpr KrPixelType RGB8 = 0x02180014;
inline constexpr KrPixelType BGR8 = 0x02180015;
inline constexpr KrPixelType RGBa8 = 0x02200016;
inline constexpr KrPixelType BGRa8 = 0x02200017;
} // namespace KrPixel

/// How the components of a format lie in a line.
enum class KrPixelLayout {
  Mono,    ///< One component a pixel, least significant bits used.
  BayerGR, ///< A colour filter array whose first line begins green, red.
  BayerRG, ///< … red, green.
  BayerGB, ///< … green, blue.
  BayerBG, ///< … blue, green.
  RGB,     ///< Red, green, blue for each pixel.
  BGR,     ///< Blue, green, red for each pixel.
  RGBa,    ///< Red, green, blue, alpha for each pixel.
  BGRa,    ///< Blue, green, red, alpha for each pixel.
};

/// What the table says of one format.
struct KrPixelTypeInfo {
  KrPixelType type;
  std::string_view name;      ///< The PFNC name, for example "Mono12p".
  std::uint8_t bitsPerPixel;  ///< Space that a pixel takes, padding bits included.
  std::uint8_t bitsPerSample; ///< Significant bits of a component.
  KrPixelLayout layout;
};

/// The table's row for a format, or nothing for a format that the library does not know. Any thread.
KR_EXPORT std::optional<KrPixelTypeInfo> KrFindPixelType(KrPixelType aType);
/// The format of a PFNC name, or nothing. The comparison is exact. Any thread.
KR_EXPORT std::optional<KrPixelType> KrFindPixelType(std::string_view aName);
/// Bits that a pixel takes, as the code itself states them in bits 16 to 23 (PFNC 2.0, section 5); right for unknown
/// formats too. 0 for a code that is none.
constexpr std::uint32_t KrGetBitsPerPixel(KrPixelType aType) {
  return (aType >> 16) & 0xFFu;
}
