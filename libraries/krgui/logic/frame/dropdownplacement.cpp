#include "logic/frame/dropdownplacement.h"

#include <algorithm>

namespace krgui {

namespace {

/// What the frame around the items takes, above and below together.
constexpr int kFrameHeight = 4;

bool IsInside(const PixelRect& aRect, std::int32_t aX, std::int32_t aY) {
  return aX >= aRect.left && aX < aRect.right && aY >= aRect.top && aY < aRect.bottom;
}

} // namespace

DropDownPlacement PlaceDropDown(const DropDownRequest& aRequest) {
  DropDownPlacement placement;
  const std::int64_t allItems = std::int64_t{aRequest.itemHeight} * aRequest.itemCount;
  const int offeredHeight = aRequest.offered.GetHeight();
  placement.hasScrollBar = allItems > offeredHeight;
  int listHeight = static_cast<int>(std::min<std::int64_t>(allItems, offeredHeight));
  if (placement.hasScrollBar) {
    // Whole items; where not even one fits, one is shown all the same.
    listHeight = std::max(offeredHeight / aRequest.itemHeight, 1) * aRequest.itemHeight;
  }
  const int height = listHeight + kFrameHeight;
  placement.rect = aRequest.offered;
  placement.rect.top += aRequest.comboBoxHeight;
  if (!IsInside(aRequest.desktop, placement.rect.left, placement.rect.top + height)) {
    placement.rect.top -= aRequest.comboBoxHeight + height;
  }
  placement.rect.bottom = placement.rect.top + height;
  return placement;
}

} // namespace krgui
