#include "browser/gridaccessible.h"

#include "browser/celleditoraccessible.h"
#include "browser/gridcellaccessible.h"
#include "browser/gridmodel.h"
#include "browser/propertiesgrid.h"

#include <QScrollBar>

#include <utility>
#include <vector>

namespace krgui {

namespace {

constexpr int kColumnCount = GridModel::kValueColumn + 1;

QAccessibleInterface* Make(const QString& aClassName, QObject* aObject) {
  auto* grid = aClassName == QLatin1String("krgui::PropertiesGrid") ? qobject_cast<PropertiesGrid*>(aObject) : nullptr;
  return grid != nullptr ? new GridAccessible(*grid) : CellEditorAccessible::Make(aObject);
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

/// Null while nobody listens.
GridAccessible* GridAccessible::FindListened(PropertiesGrid& aGrid) {
  return QAccessible::isActive() ? dynamic_cast<GridAccessible*>(QAccessible::queryAccessibleInterface(&aGrid))
                                 : nullptr;
}

void GridAccessible::TellRowChanged(PropertiesGrid& aGrid, std::uint64_t aItem, bool aIsOnScreen) {
  GridAccessible* accessible = FindListened(aGrid);
  if (accessible == nullptr)
    return;
  // Nobody knows of a value that was not asked for, but that it can be seen.
  if (aIsOnScreen && accessible->mCells.count({aItem, GridModel::kValueColumn}) == 0)
    accessible->TellText(QAccessible::NameChanged, accessible->FindChild(aItem, GridModel::kValueColumn));
  for (const int column : {GridModel::kNameColumn, GridModel::kValueColumn})
    accessible->TellCell(aItem, column);
}

void GridAccessible::TellOpened(PropertiesGrid& aGrid, std::uint64_t aItem, bool aIsOpen) {
  GridAccessible* accessible = FindListened(aGrid);
  const int row = accessible != nullptr ? accessible->FindRow(aItem) : -1;
  if (row < 0)
    return;
  QAccessible::State changed;
  changed.expanded = true;
  changed.collapsed = true;
  QAccessibleStateChangeEvent event(&aGrid, changed);
  event.setChild(accessible->FindChild(aItem, GridModel::kNameColumn));
  QAccessible::updateAccessibility(&event);
  const int count = accessible->CountShownBelow(aItem);
  if (count > 0)
    accessible->TellRows(aIsOpen ? QAccessibleTableModelChangeEvent::RowsInserted
                                 : QAccessibleTableModelChangeEvent::RowsRemoved,
                         row + 1, row + count);
}

void GridAccessible::TellAllRowsChanged(PropertiesGrid& aGrid) {
  if (GridAccessible* accessible = FindListened(aGrid))
    accessible->TellRows(QAccessibleTableModelChangeEvent::ModelReset, -1, -1);
}

void GridAccessible::TellFocus(PropertiesGrid& aGrid) {
  GridAccessible* accessible = FindListened(aGrid);
  const int child = accessible != nullptr ? accessible->FindChild(aGrid.GetSelected(), GridModel::kNameColumn) : -1;
  if (child >= 0)
    accessible->TellText(QAccessible::Focus, child);
}

/// What a cell says now that it did not say before.
void GridAccessible::TellCell(std::uint64_t aItem, int aColumn) {
  const auto found = mCells.find({aItem, aColumn});
  const QAccessibleInterface* cell =
      found != mCells.end() ? QAccessible::accessibleInterface(found->second.id) : nullptr;
  const int child = cell != nullptr ? FindChild(aItem, aColumn) : -1;
  if (child < 0)
    return;
  const Said now = Ask(*cell);
  const Said before = std::exchange(found->second.said, now);
  if (now.name != before.name)
    TellText(QAccessible::NameChanged, child);
  if (now.description != before.description)
    TellText(QAccessible::DescriptionChanged, child);
  QAccessible::State changed;
  changed.disabled = now.state.disabled != before.state.disabled;
  changed.readOnly = now.state.readOnly != before.state.readOnly;
  changed.editable = now.state.editable != before.state.editable;
  if (changed.disabled || changed.readOnly || changed.editable) {
    QAccessibleStateChangeEvent event(&GetGrid(), changed);
    event.setChild(child);
    QAccessible::updateAccessibility(&event);
  }
}

void GridAccessible::TellText(QAccessible::Event aEvent, int aChild) {
  if (aChild < 0)
    return;
  QAccessibleEvent event(&GetGrid(), aEvent);
  event.setChild(aChild);
  QAccessible::updateAccessibility(&event);
}

void GridAccessible::TellRows(QAccessibleTableModelChangeEvent::ModelChangeType aChange, int aFirst, int aLast) {
  QAccessibleTableModelChangeEvent event(&GetGrid(), aChange);
  event.setFirstRow(aFirst);
  event.setLastRow(aLast);
  QAccessible::updateAccessibility(&event);
}

GridAccessible::Said GridAccessible::Ask(const QAccessibleInterface& aCell) {
  return {aCell.text(QAccessible::Name), aCell.text(QAccessible::Description), aCell.state()};
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
  return FindChild(cell->GetItem(), cell->columnIndex());
}

int GridAccessible::FindChild(std::uint64_t aItem, int aColumn) const {
  const int row = FindRow(aItem);
  return row < 0 ? -1 : (row + 1) * kColumnCount + aColumn;
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
    return QAccessible::accessibleInterface(found->second.id);
  auto* cell = new GridCellAccessible(GetGrid(), aItem, aColumn);
  mCells[key] = {QAccessible::registerAccessibleInterface(cell), Ask(*cell)};
  return cell;
}

int GridAccessible::FindRow(std::uint64_t aItem) const {
  if (GetGrid().model() == nullptr || GetGrid().GetTree().Find(aItem) == nullptr || !IsShown(GetGrid(), aItem))
    return -1;
  const QRect row = GetGrid().FindRow(aItem);
  return row.height() > 0 ? (row.top() + GetGrid().verticalScrollBar()->value()) / row.height() : -1;
}

std::uint64_t GridAccessible::FindItem(int aRow) const {
  const std::vector<GridItem>& top = GetGrid().GetTree().GetTopLevel();
  if (aRow < 0 || top.empty() || GetGrid().model() == nullptr)
    return kNoItem;
  const int height = GetGrid().FindRow(top.front()).height();
  const QModelIndex index = GetGrid().indexAt({0, aRow * height - GetGrid().verticalScrollBar()->value()});
  return index.isValid() ? index.internalId() : kNoItem;
}

int GridAccessible::columnCount() const {
  return kColumnCount;
}

/// How many rows are to be seen below a category while it is open.
int GridAccessible::CountShownBelow(std::uint64_t aItem) const {
  const BrowserTree& tree = GetGrid().GetTree();
  const auto& model = *static_cast<const GridModel*>(GetGrid().model());
  std::size_t count = 0;
  std::vector<GridItem> open = {aItem};
  while (!open.empty()) {
    const BrowserTree::Item& item = *tree.Find(open.back());
    open.pop_back();
    count += item.children.size();
    for (const GridItem child : item.children) {
      if (GetGrid().isExpanded(model.ToIndex(child)))
        open.push_back(child);
    }
  }
  return static_cast<int>(count);
}

int GridAccessible::rowCount() const {
  // At the end of the grid.
  if (GetGrid().model() == nullptr)
    return 0;
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
  const QAbstractItemModel* model = GetGrid().model();
  return model == nullptr ? QString() : model->headerData(aColumn, Qt::Horizontal, Qt::DisplayRole).toString();
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
  for (const auto& [key, cell] : mCells)
    QAccessible::deleteAccessibleInterface(cell.id);
  mCells.clear();
}

} // namespace krgui
