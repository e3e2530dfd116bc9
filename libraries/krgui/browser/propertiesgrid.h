#pragma once
// The property grid: paints rows from their nodes' snapshots, lets the user select, open, close and copy them, and
// hosts the editors. Where things are in a row is left to logic/browser/rowgeometry.h, editing to GridEditors, the rows
// to BrowserTree.

#include "browser/grideditors.h"
#include "logic/browser/browsertree.h"
#include "logic/frame/messagequeue.h"

#include <QTreeView>

#include <functional>
#include <memory>

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
  void Clear();
  const BrowserTree& GetTree() const { return *mTree; }
  /// True when the message was the grid's.
  bool HandleMessage(const Message& aMessage);
  const std::shared_ptr<MessageQueue>& GetQueue() const { return mQueue; }

  void SetVisibility(KrGenVisibility aVisibility);
  /// Lower case; empty for none. Does not repaint.
  void SetSearchText(const KrString& aText);
  GridItem GetSelected() const;
  void Select(GridItem aItem);
  void ExpandAll();
  void CollapseAll();
  /// Selects none, opens or closes all categories, and shows the first of them on top.
  void ShowFirst();
  /// Notes in the nodes which rows are on the screen.
  void MarkOnScreen();
  /// Repaints what is on the screen.
  void Repaint();

  bool HasChanged() const;
  void SetChanged(bool aHasChanged);
  /// Each is called after it happened; either may end the grid.
  void SetSelectionHandler(std::function<void()> aHandler);
  /// The table of the context menu (res/menus.h), and who performs commands that are not the grid's own.
  void SetContextMenu(int aMenuID, std::function<void(int)> aPerform);

private:
  // IEditorHost and the rest are for propertiesgrid.cpp.
  std::shared_ptr<MessageQueue> mQueue;
  std::unique_ptr<BrowserTree> mTree;
};

} // namespace krgui
