#pragma once
// The property grid: paints rows from their nodes' snapshots, lets the user select, open, close and copy them, and
// hosts the editors. Where things are in a row is left to logic/browser/rowgeometry.h, editing to GridEditors, the rows
// to BrowserTree.

#include "browser/columnboundary.h"
#include "browser/grideditors.h"
#include "browser/gridmenu.h"
#include "browser/gridpainter.h"
#include "browser/gridselection.h"
#include "browser/rowhelp.h"
#include "browser/screenrows.h"
#include "logic/browser/browsertree.h"
#include "logic/frame/messagequeue.h"

#include <QTreeView>

#include <functional>
#include <memory>
#include <optional>

class QSocketNotifier;

namespace krgui {

class GridModel;

/// Thread: user interface; other threads reach it by its queue alone.
/// Ownership: a widget, which belongs to its parent.
class PropertiesGrid final : public QTreeView, private IEditorHost {
  Q_OBJECT

public:
  /// aQueue: the messages of the window that it is in, which hands them over by HandleMessage; null to have a queue of
  /// its own that it watches itself.
  PropertiesGrid(QWidget* aParent, std::shared_ptr<MessageQueue> aQueue);
  ~PropertiesGrid() override;

  /// Changes the rows: aChange gets the tree while the view does not look at it. Nothing is selected and all
  /// categories are open afterwards.
  void Fill(const std::function<void(BrowserTree&)>& aChange);
  /// Appends one row under a category, or at the top level for kNoItem, and leaves the others as they are; kNoItem for
  /// a parent that is no category. aAppend appends it.
  GridItem Append(GridItem aParent, const std::function<GridItem(BrowserTree&)>& aAppend);
  void Clear();
  const BrowserTree& GetTree() const { return *mTree; }
  /// Which name the rows show, those that are there and those to come; repaints. Reads nothing from the device.
  void SetShowsDisplayNames(bool aShowsDisplayNames);
  /// True when the message was the grid's. May end the grid.
  bool HandleMessage(const Message& aMessage);
  const std::shared_ptr<MessageQueue>& GetQueue() const { return mQueue; }

  void SetVisibility(KrGenVisibility aVisibility) { mVisibility = aVisibility; }
  /// Lower case; empty for none. Does not repaint.
  void SetSearchText(const KrString& aText) { mSearchText = aText; }
  GridItem GetSelected() const { return GetSelectedItem(); }
  /// The row that an editor is open on; kNoItem for none.
  GridItem GetEdited() const { return mEditors->GetEdited(); }
  /// Selects a row, opens its parents and brings it into view; kNoItem selects none.
  void Select(GridItem aItem);
  void ExpandAll() { SetAllOpen(true); }
  /// A selected row that vanishes gives the selection to the category that hides it.
  void CollapseAll() { SetAllOpen(false); }
  /// Selects none and shows the first category on top.
  void ShowFirst();
  /// Opens or closes a category; closing one with the selected row in it selects the category.
  void SetOpen(GridItem aItem, bool aIsOpen);
  /// Notes in the nodes which rows are on the screen.
  void MarkOnScreen();
  /// Repaints what is on the screen.
  void Repaint();
  /// A row's place in the viewport, whether or not it is on the screen; empty for one in a closed category.
  QRect FindRow(GridItem aItem) const;
  RowGeometry GetGeometry(GridItem aItem, const QRect& aRow) const;

  bool HasChanged() const { return mHasChanged; }
  void SetChanged(bool aHasChanged) { mHasChanged = aHasChanged; }
  /// Called after another row, or none, has been selected; may end the grid.
  void SetSelectionHandler(std::function<void()> aHandler) { mSelection->SetHandler(std::move(aHandler)); }
  /// Called when other rows than before are on the screen: a refresh has to look at them. Must not end the grid.
  void SetScreenHandler(std::function<void()> aHandler) { mScreenHandler = std::move(aHandler); }
  /// The table of the context menu (res/menus.h), and who performs commands that are not the grid's own; may end the
  /// grid.
  void SetContextMenu(int aMenuID, std::function<void(int)> aPerform) { mMenu.SetTable(aMenuID, std::move(aPerform)); }

