#include "browser/gridmodel.h"

#include "logic/browser/gridtools.h"
#include "logic/browser/shownvalue.h"
#include "platform/plainline.h"

namespace krgui {

static_assert(sizeof(quintptr) >= sizeof(GridItem), "an index carries its item");

const std::vector<GridItem>& GridModel::GetChildren(const QModelIndex& aParent) const {
  static const std::vector<GridItem>& none = *new std::vector<GridItem>; // Never destroyed.
  if (!aParent.isValid())
    return mTree.GetTopLevel();
  const BrowserTree::Item* item = aParent.column() == kNameColumn ? mTree.Find(ToItem(aParent)) : nullptr;
  return item != nullptr ? item->children : none;
}

QModelIndex GridModel::ToIndex(GridItem aItem, int aColumn) const {
  const BrowserTree::Item* item = mTree.Find(aItem);
  return item != nullptr ? createIndex(item->row, aColumn, static_cast<quintptr>(aItem)) : QModelIndex();
}

QModelIndex GridModel::index(int aRow, int aColumn, const QModelIndex& aParent) const {
  const std::vector<GridItem>& children = GetChildren(aParent);
  if (aRow < 0 || static_cast<std::size_t>(aRow) >= children.size() || aColumn < 0 || aColumn > kValueColumn)
    return {};
  return createIndex(aRow, aColumn, static_cast<quintptr>(children[static_cast<std::size_t>(aRow)]));
}

QModelIndex GridModel::parent(const QModelIndex& aIndex) const {
  const BrowserTree::Item* item = mTree.Find(ToItem(aIndex));
  return item != nullptr ? ToIndex(item->parent) : QModelIndex();
}

int GridModel::rowCount(const QModelIndex& aParent) const {
  return static_cast<int>(GetChildren(aParent).size());
}

int GridModel::columnCount(const QModelIndex&) const {
  return kValueColumn + 1;
}

bool GridModel::hasChildren(const QModelIndex& aParent) const {
  return !GetChildren(aParent).empty();
}

QVariant GridModel::data(const QModelIndex& aIndex, int aRole) const {
  const BrowserTree::Item* item = mTree.Find(ToItem(aIndex));
  if (item == nullptr || item->node == nullptr)
    return {};
  const TreeItemData& node = *item->node;
  if (aRole == Qt::AccessibleDescriptionRole)
    return ToPlainLine(GetTroubleText(node));
  if (aRole != Qt::DisplayRole)
    return {};
  if (aIndex.column() == kNameColumn)
    return ToPlainLine(node.GetShownName());
  return node.GetParameter() != nullptr ? ToPlainLine(GetShownValue(node.GetSnapshot())) : QString();
}

QVariant GridModel::headerData(int aSection, Qt::Orientation aOrientation, int aRole) const {
  if (aOrientation != Qt::Horizontal || aRole != Qt::DisplayRole)
    return {};
  return aSection == kNameColumn ? QStringLiteral("Name") : QStringLiteral("Value");
}

Qt::ItemFlags GridModel::flags(const QModelIndex& aIndex) const {
  const GridItem item = ToItem(aIndex);
  if (mTree.Find(item) == nullptr)
    return Qt::NoItemFlags;
  constexpr Qt::ItemFlags kRow = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
  return mTree.FindFeature(item) != nullptr ? kRow | Qt::ItemNeverHasChildren : kRow;
}

} // namespace krgui
