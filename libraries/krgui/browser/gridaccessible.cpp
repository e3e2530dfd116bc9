#include "browser/gridaccessible.h"

#include "browser/gridcellaccessible.h"
#include "browser/gridmodel.h"
#include "browser/propertiesgrid.h"

#include <QScrollBar>

#include <algorithm>

namespace krgui {

namespace {

constexpr int kColumnCount = GridModel::kValueColumn + 1;

QAccessibleInterface* Make(const QString& aClassName, QObject* aObject) {
  auto* grid = aClassName == QLatin1String("krgui::PropertiesGrid") ? qobject_cast<PropertiesGrid*>(aObject) : nullptr;
  return grid != nullptr ? new GridAccessible(*grid) : nullptr;
}

bool IsShown(const PropertiesGrid& aGrid, GridItem aItem) {
  const BrowserTree& tree = aGrid.GetTree();
  const auto& model = *static_cast<const GridModel*>(aGrid.model());
  for (GridItem parent = tree.Find(aItem)->parent; parent != kNoItem; parent = tree.Find(parent)->parent) {
    if (!aGrid.isExpanded(model.ToIndex(parent)))
      return false;
  }
  return true;
}

} // namespace

GridAccessible::GridAccessible(PropertiesGrid& aGrid) : QAccessibleWidget(&aGrid, QAccessible::Tree) {}

GridAccessible::~GridAccessible() {
  ForgetCells();
}

void GridAccessible::Install() {
  static const bool isInstalled = [] {
    QAccessible::installFactory(Make);
    return true;
  }();
  (void)isInstalled;
}

void GridAccessible::TellValueChanged(PropertiesGrid& aGrid, std::uint64_t aItem) {
  if (!QAccessible::isActive())
    return;
  const auto* accessible = dynamic_cast<const GridAccessible*>(QAccessible::queryAccessibleInterface(&aGrid));
  const int row = accessible != nullptr ? accessible->FindRow(aItem) : -1;
  if (row < 0)
    return;
  QAccessibleEvent event(&aGrid, QAccessible::NameChanged);
  event.setChild((row + 1) * kColumnCount + GridModel::kValueColumn);
  QAccessible::updateAccessibility(&event);
}

PropertiesGrid& GridAccessible::GetGrid() const {
  return *static_cast<PropertiesGrid*>(widget());
}

void* GridAccessible::interface_cast(QAccessible::InterfaceType aType) {
  if (aType == QAccessible::TableInterface)
    return static_cast<QAccessibleTableInterface*>(this);
  return QAccessibleWidget::interface_cast(aType);
}

int GridAccessible::childCount() const {
  return (rowCount() + 1) * kColumnCount;
}

QAccessibleInterface* GridAccessible::child(int aIndex) const {
  if (aIndex < 0)
    return nullptr;
  const int column = aIndex % kColumnCount;
  return aIndex < kColumnCount ? GetCell(kNoItem, column) : cellAt(aIndex / kColumnCount - 1, column);
}

QAccessibleInterface* GridAccessible::childAt(int aX, int aY) const {
  const QModelIndex index = GetGrid().indexAt(GetGrid().viewport()->mapFromGlobal(QPoint(aX, aY)));
  return index.isValid() ? GetCell(index.internalId(), index.column()) : nullptr;
}

int GridAccessible::indexOfChild(const QAccessibleInterface* aChild) const {
  const auto* cell = dynamic_cast<const GridCellAccessible*>(aChild);
  if (cell == nullptr)
    return -1;
  if (cell->GetItem() == kNoItem)
    return cell->columnIndex();
  const int row = FindRow(cell->GetItem());
  return row < 0 ? -1 : (row + 1) * kColumnCount + cell->columnIndex();
}

QAccessibleInterface* GridAccessible::focusChild() const {
  const GridItem selected = GetGrid().GetSelected();
  if (GetGrid().hasFocus() && selected != kNoItem)
    return GetCell(selected, GridModel::kNameColumn);
  return QAccessibleWidget::focusChild();
}

QAccessibleInterface* GridAccessible::cellAt(int aRow, int aColumn) const {
  const GridItem item = FindItem(aRow);
  return item != kNoItem && aColumn >= 0 && aColumn < kColumnCount ? GetCell(item, aColumn) : nullptr;
}

QAccessibleInterface* GridAccessible::GetCell(std::uint64_t aItem, int aColumn) const {
  const CellKey key(aItem, aColumn);
  if (const auto found = mCells.find(key); found != mCells.end())
    return QAccessible::accessibleInterface(found->second);
  auto* cell = new GridCellAccessible(GetGrid(), aItem, aColumn);
  mCells.emplace(key, QAccessible::registerAccessibleInterface(cell));
  return cell;
}

int GridAccessible::FindRow(std::uint64_t aItem) const {
  if (GetGrid().GetTree().Find(aItem) == nullptr || !IsShown(GetGrid(), aItem))
    return -1;
  const QRect row = GetGrid().FindRow(aItem);
  return row.height() > 0 ? (row.top() + GetGrid().verticalScrollBar()->value()) / row.height() : -1;
}

std::uint64_t GridAccessible::FindItem(int aRow) const {
  const std::vector<GridItem>& top = GetGrid().GetTree().GetTopLevel();
  if (aRow < 0 || top.empty())
    return kNoItem;
  const int height = GetGrid().FindRow(top.front()).height();
  const QModelIndex index = GetGrid().indexAt({0, aRow * height - GetGrid().verticalScrollBar()->value()});
  return index.isValid() ? index.internalId() : kNoItem;
}

int GridAccessible::columnCount() const {
  return kColumnCount;
}

int GridAccessible::rowCount() const {
  const BrowserTree& tree = GetGrid().GetTree();
  const auto& model = *static_cast<const GridModel*>(GetGrid().model());
  std::size_t count = tree.GetTopLevel().size();
  for (const auto& category : tree.GetCategories()) {
    const GridItem item = category->GetItem();
    if (GetGrid().isExpanded(model.ToIndex(item)) && IsShown(GetGrid(), item))
      count += tree.Find(item)->children.size();
  }
  return static_cast<int>(count);
}

int GridAccessible::selectedCellCount() const {
  return selectedRowCount() * kColumnCount;
}

QList<QAccessibleInterface*> GridAccessible::selectedCells() const {
  const GridItem selected = GetGrid().GetSelected();
  if (selected == kNoItem)
    return {};
  return {GetCell(selected, GridModel::kNameColumn), GetCell(selected, GridModel::kValueColumn)};
}

QString GridAccessible::columnDescription(int aColumn) const {
  return GetGrid().model()->headerData(aColumn, Qt::Horizontal, Qt::DisplayRole).toString();
}

QString GridAccessible::rowDescription(int aRow) const {
  const QAccessibleInterface* cell = cellAt(aRow, GridModel::kNameColumn);
  return cell != nullptr ? cell->text(QAccessible::Name) : QString();
}

int GridAccessible::selectedRowCount() const {
  return GetGrid().GetSelected() != kNoItem ? 1 : 0;
}

QList<int> GridAccessible::selectedRows() const {
  const int row = FindRow(GetGrid().GetSelected());
  return row < 0 ? QList<int>() : QList<int>{row};
}

bool GridAccessible::isRowSelected(int aRow) const {
  const GridItem item = FindItem(aRow);
  return item != kNoItem && item == GetGrid().GetSelected();
}

bool GridAccessible::selectRow(int aRow) {
  const GridItem item = FindItem(aRow);
  if (item != kNoItem)
    GetGrid().Select(item);
  return item != kNoItem;
}

bool GridAccessible::unselectRow(int aRow) {
  const bool isSelected = isRowSelected(aRow);
  if (isSelected)
    GetGrid().Select(kNoItem);
  return isSelected;
}

/// Cells know their rows by items, which stay the same but in another filling.
void GridAccessible::modelChange(QAccessibleTableModelChangeEvent* aEvent) {
  if (aEvent->modelChangeType() == QAccessibleTableModelChangeEvent::ModelReset)
    ForgetCells();
}

void GridAccessible::ForgetCells() {
  for (const auto& [key, id] : mCells)
    QAccessible::deleteAccessibleInterface(id);
  mCells.clear();
}

} // namespace krgui
