// The property grid's mouse, keys, tooltips and context menu.

#include "browser/gridaccessible.h"
#include "browser/gridmodel.h"
#include "browser/propertiesgrid.h"
#include "logic/browser/gridtools.h"
#include "platform/plainline.h"
#include "platform/toqstring.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QToolTip>

namespace krgui {

GridItem PropertiesGrid::FindItemAt(const QPoint& aPoint) const {
  return mModel->ToItem(indexAt({0, aPoint.y()}));
}

int PropertiesGrid::GetRowX(const QPoint& aPoint) const {
  return layoutDirection() == Qt::RightToLeft ? viewport()->width() - 1 - aPoint.x() : aPoint.x();
}

bool PropertiesGrid::viewportEvent(QEvent* aEvent) {
  if (aEvent->type() == QEvent::ToolTip) {
    const auto& help = *static_cast<const QHelpEvent*>(aEvent);
    ShowToolTip(help.pos(), help.globalPos());
    return true;
  }
  mBoundary.NoteEvent(*aEvent);
  return QTreeView::viewportEvent(aEvent);
}

void PropertiesGrid::ShowToolTip(const QPoint& aPoint, const QPoint& aScreenPoint) {
  const GridItem item = FindItemAt(aPoint);
  const QRect row = FindRow(item);
  const GridRect icon = GetGeometry(item, row).GetErrorIcon();
  const int x = GetRowX(aPoint);
  const bool isOnIcon = x >= icon.left && x < icon.right && aPoint.y() >= icon.top && aPoint.y() < icon.bottom;
  const KrString text = GetToolText(*mTree, FindTool(*mTree, item, isOnIcon));
  if (text.IsEmpty()) {
    QToolTip::hideText();
    return;
  }
  QRect area = row;
  const TreeItemData* const feature = mTree->FindFeature(item);
  if (isOnIcon && feature && feature->HasError())
    area = QStyle::visualRect(layoutDirection(), row,
                              QRect(QPoint(icon.left, icon.top), QPoint(icon.right - 1, icon.bottom - 1)));
  QToolTip::showText(aScreenPoint, ToPlainToolTip(ToQString(text)), viewport(), area);
}

/// Also of a row that was scrolled away: the user asks for what is selected.
void PropertiesGrid::ShowHelpOfSelected() {
  const GridItem item = GetSelectedItem();
  const QString text = ToQString(GetHelpText(*mTree, item));
  if (text.isEmpty())
    return;
  scrollTo(mModel->ToIndex(item));
  const QRect row = FindRow(item);
  const QPoint corner = layoutDirection() == Qt::RightToLeft ? row.bottomRight() : row.bottomLeft();
  mHelp.Show(text, viewport()->mapToGlobal(corner), *viewport());
}

void PropertiesGrid::mousePressEvent(QMouseEvent* aEvent) {
  const GridSelection::Action action(mSelection);
  TakePress(*aEvent);
  mEditors->NotePressHandled();
}

void PropertiesGrid::TakePress(QMouseEvent& aEvent) {
  if (mBoundary.TakePress(aEvent, GetRowX(aEvent.pos())) || aEvent.button() != Qt::LeftButton)
    return;
  const GridItem item = FindItemAt(aEvent.pos());
  if (mTree->FindCategory(item) != nullptr) {
    const RowGeometry geometry = GetGeometry(item, FindRow(item));
    if (geometry.IsInGlyphBox(GetRowX(aEvent.pos()), aEvent.pos().y()))
      SetOpen(item, !isExpanded(mModel->ToIndex(item)));
  }
  PressRow(aEvent.pos());
}

/// A press beside all rows leaves the selection as it is.
void PropertiesGrid::PressRow(const QPoint& aPoint) {
  const GridItem item = FindItemAt(aPoint);
  if (item == kNoItem)
    return;
  const bool isFeature = mTree->FindFeature(item) != nullptr;
  mWasValueCellClicked = isFeature && GetGeometry(item, FindRow(item)).IsInValueCell(GetRowX(aPoint));
  SelectItem(item);
  if (!isFeature)
    mEditors->CloseByCategoryPress();
}

void PropertiesGrid::mouseMoveEvent(QMouseEvent* aEvent) {
  (void)mBoundary.TakeMove(*aEvent, GetRowX(aEvent->pos()));
}

void PropertiesGrid::mouseReleaseEvent(QMouseEvent* aEvent) {
  (void)mBoundary.TakeRelease(*aEvent);
}

/// The second press of a double click comes as this alone: on a feature it is another press.
void PropertiesGrid::mouseDoubleClickEvent(QMouseEvent* aEvent) {
  const GridItem item = FindItemAt(aEvent->pos());
  if (mTree->FindCategory(item) == nullptr) {
    mousePressEvent(aEvent);
    return;
  }
  if (aEvent->button() == Qt::LeftButton)
    SetOpen(item, !isExpanded(mModel->ToIndex(item)));
}

void PropertiesGrid::contextMenuEvent(QContextMenuEvent* aEvent) {
  if (aEvent->reason() != QContextMenuEvent::Mouse) {
    ShowMenuAtSelected();
    return;
  }
  const QPoint point = viewport()->mapFromGlobal(aEvent->globalPos());
  const GridItem item = FindItemAt(point);
  const QPointer<PropertiesGrid> living(this);
  if (item != kNoItem && item != GetSelectedItem())
    Select(item);
  if (living)
    mMenu.Show(*this, item, aEvent->globalPos());
}

/// The row comes into view, so that the user sees what the menu is of.
void PropertiesGrid::ShowMenuAtSelected() {
  const GridItem item = GetSelectedItem();
  scrollTo(mModel->ToIndex(item));
  const QRect visible = FindRow(item).intersected(viewport()->rect());
  const QPoint point = visible.isEmpty() ? viewport()->rect().center() : visible.center();
  mMenu.Show(*this, item, viewport()->mapToGlobal(point));
}

void PropertiesGrid::keyPressEvent(QKeyEvent* aEvent) {
  const GridSelection::Action action(mSelection);
  mWasValueCellClicked = false;
  if (aEvent->key() == Qt::Key_Escape) {
    // The window's, unless it is still held from an editor, where it ended the edit.
    aEvent->setAccepted(aEvent->isAutoRepeat());
    return;
  }
  if (aEvent->matches(QKeySequence::Copy)) {
    CopyRowPart(*mTree, GetSelectedItem(), RowPart::Row);
    return;
  }
  if (aEvent->key() == Qt::Key_F10 && aEvent->modifiers() == Qt::ShiftModifier) {
    ShowMenuAtSelected();
    return;
  }
  if (!HandleEnter(*aEvent) && !HandleBoundary(*aEvent) && !HandleOpening(*aEvent))
    QTreeView::keyPressEvent(aEvent);
}

/// A key that is held repeats itself: only its end is a key-up.
void PropertiesGrid::keyReleaseEvent(QKeyEvent* aEvent) {
  if (!aEvent->isAutoRepeat())
    mIsEnterHandled = false;
  QTreeView::keyReleaseEvent(aEvent);
}

/// Enter that is still held from an editor, where it ended the edit, comes as a repetition.
bool PropertiesGrid::HandleEnter(const QKeyEvent& aEvent) {
  if (aEvent.key() != Qt::Key_Return && aEvent.key() != Qt::Key_Enter)
    return false;
  if (!mIsEnterHandled && !aEvent.isAutoRepeat()) {
    mIsEnterHandled = true;
    mQueue->PostOnce({kRepositionEditorMessage, 1, 0});
  }
  return true;
}

/// The boundary goes where the arrow points.
bool PropertiesGrid::HandleBoundary(const QKeyEvent& aEvent) {
  const bool isRight = aEvent.key() == Qt::Key_Right;
  if ((!isRight && aEvent.key() != Qt::Key_Left) || (aEvent.modifiers() & ~Qt::KeypadModifier) != Qt::ControlModifier)
    return false;
  mBoundary.Step(isRight == (layoutDirection() == Qt::LeftToRight));
  return true;
}

/// The keys that open and close categories, so that each does it exactly once.
bool PropertiesGrid::HandleOpening(const QKeyEvent& aEvent) {
  const GridItem item = GetSelectedItem();
  const bool isMirrored = layoutDirection() == Qt::RightToLeft;
  constexpr Qt::KeyboardModifiers kOthers = ~(Qt::KeypadModifier | Qt::ShiftModifier);
  if (item == kNoItem || (aEvent.modifiers() & kOthers) != 0)
    return false;
  switch (aEvent.key()) {
  case Qt::Key_Plus:
    SetOpen(item, true);
    return true;
  case Qt::Key_Minus:
    SetOpen(item, false);
    return true;
  case Qt::Key_Asterisk:
    OpenBranch(item);
    return true;
  case Qt::Key_Left:
  case Qt::Key_Right:
    if ((aEvent.key() == Qt::Key_Right) != isMirrored)
      StepInto(item);
    else
      StepOut(item);
    return true;
  default:
    return false;
  }
}

void PropertiesGrid::StepInto(GridItem aItem) {
  const QModelIndex index = mModel->ToIndex(aItem);
  if (isExpanded(index) && mModel->hasChildren(index))
    SelectItem(mTree->Find(aItem)->children.front());
  else
    SetOpen(aItem, true);
}

void PropertiesGrid::StepOut(GridItem aItem) {
  const QModelIndex index = mModel->ToIndex(aItem);
  if (isExpanded(index) && mModel->hasChildren(index))
    SetOpen(aItem, false);
  else if (const GridItem parent = mTree->Find(aItem)->parent; parent != kNoItem)
    SelectItem(parent);
}

void PropertiesGrid::OpenBranch(GridItem aItem) {
  const QSignalBlocker blocker(this);
  scheduleDelayedItemsLayout();
  std::vector<GridItem> open = {aItem};
  while (!open.empty()) {
    const BrowserTree::Item* item = mTree->Find(open.back());
    open.pop_back();
    expand(mModel->ToIndex(item->id));
    open.insert(open.end(), item->children.begin(), item->children.end());
  }
  executeDelayedItemsLayout();
  GridAccessible::TellAllRowsChanged(*this);
  TellRowsMoved();
}

/// Unlike the view's own: nothing becomes the current row that the user did not select.
void PropertiesGrid::focusInEvent(QFocusEvent* aEvent) {
  QAbstractScrollArea::focusInEvent(aEvent);
  mPainter.reset();
  PostRowOfSelected();
  RepaintRow(GetSelectedItem());
  GridAccessible::TellFocus(*this);
}

void PropertiesGrid::focusOutEvent(QFocusEvent* aEvent) {
  QTreeView::focusOutEvent(aEvent);
  // The release of an Enter that moved the focus goes to whoever has it now.
  mIsEnterHandled = false;
  // What was clicked is over once the user works elsewhere: an editor that opens later does not take the keyboard away.
  const QWidget* const next = QApplication::focusWidget();
  if (next && !isAncestorOf(next))
    mWasValueCellClicked = false;
  mPainter.reset();
  PostRowOfSelected();
  RepaintRow(GetSelectedItem());
}

} // namespace krgui
