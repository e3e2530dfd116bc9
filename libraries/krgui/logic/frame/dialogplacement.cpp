#include "logic/frame/dialogplacement.h"

#include <algorithm>

namespace krgui {

namespace {

/// The begin of an extent that is centred on another one and kept between two edges; the lower edge counts more.
std::int32_t Center(std::int32_t aExtent, std::int32_t aOwnerBegin, std::int32_t aOwnerEnd, std::int32_t aLow,
                    std::int32_t aHigh) {
  const std::int32_t centred = aOwnerBegin + (aOwnerEnd - aOwnerBegin - aExtent) / 2;
  return std::max(std::min(centred, aHigh - aExtent), aLow);
}

} // namespace

PixelRect PlaceDialog(const PixelSize& aSize, const PixelRect& aOwner, const PixelRect& aScreen) {
  const std::int32_t left = Center(aSize.width, aOwner.left, aOwner.right, aScreen.left, aScreen.right);
  const std::int32_t top = Center(aSize.height, aOwner.top, aOwner.bottom, aScreen.top, aScreen.bottom);
  return {left, top, left + aSize.width, top + aSize.height};
}

} // namespace krgui
