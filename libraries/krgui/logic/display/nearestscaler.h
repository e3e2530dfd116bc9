#pragma once
// Stretches 32-bit pixels by taking, for each destination pixel, the source pixel under its centre: no averaging, so
// that what is seen is what the sensor sent. Where the rows come from and go to is left to the caller.

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

  Pixel* GetRow(std::int32_t aRow) const { return pixels + static_cast<std::size_t>(aRow) * rowPixels; }
};

/// The source pixel under the centre of a destination pixel: floor((index + 1/2) * source / destination), in whole
/// numbers. Sizes are above 0, the index is one of the destination's.
constexpr std::int32_t FindNearestSource(std::int32_t aIndex, std::int32_t aSourceSize, std::int32_t aDestinationSize) {
  return static_cast<std::int32_t>((2 * std::int64_t{aIndex} + 1) * aSourceSize / (2 * std::int64_t{aDestinationSize}));
}

/// Which columns of a source row go to which of a destination row.
struct ColumnMapping {
  std::int32_t sourceLeft = 0; ///< The part of the source row that is shown.
  std::int32_t sourceRight = 0;
  std::int32_t width = 0; ///< Of the whole destination.
  std::int32_t first = 0; ///< The part of the destination that is drawn: this column and those after it.
  std::int32_t count = 0;
  friend constexpr bool operator==(const ColumnMapping&, const ColumnMapping&) = default;
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

  /// Gets ready to scale rows. The source's part and the destination are not empty, what is drawn lies inside.
  void PrepareColumns(const ColumnMapping& aMapping);
  /// Scales one row: from the row's begin, where the mapping's source columns count from, to where its first column
  /// goes. Bits of aSetBits are set in every pixel. The rows must not overlap.
  void ScaleRow(const std::uint32_t* aSource, std::uint32_t* aDestination, std::uint32_t aSetBits) const;

private:
  ColumnMapping mMapping;
  std::vector<std::uint32_t> mColumns; ///< The source column of each destination column.
};

} // namespace krgui
