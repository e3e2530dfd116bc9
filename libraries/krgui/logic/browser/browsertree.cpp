#include "logic/browser/browsertree.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace krgui {

namespace {

/// For one more, so that appending it cannot fail.
template <typename Element>
void MakeRoom(std::vector<Element>& aList) {
  if (aList.size() == aList.capacity())
    aList.reserve(std::max<std::size_t>(4, 2 * aList.size()));
}

} // namespace

std::size_t BrowserTree::ChildNameHash::operator()(const ChildName& aName) const {
  const std::size_t nameHash = std::hash<std::string_view>()(aName.name);
  return nameHash ^ (std::hash<GridItem>()(aName.parent) + 0x9E3779B97F4A7C15U + (nameHash << 6) + (nameHash >> 2));
}

void BrowserTree::SetShowsDisplayNames(bool aShowsDisplayNames) {
  mShowsDisplayNames = aShowsDisplayNames;
  for (const Item& item : mItems)
    item.node->SetShowsDisplayNames(aShowsDisplayNames);
}

template <typename Content>
GridItem BrowserTree::AppendNode(GridItem aParent, const KrString& aName, Content& aContent,
                                 std::vector<std::unique_ptr<TreeItemData>>& aNodes) {
  if (aParent != kNoItem && !FindCategory(aParent))
    return kNoItem;
  MakeRoom(mItems);
  Item* const parent = aParent == kNoItem ? nullptr : &mItems[aParent - mFirstID];
  std::vector<GridItem>& siblings = parent ? parent->children : mTopLevel;
  MakeRoom(siblings);
  MakeRoom(aNodes);
  const GridItem id = mFirstID + mItems.size();
  auto node = std::make_unique<TreeItemData>(aName, mNotifier, id, aContent, mShowsDisplayNames);

  // From here on nothing can fail: no row is ever without its node.
  Item item;
  item.id = id;
  item.parent = aParent;
  item.row = static_cast<int>(siblings.size());
  item.level = parent ? parent->level + 1 : 0;
  item.node = node.get();
  item.index = aNodes.size();
  mItems.push_back(std::move(item));
  siblings.push_back(id);
  aNodes.push_back(std::move(node));
  return id;
}

GridItem BrowserTree::AppendCategory(GridItem aParent, const KrString& aName, KrGenCategory& aCategory) {
  const GridItem id = AppendNode(aParent, aName, aCategory, mCategories);
  // The node keeps the name in its place; of several children of one name the first is found.
  if (id != kNoItem)
    mCategoriesByName.try_emplace({aParent, mCategories.back()->GetName().ToUtf8()}, id);
  return id;
}

GridItem BrowserTree::AppendFeature(GridItem aParent, const KrString& aName, KrGenParameter& aParameter) {
  return AppendNode(aParent, aName, aParameter, mFeatures);
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
  for (std::size_t index = 0; index < mFeatures.size(); ++index)
    mItems[mFeatures[index]->GetItem() - mFirstID].index = index;
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
