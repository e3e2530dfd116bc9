#pragma once
// The property grid's context menu and what it copies. Commands that are not the grid's own are left to whoever gave
// the menu's table.

#include "logic/browser/browsertree.h"
#include "logic/browser/rowcopying.h"

#include <QPointer>

#include <functional>

class QMenu;
class QPoint;
class QWidget;

namespace krgui {

/// Puts a part of a row into the clipboard; nothing where the row is not there or has no such part. Waits for the
/// device where it has more of the value than the row.
bool CopyRowPart(const BrowserTree& aTree, GridItem aItem, RowPart aPart);

/// Thread: user interface. Ownership: borrows the tree; the menu that is open belongs to the grid's widget.
class GridMenu {
public:
  explicit GridMenu(const BrowserTree& aTree);

  void SetTable(int aMenuID, std::function<void(int)> aPerform);
  /// Shows the menu for a row at a point of the screen; nothing where it could do nothing or is open already. Does not
  /// wait for the user: what the user chooses is done to the row if it is still there then.
  void Show(QWidget& aOwner, GridItem aItem, const QPoint& aPoint);

private:
  bool DisableWhatMakesNoSense(const QMenu& aMenu, GridItem aItem) const;
  void Perform(GridItem aItem, int aCommand) const;

  const BrowserTree& mTree;
  int mMenuID;
  std::function<void(int)> mPerform;
  QPointer<QMenu> mOpen;
};

} // namespace krgui
