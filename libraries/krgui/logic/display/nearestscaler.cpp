#include "logic/display/nearestscaler.h"

#include <cstring>

namespace krgui {

namespace {

// The source pixel under the centre of a destination pixel: floor((index + 1/2) * source / destination), in whole
// numbers.
std::int64_t FindSource(std::int64_t aIndex, std::int64_t aSourceSize, std::int64_t aDestinationSize) {
  return (2 * aIndex + 1) * aSourceSize / (2 * aDestinationSize);
}

} // namespace

void NearestScaler::PrepareColumns(const PixelRect& aSourceRect, std::int32_t aWidth) {
  if (mColumns.size() == static_cast<std::size_t>(aWidth) && mColumnsSource.left == aSourceRect.left &&
      mColumnsSource.right == aSourceRect.right)
    return;
  mColumnsSource = aSourceRect;
  mColumns.resize(static_cast<std::size_t>(aWidth));
  for (std::int32_t x = 0; x < aWidth; ++x)
    mColumns[static_cast<std::size_t>(x)] =
        static_cast<std::uint32_t>(aSourceRect.left + FindSource(x, aSourceRect.GetWidth(), aWidth));
}

void NearestScaler::Scale(const PixelPlane<const std::uint32_t>& aSource, const PixelRect& aSourceRect,
                          const PixelPlane<std::uint32_t>& aDestination, std::int32_t aWidth, std::int32_t aHeight) {
  if (aSourceRect.IsEmpty() || aWidth <= 0 || aHeight <= 0)
    return;
  PrepareColumns(aSourceRect, aWidth);
  const bool isOneToOne = aSourceRect.GetWidth() == aWidth;
  const std::size_t rowBytes = static_cast<std::size_t>(aWidth) * sizeof(std::uint32_t);
  std::int64_t lastSourceRow = -1;
  for (std::int32_t y = 0; y < aHeight; ++y) {
    const std::int64_t sourceRow = aSourceRect.top + FindSource(y, aSourceRect.GetHeight(), aHeight);
    const std::uint32_t* source = aSource.pixels + static_cast<std::size_t>(sourceRow) * aSource.rowPixels;
    std::uint32_t* destination = aDestination.pixels + static_cast<std::size_t>(y) * aDestination.rowPixels;
    if (sourceRow == lastSourceRow)
      std::memcpy(destination, destination - aDestination.rowPixels, rowBytes);
    else if (isOneToOne)
      std::memcpy(destination, source + aSourceRect.left, rowBytes);
    else
      for (std::size_t x = 0; x < mColumns.size(); ++x)
        destination[x] = source[mColumns[x]];
    lastSourceRow = sourceRow;
  }
}

} // namespace krgui
