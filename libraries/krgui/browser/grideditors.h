#pragma once
// The in-place editors of the property grid: one combo box, two edit boxes, an up-down control and a button, made when
// they are first needed, of which at most one edit is open. What is written is left to logic/browser/featureediting.h,
// where an editor stands to the grid.

#include "krgenicam/krgentypes.h"
#include "logic/browser/griditem.h"
#include "logic/frame/messagequeue.h"

#include <memory>

class QRect;
class QWidget;

namespace krgui {

class TreeItemData;

/// What the editors need of their grid. Every call may find that rows have gone meanwhile.
class IEditorHost {
public:
  /// Where editors live: the grid's viewport.
  virtual QWidget& GetEditorParent() = 0;
  virtual MessageQueue& GetMessages() = 0;
  virtual GridItem GetSelectedItem() const = 0;
  virtual TreeItemData* FindFeatureNode(GridItem aItem) const = 0;
  /// The cell that an editor covers in the parent's coordinates; empty when the row is not on the screen.
  virtual QRect GetEditorRect(GridItem aItem) const = 0;
  /// Scrolls a row to where all of it can be seen.
  virtual void BringIntoView(GridItem aItem) = 0;
  virtual KrGenVisibility GetEntryVisibility() const = 0;
  /// The selected row was clicked in its value cell: the editor that opens on it takes the focus at once.
  virtual bool WasValueCellClicked() const = 0;
  virtual void RepaintRow(GridItem aItem) = 0;
  /// The user has written a value.
  virtual void NoteWritten() = 0;
  virtual void FocusGrid() = 0;
  virtual bool HasGridFocus() const = 0;
  /// The widget that message boxes belong to, and end with.
  virtual QWidget* GetMessageOwner() = 0;

protected:
  ~IEditorHost() = default;
};

/// Thread: user interface. Ownership: the grid's; the editor widgets are children of the grid's viewport.
class GridEditors {
public:
  explicit GridEditors(IEditorHost& aHost);
  ~GridEditors();
  GridEditors(const GridEditors&) = delete;
  GridEditors& operator=(const GridEditors&) = delete;

  /// The selected row has changed or is to be shown: opens, keeps or closes the editor on it. Reads the device when it
  /// opens one, which it does on the screen only; another value for an open one comes from the node's snapshot. Not
  /// from a paint event.
  void UpdateRow(GridItem aItem);
  /// Moves the open editor to its row and shows it; with aTakesFocus the row is brought into view and the editor gets
  /// the focus, and where none is open, one is opened on the selected row first. Without aTakesFocus the device is not
  /// asked.
  void Reposition(bool aTakesFocus);
  /// The item being edited; kNoItem for none.
  GridItem GetEdited() const;
  /// Hides the editor; what the user typed is dropped, but for an edit that has already lost the focus, which is
  /// written.
  void CloseWithoutWriting();
  /// The press that is being handled goes to a category: nothing is written, not even the edit that this press has
  /// ended by taking the focus.
  void CloseByCategoryPress();
  /// A press of the mouse on the grid has been handled.
  void NotePressHandled();
  /// The posted writing of an edit that lost the focus.
  void HandleCommit();
  /// The rows are about to go: drops the edit and what was posted for it.
  void Abandon();
  /// The open editor has the focus.
  bool HasFocus() const;

private:
  class Body;
  std::unique_ptr<Body> mBody;
};

} // namespace krgui
