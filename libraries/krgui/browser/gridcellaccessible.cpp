#include "browser/gridcellaccessible.h"

#include "browser/gridaccessible.h"
#include "browser/gridmodel.h"
#include "browser/propertiesgrid.h"
#include "browser/updowncontrol.h"
#include "logic/browser/gridtools.h"
#include "platform/toqstring.h"

#include <algorithm>

namespace krgui {

GridCellAccessible::GridCellAccessible(PropertiesGrid& aGrid, GridItem aItem, int aColumn)
    : mGrid(&aGrid), mItem(aItem), mColumn(aColumn) {}

GridCellAccessible::~GridCellAccessible() = default;

void* GridCellAccessible::interface_cast(QAccessible::InterfaceType aType) {
  if (aType == QAccessible::TableCellInterface)
    return static_cast<QAccessibleTableCellInterface*>(this);
  if (aType == QAccessible::ActionInterface)
    return static_cast<QAccessibleActionInterface*>(this);
  return nullptr;
}

const GridModel& GridCellAccessible::GetModel() const {
  return *static_cast<const GridModel*>(mGrid->model());
}

const BrowserTree::Item* GridCellAccessible::FindItem() const {
  return mGrid && mGrid->model() != nullptr ? mGrid->GetTree().Find(mItem) : nullptr;
}

bool GridCellAccessible::isValid() const {
  // A grid that is about to end has no model any more.
  return mGrid && mGrid->model() != nullptr && (mItem == kNoItem || FindItem() != nullptr);
}

QWindow* GridCellAccessible::window() const {
  return mGrid ? mGrid->window()->windowHandle() : nullptr;
}

QAccessibleInterface* GridCellAccessible::parent() const {
  return QAccessible::queryAccessibleInterface(mGrid.data());
}

QList<QWidget*> GridCellAccessible::FindEditors() const {
  QList<QWidget*> editors;
  if (!mGrid || mColumn != GridModel::kValueColumn || mItem == kNoItem || mGrid->GetEdited() != mItem)
    return editors;
  for (QWidget* editor : mGrid->viewport()->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
    if (editor->isVisible())
      editors.push_back(editor);
  }
  // What is edited in comes first, whatever was made or raised when.
  std::stable_partition(editors.begin(), editors.end(),
                        [](const QWidget* aEditor) { return qobject_cast<const UpDownControl*>(aEditor) == nullptr; });
  return editors;
}

int GridCellAccessible::childCount() const {
  return static_cast<int>(FindEditors().size());
}

QAccessibleInterface* GridCellAccessible::child(int aIndex) const {
  return QAccessible::queryAccessibleInterface(FindEditors().value(aIndex));
}

QAccessibleInterface* GridCellAccessible::childAt(int aX, int aY) const {
  for (QWidget* editor : FindEditors()) {
    if (editor->rect().contains(editor->mapFromGlobal(QPoint(aX, aY))))
      return QAccessible::queryAccessibleInterface(editor);
  }
  return nullptr;
}

int GridCellAccessible::indexOfChild(const QAccessibleInterface* aChild) const {
  return aChild != nullptr ? static_cast<int>(FindEditors().indexOf(qobject_cast<QWidget*>(aChild->object()))) : -1;
}

QString GridCellAccessible::text(QAccessible::Text aText) const {
  if (!isValid())
    return {};
  if (mItem == kNoItem)
    return aText == QAccessible::Name ? GetModel().headerData(mColumn, Qt::Horizontal, Qt::DisplayRole).toString()
                                      : QString();
  const QModelIndex index = GetModel().ToIndex(mItem, mColumn);
  if (aText == QAccessible::Description)
    return index.data(Qt::AccessibleDescriptionRole).toString();
  if (aText == QAccessible::Help)
    return ToQString(GetHelpText(mGrid->GetTree(), mItem));
  const bool isAsked =
      aText == QAccessible::Name || (aText == QAccessible::Value && mColumn == GridModel::kValueColumn);
  return isAsked ? index.data(Qt::DisplayRole).toString() : QString();
}

QRect GridCellAccessible::rect() const {
  if (!isValid() || mItem == kNoItem)
    return {};
  QRect cell = mGrid->visualRect(GetModel().ToIndex(mItem, mColumn));
  return cell.isEmpty() ? QRect() : cell.translated(mGrid->viewport()->mapToGlobal(QPoint()));
}

QAccessible::Role GridCellAccessible::role() const {
  if (mItem == kNoItem)
    return QAccessible::ColumnHeader;
  return mColumn == GridModel::kNameColumn ? QAccessible::TreeItem : QAccessible::Cell;
}

QAccessible::State GridCellAccessible::state() const {
  QAccessible::State state;
  const BrowserTree::Item* item = FindItem();
  if (item == nullptr) {
    state.invalid = !isValid();
    state.invisible = true; // There is no header to be seen.
    return state;
  }
  const QRect place = mGrid->visualRect(GetModel().ToIndex(mItem, mColumn));
  state.invisible = !mGrid->isVisible();
  state.offscreen = !place.intersects(mGrid->viewport()->rect());
  state.selectable = true;
  state.focusable = true;
  state.selected = isSelected();
  state.focused = state.selected && mGrid->hasFocus() && mColumn == GridModel::kNameColumn;
  if (item->node->GetCategory() != nullptr)
    AddCategoryState(state);
  else
    AddFeatureState(state);
  return state;
}

void GridCellAccessible::AddCategoryState(QAccessible::State& aState) const {
  aState.readOnly = true;
  const QModelIndex index = GetModel().ToIndex(mItem);
  if (mColumn != GridModel::kNameColumn || !GetModel().hasChildren(index))
    return;
  const bool isOpen = mGrid->isExpanded(index);
  aState.expandable = true;
  aState.expanded = isOpen;
  aState.collapsed = !isOpen;
}

/// Nothing is known of a feature that was not read yet but that it cannot be written yet.
void GridCellAccessible::AddFeatureState(QAccessible::State& aState) const {
  const RowSnapshot row = FindItem()->node->GetSnapshot();
  const bool isThere = row.access.isImplemented && row.access.isAvailable;
  aState.disabled = row.isRead && !isThere;
  aState.readOnly = !row.access.isWritable || !isThere || row.isTooLongToEdit;
  aState.editable = !aState.readOnly && mColumn == GridModel::kValueColumn;
}

QList<QAccessibleInterface*> GridCellAccessible::columnHeaderCells() const {
  QAccessibleInterface* grid = parent();
  return grid != nullptr ? QList<QAccessibleInterface*>{grid->child(mColumn)} : QList<QAccessibleInterface*>();
}

QList<QAccessibleInterface*> GridCellAccessible::rowHeaderCells() const {
  const auto* grid = dynamic_cast<const GridAccessible*>(parent());
  if (grid == nullptr || mItem == kNoItem || mColumn == GridModel::kNameColumn)
    return {};
  return {grid->GetCell(mItem, GridModel::kNameColumn)};
}

int GridCellAccessible::rowIndex() const {
  const auto* grid = dynamic_cast<const GridAccessible*>(parent());
  return grid != nullptr ? grid->FindRow(mItem) : -1;
}

bool GridCellAccessible::isSelected() const {
  return mGrid && mItem != kNoItem && mGrid->GetSelected() == mItem;
}

QStringList GridCellAccessible::actionNames() const {
  const BrowserTree::Item* item = FindItem();
  if (item == nullptr)
    return {};
  return item->children.empty() ? QStringList{setFocusAction()} : QStringList{setFocusAction(), toggleAction()};
}

void GridCellAccessible::doAction(const QString& aName) {
  if (FindItem() == nullptr)
    return;
  const QPointer<PropertiesGrid> grid = mGrid;
  if (aName == toggleAction()) {
    grid->SetOpen(mItem, !grid->isExpanded(GetModel().ToIndex(mItem)));
  } else if (aName == setFocusAction()) {
    grid->setFocus();
    grid->Select(mItem);
  }
}

} // namespace krgui
