#include "logic/display/nearestscaler.h"

#include <cstring>

namespace krgui {

void NearestScaler::PrepareColumns(const ColumnMapping& aMapping) {
  if (mPlan.mapping != aMapping)
    mPlan = MakeColumnPlan(aMapping);
}

void NearestScaler::Scale(const PixelPlane<const std::uint32_t>& aSource, const PixelRect& aSourceRect,
                          const PixelPlane<std::uint32_t>& aDestination, std::int32_t aWidth, std::int32_t aHeight) {
  if (aSourceRect.IsEmpty() || aWidth <= 0 || aHeight <= 0)
    return;
  PrepareColumns({aSourceRect.left, aSourceRect.right, aWidth, 0, aWidth});
  std::int32_t lastSourceRow = -1;
  for (std::int32_t y = 0; y < aHeight; ++y) {
    const std::int32_t sourceRow = aSourceRect.top + FindNearestSource(y, aSourceRect.GetHeight(), aHeight);
    std::uint32_t* destination = aDestination.GetRow(y);
    if (sourceRow == lastSourceRow)
      std::memcpy(destination, aDestination.GetRow(y - 1), static_cast<std::size_t>(aWidth) * sizeof(std::uint32_t));
    else
      ScaleRow(aSource.GetRow(sourceRow), destination, 0);
    lastSourceRow = sourceRow;
  }
}

} // namespace krgui
