#include "browser/screenrows.h"

#include <algorithm>
#include <utility>

namespace krgui {

namespace {

void Mark(const BrowserTree& aTree, GridItem aItem, bool aIsOnScreen) {
  if (TreeItemData* node = aTree.FindFeature(aItem))
    node->SetOnScreen(aIsOnScreen);
}

} // namespace

bool ScreenRows::Update(const BrowserTree& aTree, std::vector<GridItem> aItems) {
  if (aItems == mItems)
    return false;
  const std::vector<GridItem> before = std::exchange(mItems, std::move(aItems));
  for (const GridItem item : mItems)
    Mark(aTree, item, true);
  // A row that stays is never seen as one that has left.
  for (const GridItem item : before) {
    if (std::find(mItems.begin(), mItems.end(), item) == mItems.end())
      Mark(aTree, item, false);
  }
  return true;
}

} // namespace krgui
