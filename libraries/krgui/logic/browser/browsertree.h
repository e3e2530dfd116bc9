#pragma once
// The rows of the property grid: categories and features in their order, with the nodes behind them. Which features
// there are is decided by browserfilling.h, what a row looks like by the grid.

#include "logic/browser/gridmessages.h"
#include "logic/browser/treeitemdata.h"

#include <cstddef>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace krgui {

/// Thread: changed on the user-interface thread while no refresh runs on the features; the feature list may be walked
/// by a refresh on another thread as long as it is not changed.
/// Ownership: owns items and nodes; borrows features and categories.
class BrowserTree {
public:
  struct Item {
    GridItem id = kNoItem;
    GridItem parent = kNoItem;
    int row = 0;   ///< Its place among its parent's children.
    int level = 0; ///< 0 at the top level.
    std::vector<GridItem> children;
    TreeItemData* node = nullptr;
    std::size_t index = 0; ///< The node's place in the list of its kind.
  };

  explicit BrowserTree(RowNotifier aNotifier) : mNotifier(std::move(aNotifier)) {}

  /// Which name rows show, those that are there and those to come. Values that are entries' names follow with the next
  /// reading.
  void SetShowsDisplayNames(bool aShowsDisplayNames);
  bool ShowsDisplayNames() const { return mShowsDisplayNames; }

  /// Appends a row under aParent (kNoItem: at the top level) and its node to the list of its kind. kNoItem for a parent
  /// that is not there or is a feature.
  GridItem AppendCategory(GridItem aParent, const KrString& aName, KrGenCategory& aCategory);
  GridItem AppendFeature(GridItem aParent, const KrString& aName, KrGenParameter& aParameter);
  /// The first category directly under aParent whose node has exactly this name; kNoItem where there is none.
  GridItem FindChild(GridItem aParent, const KrString& aName) const;
  /// Sorts the top-level rows and the feature list by name, ascending, case-sensitive; equal names keep their order.
  void SortByName();
  void Clear();

  /// The item of a handle, which stands where it is until a row is appended; null for one that is not, or no longer,
  /// there.
  const Item* Find(GridItem aItem) const;
  /// The node of a feature's row; null for anything else.
  TreeItemData* FindFeature(GridItem aItem) const;
  TreeItemData* FindCategory(GridItem aItem) const;
  const std::vector<GridItem>& GetTopLevel() const { return mTopLevel; }

  const std::vector<std::unique_ptr<TreeItemData>>& GetFeatures() const { return mFeatures; }
  const std::vector<std::unique_ptr<TreeItemData>>& GetCategories() const { return mCategories; }

private:
  /// A category's name among the children of one parent; the text is the node's.
  struct ChildName {
    GridItem parent;
    std::string_view name;
    friend bool operator==(const ChildName&, const ChildName&) = default;
  };
  struct ChildNameHash {
    std::size_t operator()(const ChildName& aName) const;
  };

  template <typename Content>
  GridItem AppendNode(GridItem aParent, const KrString& aName, Content& aContent,
                      std::vector<std::unique_ptr<TreeItemData>>& aNodes);

  RowNotifier mNotifier;
  bool mShowsDisplayNames = false;
  GridItem mFirstID = 1; ///< Of the items of this filling, which follow each other.
  std::vector<Item> mItems;
  std::vector<GridItem> mTopLevel;
  std::vector<std::unique_ptr<TreeItemData>> mFeatures;
  std::vector<std::unique_ptr<TreeItemData>> mCategories;
  /// Names whose texts belong to the nodes.
  std::unordered_map<ChildName, GridItem, ChildNameHash> mCategoriesByName;
};

} // namespace krgui
