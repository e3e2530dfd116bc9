#pragma once
// Stretches 32-bit pixels by taking, for each destination pixel, the source pixel under its centre: no averaging, so
// that what is seen is what the sensor sent.

#include "logic/pixelrect.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace krgui {

/// Pixels in memory, 32 bits each, rows from the top.
template <typename Pixel>
struct PixelPlane {
  Pixel* pixels = nullptr;
  std::size_t rowPixels = 0; ///< From one row's begin to the next.
};

/// A scaler that keeps its table of columns from one image to the next.
///
/// Thread: one at a time.
class NearestScaler {
public:
  /// Fills aWidth x aHeight pixels of the destination from a part of the source. An empty part or destination does
  /// nothing.
  void Scale(const PixelPlane<const std::uint32_t>& aSource, const PixelRect& aSourceRect,
             const PixelPlane<std::uint32_t>& aDestination, std::int32_t aWidth, std::int32_t aHeight);

private:
  void PrepareColumns(const PixelRect& aSourceRect, std::int32_t aWidth);

  PixelRect mColumnsSource;
  std::vector<std::uint32_t> mColumns; ///< The source column of each destination column.
};

} // namespace krgui
