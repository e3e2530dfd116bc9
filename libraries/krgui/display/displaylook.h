#pragma once
// How a display's frame looks besides its content: what the application set, and what only the user-interface thread
// knows of screen and palette. Both are values, so that any thread may draw with them.

#include "logic/display/displaystyle.h"

#include <QString>

#include <cstdint>

namespace krgui {

/// What screen, palette and application say; taken on the user-interface thread.
struct ScreenLook {
  double pixelRatio = 1.0;                ///< Device pixels for one device-independent pixel.
  std::uint32_t cornerColor = 0xFFF0F0F0; ///< Of the square between the scroll bars, 0xffRRGGBB.
  QString textFamily;                     ///< Of texts that are not the application's.
  int textPixelSize = 12;                 ///< Device pixels.
  double textLineHeight = 14.0;           ///< Device pixels.
  friend bool operator==(const ScreenLook&, const ScreenLook&) = default;
};

/// A ColorRef as pixels have it.
constexpr std::uint32_t ToPixel(ColorRef aColor) {
  return 0xFF000000U | static_cast<std::uint32_t>(GetRed(aColor)) << 16 |
         static_cast<std::uint32_t>(GetGreen(aColor)) << 8 | GetBlue(aColor);
}

/// All of one drawing.
struct DisplayLook {
  DisplayLook() = default;
  DisplayLook(const DisplayStyle& aStyle, const ScreenLook& aScreen)
      : screen(aScreen), backgroundColor(ToPixel(aStyle.backgroundColor)), overlayColor(ToPixel(aStyle.overlayColor)),
        overlaySize(aStyle.overlaySize), overlayOffsetX(aStyle.overlayOffsetX), overlayOffsetY(aStyle.overlayOffsetY) {}

  ScreenLook screen;
  std::uint32_t backgroundColor = 0; ///< 0xffRRGGBB.
  std::uint32_t overlayColor = 0;    ///< 0xffRRGGBB.
  int overlaySize = 0;
  std::uint32_t overlayOffsetX = 0;
  std::uint32_t overlayOffsetY = 0;
  friend bool operator==(const DisplayLook&, const DisplayLook&) = default;
};

} // namespace krgui
