#pragma once
// Colours and measures of a display window, as applications set them. What they are applied to is left to the painters.

#include <atomic>
#include <cstdint>

namespace krgui {

/// A colour as 0x00BBGGRR.
using ColorRef = std::uint32_t;
constexpr ColorRef MakeColorRef(unsigned char aRed, unsigned char aGreen, unsigned char aBlue) {
  return aRed | static_cast<ColorRef>(aGreen) << 8 | static_cast<ColorRef>(aBlue) << 16;
}
constexpr unsigned char GetRed(ColorRef aColor) {
  return static_cast<unsigned char>(aColor);
}
constexpr unsigned char GetGreen(ColorRef aColor) {
  return static_cast<unsigned char>(aColor >> 8);
}
constexpr unsigned char GetBlue(ColorRef aColor) {
  return static_cast<unsigned char>(aColor >> 16);
}

/// How the overlay looks and where the background shows; read and written from any thread without the display lock.
struct DisplayStyle {
  std::atomic<ColorRef> backgroundColor = MakeColorRef(0x80, 0x80, 0x80);
  std::atomic<ColorRef> overlayColor = MakeColorRef(0x00, 0xFF, 0x00);
  std::atomic<int> overlaySize = 20; ///< Above 0 a line's height, below 0 the characters', 0 the default.
  std::atomic<std::uint32_t> overlayOffsetX = 10;
  std::atomic<std::uint32_t> overlayOffsetY = 10;
};

} // namespace krgui
