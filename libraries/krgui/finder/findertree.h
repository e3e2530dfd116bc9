#pragma once
// The finder's tree on the screen: an item for each node, and a word in its empty space while there is no device. What
// is shown is decided by the model, what the word says by a rule.

#include "logic/finder/findermodel.h"

#include <QPointer>

#include <functional>
#include <memory>

class QContextMenuEvent;
class QLabel;
class QPoint;
class QTreeWidget;

namespace krgui {

/// Thread: user interface. Ownership: works on the dialog's control, which may end before it.
class FinderTree final : public IFinderTree {
public:
  struct Callbacks {
    std::function<void(TreeItemInfo&)> updateLists;     ///< The selected node has changed.
    std::function<void(const QPoint& aPoint)> showMenu; ///< For the selected item, at a point of the screen.
  };

  FinderTree(QTreeWidget& aWidget, Callbacks aCallbacks);
  ~FinderTree() override;
  FinderTree(const FinderTree&) = delete;
  FinderTree& operator=(const FinderTree&) = delete;

  TreeItem Append(TreeItem aParent, const KrString& aText, int aIcon, TreeItemInfo& aInfo) override;
  void Delete(TreeItem aItem) override;
  void DeleteAll() override;
  void SyncText(TreeItem aItem, const KrString& aText) override;
  void SyncIcon(TreeItem aItem, int aIcon) override;
  void ExpandRoots() override;
  void ClearSelection() override;
  TreeItemInfo* GetSelected() const override;
  void UpdateLists(TreeItemInfo& aInfo) override;

  void Select(TreeItem aItem);
  /// How far the items are scrolled, in units of the control's own.
  int GetScroll() const;
  void SetScroll(int aScroll);
  /// Whether there is an item for a device.
  bool HasDevices() const;
  /// The word in the empty space, or over the last items where they fill the control; an empty text takes it away.
  void ShowHint(const QString& aText);

private:
  class Watcher;
  void AskForMenu(const QContextMenuEvent& aEvent);

  const QPointer<QTreeWidget> mWidget;
  const Callbacks mCallbacks;
  QPointer<QLabel> mHint;
  std::unique_ptr<Watcher> mWatcher;
};

} // namespace krgui
