#include "logic/browser/choiceplacement.h"

#include "logic/browser/rowgeometry.h"

#include <algorithm>

namespace krgui {

namespace {

/// What the frame around the items takes, above and below together.
constexpr int kFrameHeight = 4;

/// What the list may have of its height, so that it ends on the screen below the combo box or above it.
int FindOfferedHeight(const ChoicePlacementRequest& aRequest) {
  const int below = aRequest.desktop.bottom - aRequest.comboBox.bottom;
  const int above = aRequest.comboBox.top - aRequest.desktop.top;
  const int visible = std::max({below, above, aRequest.itemHeight + kFrameHeight}) - kFrameHeight;
  return std::min(GetChoiceListHeight(aRequest.itemCount, aRequest.itemHeight), visible);
}

} // namespace

PixelRect OfferChoiceList(const ChoicePlacementRequest& aRequest) {
  const int height = FindOfferedHeight(aRequest);
  const bool isScrolled = aRequest.itemCount * std::int64_t{aRequest.itemHeight} > height;
  const int wanted = aRequest.widestItem + (isScrolled ? aRequest.scrollBarWidth : 0);
  const int width = std::min(std::max(aRequest.comboBox.GetWidth(), wanted), aRequest.desktop.GetWidth());
  // At the combo box's leading edge, moved in where the screen ends.
  const int leading = aRequest.isRightToLeft ? aRequest.comboBox.right - width : aRequest.comboBox.left;
  const int left = std::max(std::min(leading, aRequest.desktop.right - width), aRequest.desktop.left);
  return {left, aRequest.comboBox.top, left + width, aRequest.comboBox.top + height};
}

} // namespace krgui
