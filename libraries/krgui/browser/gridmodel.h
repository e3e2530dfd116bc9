#pragma once
// The browser tree as the item model that the grid's view walks: two columns, name and value. What rows look like is
// left to the grid's own painting; the texts here are for search by keys and for assistive technology.

#include "logic/browser/browsertree.h"

#include <QAbstractItemModel>

namespace krgui {

/// Thread: user interface. Ownership: borrows the tree, which changes between BeginChange and EndChange, or by
/// InsertRow alone. Asks no device.
class GridModel final : public QAbstractItemModel {
public:
  static constexpr int kNameColumn = 0;
  static constexpr int kValueColumn = 1;

  GridModel(const BrowserTree& aTree, QObject* aParent) : QAbstractItemModel(aParent), mTree(aTree) {}

  void BeginChange() { beginResetModel(); }
  void EndChange() { endResetModel(); }
  /// Calls aAppend, which appends exactly one row under aParent, and gives its item.
  template <typename Append>
  GridItem InsertRow(GridItem aParent, Append aAppend);

  /// kNoItem for an invalid index.
  GridItem ToItem(const QModelIndex& aIndex) const { return aIndex.isValid() ? aIndex.internalId() : kNoItem; }
  /// Invalid for an item that is not there.
  QModelIndex ToIndex(GridItem aItem, int aColumn = kNameColumn) const;

  QModelIndex index(int aRow, int aColumn, const QModelIndex& aParent) const override;
  QModelIndex parent(const QModelIndex& aIndex) const override;
  int rowCount(const QModelIndex& aParent) const override;
  int columnCount(const QModelIndex& aParent) const override;
  bool hasChildren(const QModelIndex& aParent) const override;
  QVariant data(const QModelIndex& aIndex, int aRole) const override;
  QVariant headerData(int aSection, Qt::Orientation aOrientation, int aRole) const override;
  Qt::ItemFlags flags(const QModelIndex& aIndex) const override;

private:
  const std::vector<GridItem>& GetChildren(const QModelIndex& aParent) const;

  const BrowserTree& mTree;
};

template <typename Append>
GridItem GridModel::InsertRow(GridItem aParent, Append aAppend) {
  const QModelIndex parentIndex = ToIndex(aParent);
  const int row = rowCount(parentIndex);
  beginInsertRows(parentIndex, row, row);
  const GridItem item = aAppend();
  endInsertRows();
  return item;
}

} // namespace krgui
