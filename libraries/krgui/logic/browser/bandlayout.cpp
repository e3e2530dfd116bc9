#include "logic/browser/bandlayout.h"

#include <algorithm>
#include <cstddef>

namespace krgui {

namespace {

/// The widths that the items get of a room when each gives as much as it can.
std::vector<int> ShareWidth(int aRoom, std::span<const BandItem> aItems) {
  std::vector<int> widths;
  int rest = aRoom;
  for (const BandItem& item : aItems) {
    widths.push_back(item.width);
    rest -= item.gap + item.width;
  }
  for (std::size_t index = aItems.size(); rest < 0 && index-- > 0;) {
    const int given = std::min(-rest, std::max(0, aItems[index].width - aItems[index].leastWidth));
    widths[index] -= given;
    rest += given;
  }
  const auto taker = std::find_if(aItems.begin(), aItems.end(), [](const BandItem& aItem) { return aItem.takesRest; });
  if (rest > 0 && taker != aItems.end())
    widths[static_cast<std::size_t>(taker - aItems.begin())] += rest;
  return widths;
}

/// Takes away an item that would be there in part. Whether there was one.
bool DropCutItem(std::span<const int> aWidths, std::span<BandItem> aItems) {
  for (std::size_t index = 0; index < aItems.size(); ++index) {
    BandItem& item = aItems[index];
    if (item.isWhole && aWidths[index] < item.width) {
      item = {.height = item.height, .isWhole = true};
      return true;
    }
  }
  return false;
}

} // namespace

std::vector<GridRect> LayOutBand(const GridRect& aBand, std::span<const BandItem> aItems) {
  std::vector<BandItem> items(aItems.begin(), aItems.end());
  std::vector<int> widths = ShareWidth(aBand.right - aBand.left, items);
  while (DropCutItem(widths, items))
    widths = ShareWidth(aBand.right - aBand.left, items);
  const int bandHeight = std::max(0, aBand.bottom - aBand.top);
  std::vector<GridRect> rects;
  int left = aBand.left;
  for (std::size_t index = 0; index < items.size(); ++index) {
    const int height = std::min(items[index].height, bandHeight);
    const int top = aBand.top + (bandHeight - height) / 2;
    left = std::min(left + items[index].gap, std::max(aBand.left, aBand.right));
    const int right = std::min(left + widths[index], std::max(aBand.left, aBand.right));
    rects.push_back({left, top, right, top + height});
    left = right;
  }
  return rects;
}

} // namespace krgui
