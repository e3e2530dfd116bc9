#pragma once
// How much memory the pixels of a surface need, and how much is kept for them while a window's size changes. Where it
// comes from is left to the surfaces.

#include "logic/pixelrect.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace krgui {

/// Width and height of what is drawn, in device pixels.
struct SurfaceExtent {
  std::int32_t width = 0;
  std::int32_t height = 0;

  /// The largest that an X server can name, and a picture of the toolkit can have.
  static constexpr std::int32_t kMostPixels = 32767;

  /// What can be shown of a client area of this size: of a larger one the upper left part.
  static constexpr SurfaceExtent Cut(std::int32_t aWidth, std::int32_t aHeight) {
    return {std::min(aWidth, kMostPixels), std::min(aHeight, kMostPixels)};
  }
  constexpr bool IsEmpty() const { return width <= 0 || height <= 0; }

  /// From one row's begin to the next: whole cache lines, so that vectors of several rows are aligned alike.
  constexpr std::size_t GetRowPixels() const {
    constexpr std::size_t kLinePixels = 64 / sizeof(std::uint32_t);
    return (static_cast<std::size_t>(width) + kLinePixels - 1) / kLinePixels * kLinePixels;
  }
  constexpr std::size_t GetSize() const {
    return GetRowPixels() * static_cast<std::size_t>(height) * sizeof(std::uint32_t);
  }

  /// What of a rectangle is inside; empty where nothing is.
  constexpr PixelRect Clip(const PixelRect& aRect) const {
    return {std::max(aRect.left, 0), std::max(aRect.top, 0), std::min(aRect.right, width),
            std::min(aRect.bottom, height)};
  }

  friend constexpr bool operator==(const SurfaceExtent&, const SurfaceExtent&) = default;
};

/// How many bytes to have where so many are needed: what there is, as long as it suffices and is not much too large.
/// The first time exactly as many as are needed, as most windows are never resized; later a quarter more, so that a
/// window whose edge is dragged gets new memory a few times and not at every step.
constexpr std::size_t ChooseSurfaceMemory(std::size_t aNeeded, std::size_t aThereIs) {
  constexpr std::size_t kNeverTooLarge = 1 << 20;
  constexpr std::size_t kTooManyTimes = 4;
  const bool isTooLarge = aThereIs > kNeverTooLarge && aThereIs / kTooManyTimes > aNeeded;
  if (aThereIs >= aNeeded && !isTooLarge) {
    return aThereIs;
  }
  constexpr std::size_t kPixelBytes = sizeof(std::uint32_t);
  return aThereIs == 0 ? aNeeded : (aNeeded + aNeeded / 4) / kPixelBytes * kPixelBytes;
}

} // namespace krgui
