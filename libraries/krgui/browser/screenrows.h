#pragma once
// Which rows are on the screen, noted in their nodes for the refresh. Finding them out is left to the grid.

#include "logic/browser/browsertree.h"

#include <vector>

namespace krgui {

/// Costs as much as the rows that were or are on the screen, however many there are.
///
/// Thread: user interface. Ownership: keeps items, not nodes.
class ScreenRows {
public:
  /// Takes the rows that are on the screen now; true when there are others than before.
  bool Update(const BrowserTree& aTree, std::vector<GridItem> aItems);
  /// The rows are about to go.
  void Forget() { mItems.clear(); }
  const std::vector<GridItem>& GetItems() const { return mItems; }

private:
  std::vector<GridItem> mItems;
};

} // namespace krgui
