#pragma once
// Pictures for drawing surfaces, and how a test draws and finds them.

#include "platform/drawingsurface.h"

#include "await.h"
#include "surfacewindow.h"

#include <algorithm>
#include <chrono>
#include <random>
#include <string>

namespace krgui {

inline const std::chrono::milliseconds kGenerousLimit = krtest::GetGenerousLimit();

inline std::chrono::steady_clock::time_point GetFarLimit() {
  return std::chrono::steady_clock::now() + kGenerousLimit;
}

inline std::string GetName(SurfaceKind aKind) {
  constexpr const char* kNames[] = {"SharedDescriptor", "SharedSystemV", "PlainPut", "Invalidation"};
  return kNames[static_cast<std::size_t>(aKind)];
}

/// Random pixels, so that each one that is off shows.
inline Grab MakePicture(int aWidth, int aHeight, std::uint32_t aSeed) {
  Grab picture = {aWidth, aHeight, std::vector<std::uint32_t>(static_cast<std::size_t>(aWidth) * aHeight)};
  std::mt19937 random(aSeed);
  for (std::uint32_t& pixel : picture.pixels) {
    pixel = static_cast<std::uint32_t>(random()) & 0xffffff;
  }
  return picture;
}

/// One colour all over.
inline Grab MakeUniform(int aWidth, int aHeight, std::uint32_t aColor) {
  return {aWidth, aHeight, std::vector<std::uint32_t>(static_cast<std::size_t>(aWidth) * aHeight, aColor)};
}

inline void Draw(const Canvas& aCanvas, const Grab& aPicture) {
  const std::uint32_t* from = aPicture.pixels.data();
  for (int y = 0; y < aPicture.height; ++y, from += aPicture.width) {
    std::uint32_t* row = aCanvas.plane.pixels + static_cast<std::size_t>(y) * aCanvas.plane.rowPixels;
    std::transform(from, from + aPicture.width, row, [](std::uint32_t aPixel) { return aPixel | 0xff000000; });
  }
}

/// Draws a picture and presents a part of it; false where the surface does not take it.
inline bool Show(DrawingSurface& aSurface, const Grab& aPicture, const PixelRect& aPart, std::uint64_t aTag = 1) {
  const auto target = aSurface.Begin(aPicture.width, aPicture.height, kGenerousLimit);
  if (!target) {
    return false;
  }
  Draw(target->canvas, aPicture);
  return aSurface.Present(aPart, aTag);
}
/// All of it.
inline bool Show(DrawingSurface& aSurface, const Grab& aPicture, std::uint64_t aTag = 1) {
  return Show(aSurface, aPicture, {0, 0, aPicture.width, aPicture.height}, aTag);
}

/// What is presented comes onto the screen by itself, but not before the call returns.
inline bool IsSoonOnScreen(const SurfaceWindow& aWindow, const Grab& aPicture) {
  return krtest::Await([&] { return aWindow.Take(aPicture.width, aPicture.height) == aPicture; });
}

} // namespace krgui