  void doItemsLayout() override;
  void scrollTo(const QModelIndex& aIndex, ScrollHint aHint = EnsureVisible) override;

protected:
  void drawRow(QPainter* aPainter, const QStyleOptionViewItem& aOption, const QModelIndex& aIndex) const override;
  void paintEvent(QPaintEvent* aEvent) override;
  void resizeEvent(QResizeEvent* aEvent) override;
  void showEvent(QShowEvent* aEvent) override;
  void hideEvent(QHideEvent* aEvent) override;
  void changeEvent(QEvent* aEvent) override;
  void scrollContentsBy(int aX, int aY) override;
  void selectionChanged(const QItemSelection& aSelected, const QItemSelection& aDeselected) override;
  bool viewportEvent(QEvent* aEvent) override;
  void mousePressEvent(QMouseEvent* aEvent) override;
  void mouseMoveEvent(QMouseEvent* aEvent) override;
  void mouseReleaseEvent(QMouseEvent* aEvent) override;
  void mouseDoubleClickEvent(QMouseEvent* aEvent) override;
  void contextMenuEvent(QContextMenuEvent* aEvent) override;
  void keyPressEvent(QKeyEvent* aEvent) override;
  void keyReleaseEvent(QKeyEvent* aEvent) override;
  void focusInEvent(QFocusEvent* aEvent) override;
  void focusOutEvent(QFocusEvent* aEvent) override;

private:
  QWidget& GetEditorParent() override { return *viewport(); }
  MessageQueue& GetMessages() override { return *mQueue; }
  GridItem GetSelectedItem() const override;
  TreeItemData* FindFeatureNode(GridItem aItem) const override { return mTree->FindFeature(aItem); }
  QRect GetEditorRect(GridItem aItem) const override;
  void BringIntoView(GridItem aItem) override;
  KrGenVisibility GetEntryVisibility() const override { return mVisibility; }
  bool WasValueCellClicked() const override { return mWasValueCellClicked; }
  void RepaintRow(GridItem aItem) override;
  void NoteWritten() override { mHasChanged = true; }
  void FocusGrid() override { setFocus(Qt::OtherFocusReason); }
  bool HasGridFocus() const override { return hasFocus(); }
  /// Not the window around, in which the grid may be embedded: boxes end with the grid.
  QWidget* GetMessageOwner() override { return this; }

  void WatchOwnQueue();
  void HandleRowChanged(GridItem aItem);
  void PostRowOfSelected();
  void PostReposition();
  void RepositionEditor();
  void SelectItem(GridItem aItem);
  void SetAllOpen(bool aIsOpen);
  void TellRowsMoved();
  void FitColumns();
  void MoveBoundary();
  const GridPainter& GetPainter() const;
  GridRow MakeRow(GridItem aItem, const QRect& aRow) const;
  GridItem FindItemAt(const QPoint& aPoint) const;
  /// The distance from the rows' leading edge.
  int GetRowX(const QPoint& aPoint) const;
  void TakePress(QMouseEvent& aEvent);
  void PressRow(const QPoint& aPoint);
  void ShowToolTip(const QPoint& aPoint, const QPoint& aScreenPoint);
  void ShowMenuAtSelected();
  void ShowHelpOfSelected();
  bool HandleEnter(const QKeyEvent& aEvent);
  bool HandleBoundary(const QKeyEvent& aEvent);
  bool HandleOpening(const QKeyEvent& aEvent);
  void StepOut(GridItem aItem);
  void StepInto(GridItem aItem);
  void OpenBranch(GridItem aItem);

  std::shared_ptr<MessageQueue> mQueue;
  std::unique_ptr<BrowserTree> mTree;
  GridModel* mModel; ///< A child.
  GridMenu mMenu;
  ColumnBoundary mBoundary;
  ScreenRows mScreenRows;
  RowHelp mHelp;
  std::shared_ptr<GridSelection> mSelection = std::make_shared<GridSelection>();
  std::function<void()> mScreenHandler;
  mutable std::optional<GridPainter> mPainter; ///< None after a change of the look.
  mutable double mPainterRatio = 0;            ///< Of the screen that it paints for.
  QSocketNotifier* mNotifier = nullptr;        ///< A child; null where a window hands over messages.
  KrGenVisibility mVisibility = KrGenVisibility::Beginner;
  KrString mSearchText;
  bool mHasChanged = false;
  bool mWasValueCellClicked = false;
  bool mIsEnterHandled = false;
  bool mIsPainting = false;
  std::unique_ptr<GridEditors> mEditors;
};

} // namespace krgui
