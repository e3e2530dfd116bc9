#pragma once
// Stretches 32-bit pixels by taking, for each destination pixel, the source pixel under its centre: no averaging, so
// that what is seen is what the sensor sent. Where the rows come from and go to is left to the caller.

#include "logic/display/columnplan.h"

#include <cstddef>
#include <cstdint>

namespace krgui {

/// Pixels in memory, 32 bits each, rows from the top.
template <typename Pixel>
struct PixelPlane {
  Pixel* pixels = nullptr;
  std::size_t rowPixels = 0; ///< From one row's begin to the next.

  Pixel* GetRow(std::int32_t aRow) const { return pixels + static_cast<std::size_t>(aRow) * rowPixels; }
};

/// A scaler that keeps its table of columns from one image to the next.
///
/// Thread: one at a time.
class NearestScaler {
public:
  /// Gets ready to scale rows. Neither the source's part nor what is drawn is empty; what is drawn lies inside the
  /// destination.
  void PrepareColumns(const ColumnMapping& aMapping);
  /// Scales one row, from its begin, where the mapping's source columns count from, to where the first column drawn
  /// goes. Bits of aSetBits are set in every pixel. Nothing outside the source's part is read; the rows do not overlap.
  void ScaleRow(const std::uint32_t* aSource, std::uint32_t* aDestination, std::uint32_t aSetBits) const {
    mPlan.scaleRow(mPlan, aSource, aDestination, aSetBits);
  }

private:
  ColumnPlan mPlan;
};

} // namespace krgui
