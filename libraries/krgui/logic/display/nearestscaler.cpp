#include "logic/display/nearestscaler.h"

#include <cstring>

namespace krgui {

void NearestScaler::PrepareColumns(const ColumnMapping& aMapping) {
  if (mMapping == aMapping)
    return;
  mMapping = aMapping;
  const std::int32_t sourceWidth = aMapping.sourceRight - aMapping.sourceLeft;
  mColumns.resize(static_cast<std::size_t>(aMapping.count));
  for (std::int32_t x = 0; x < aMapping.count; ++x)
    mColumns[static_cast<std::size_t>(x)] = static_cast<std::uint32_t>(
        aMapping.sourceLeft + FindNearestSource(aMapping.first + x, sourceWidth, aMapping.width));
}

void NearestScaler::ScaleRow(const std::uint32_t* aSource, std::uint32_t* aDestination, std::uint32_t aSetBits) const {
  for (std::size_t x = 0; x < mColumns.size(); ++x)
    aDestination[x] = aSource[mColumns[x]] | aSetBits;
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
