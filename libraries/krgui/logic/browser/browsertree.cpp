#include "logic/browser/browsertree.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace krgui {

std::size_t BrowserTree::ChildNameHash::operator()(const ChildName& aName) const {
  const std::size_t nameHash = std::hash<std::string_view>()(aName.name);
  return nameHash ^ (std::hash<GridItem>()(aName.parent) + 0x9E3779B97F4A7C15U + (nameHash << 6) + (nameHash >> 2));
}

GridItem BrowserTree::AppendItem(GridItem aParent) {
  const GridItem id = mFirstID + mItems.size();
  Item item;
  item.id = id;
  item.parent = aParent;
  if (aParent == kNoItem) {
    item.row = static_cast<int>(mTopLevel.size());
    mTopLevel.push_back(id);
  } else {
    Item& parent = mItems[aParent - mFirstID];
    item.row = static_cast<int>(parent.children.size());
    item.level = parent.level + 1;
    parent.children.push_back(id);
  }
  mItems.push_back(std::move(item));
  return id;
}

GridItem BrowserTree::AppendCategory(GridItem aParent, const KrString& aName, KrGenCategory& aCategory) {
  if (aParent != kNoItem && !FindCategory(aParent))
    return kNoItem;
  const GridItem id = AppendItem(aParent);
  mCategories.push_back(std::make_unique<TreeItemData>(aName, mNotifier, id, aCategory, mShowsDisplayNames));
  TreeItemData& node = *mCategories.back();
  mItems.back().node = &node;
  // The node keeps the name in its place; of several children of one name the first is found.
  mCategoriesByName.try_emplace({aParent, node.GetName().ToUtf8()}, id);
  return id;
}

GridItem BrowserTree::AppendFeature(GridItem aParent, const KrString& aName, KrGenParameter& aParameter) {
  if (aParent != kNoItem && !FindCategory(aParent))
    return kNoItem;
  const GridItem id = AppendItem(aParent);
  mFeatures.push_back(std::make_unique<TreeItemData>(aName, mNotifier, id, aParameter, mShowsDisplayNames));
  mItems.back().node = mFeatures.back().get();
  return id;
}

GridItem BrowserTree::FindChild(GridItem aParent, const KrString& aName) const {
  const auto found = mCategoriesByName.find({aParent, aName.ToUtf8()});
  return found == mCategoriesByName.end() ? kNoItem : found->second;
}

void BrowserTree::SortByName() {
  std::stable_sort(mTopLevel.begin(), mTopLevel.end(), [this](GridItem aLeft, GridItem aRight) {
    return TreeItemData::IsNameLess(*Find(aLeft)->node, *Find(aRight)->node);
  });
  for (std::size_t row = 0; row < mTopLevel.size(); ++row)
    mItems[mTopLevel[row] - mFirstID].row = static_cast<int>(row);
  std::stable_sort(mFeatures.begin(), mFeatures.end(),
                   [](const auto& aLeft, const auto& aRight) { return TreeItemData::IsNameLess(*aLeft, *aRight); });
}

void BrowserTree::Clear() {
  mFirstID += mItems.size();
  mCategoriesByName.clear();
  mItems.clear();
  mTopLevel.clear();
  mFeatures.clear();
  mCategories.clear();
}

const BrowserTree::Item* BrowserTree::Find(GridItem aItem) const {
  return aItem >= mFirstID && aItem - mFirstID < mItems.size() ? &mItems[aItem - mFirstID] : nullptr;
}

TreeItemData* BrowserTree::FindFeature(GridItem aItem) const {
  const Item* const item = Find(aItem);
  return item && item->node->GetParameter() ? item->node : nullptr;
}

TreeItemData* BrowserTree::FindCategory(GridItem aItem) const {
  const Item* const item = Find(aItem);
  return item && item->node->GetCategory() ? item->node : nullptr;
}

} // namespace krgui
