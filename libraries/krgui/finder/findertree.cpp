#include "finder/findertree.h"

#include "finder/cuttextdelegate.h"
#include "finder/finderpictures.h"
#include "platform/plainline.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QLabel>
#include <QScrollBar>
#include <QTreeWidget>

#include <algorithm>
#include <utility>

namespace krgui {

namespace {

constexpr int kIconSize = 16;
constexpr int kHintMargin = 12;
constexpr int kInfoRole = Qt::UserRole;
constexpr int kIconRole = Qt::UserRole + 1;

QTreeWidgetItem* ToRow(TreeItem aItem) {
  return static_cast<QTreeWidgetItem*>(aItem);
}

void SetIcon(QTreeWidgetItem& aRow, int aIcon) {
  aRow.setIcon(0, GetFinderPicture(aIcon));
  aRow.setData(0, kIconRole, aIcon);
}

} // namespace

/// Keeps the hint in the space below the last item, and hears who wants the menu: the toolkit's signal does not say
/// whether a key or the mouse asked.
class FinderTree::Watcher : public QObject {
public:
  Watcher(FinderTree& aOwner, QTreeWidget& aTree, QLabel& aHint) : mOwner(aOwner), mTree(&aTree), mHint(&aHint) {
    aTree.installEventFilter(this);
    aTree.viewport()->installEventFilter(this);
  }

  void Place() {
    if (!mTree || !mHint)
      return;
    const QRect all = mTree->viewport()->rect();
    QRect space = all.adjusted(kHintMargin, FindBottom() + kHintMargin, -kHintMargin, -kHintMargin);
    const int height = mHint->heightForWidth(space.width());
    // Where the items fill the control it covers the last of them, at the bottom edge.
    const bool hasRoom = height <= space.height();
    if (!hasRoom)
      space = QRect(all.left(), all.bottom() + 1 - height - kHintMargin, all.width(), height + kHintMargin);
    mHint->setAutoFillBackground(!hasRoom);
    mHint->setGeometry(space);
    mHint->setVisible(!mHint->text().isEmpty());
  }

  /// Where the space below the last item begins.
  int FindBottom() const {
    const QTreeWidgetItem* last = mTree->topLevelItem(mTree->topLevelItemCount() - 1);
    if (last && last->childCount() > 0)
      last = last->child(last->childCount() - 1);
    return last ? std::max(0, mTree->visualItemRect(last).bottom() + 1) : 0;
  }

  bool eventFilter(QObject*, QEvent* aEvent) override {
    if (aEvent->type() == QEvent::Resize || aEvent->type() == QEvent::Show)
      Place();
    // The toolkit tells of the double-clicks of any button.
    if (aEvent->type() == QEvent::MouseButtonDblClick)
      return static_cast<QMouseEvent*>(aEvent)->button() != Qt::LeftButton;
    if (aEvent->type() != QEvent::ContextMenu)
      return false;
    mOwner.AskForMenu(*static_cast<QContextMenuEvent*>(aEvent));
    return true;
  }

private:
  FinderTree& mOwner;
  const QPointer<QTreeWidget> mTree;
  const QPointer<QLabel> mHint;
};

FinderTree::FinderTree(QTreeWidget& aWidget, Callbacks aCallbacks)
    : mWidget(&aWidget), mCallbacks(std::move(aCallbacks)), mHint(new QLabel(aWidget.viewport())),
      mWatcher(std::make_unique<Watcher>(*this, aWidget, *mHint)) {
  aWidget.setHeaderHidden(true);
  aWidget.setIconSize({kIconSize, kIconSize});
  // Every pass expands the roots again, so there is nothing to fold.
  aWidget.setItemsExpandable(false);
  aWidget.setRootIsDecorated(false);
  aWidget.setEditTriggers(QAbstractItemView::NoEditTriggers);
  aWidget.setItemDelegate(new CutTextDelegate(&aWidget));
  aWidget.clear();
  mHint->setObjectName(QStringLiteral("hint"));
  mHint->setTextFormat(Qt::PlainText);
  mHint->setWordWrap(true);
  mHint->setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
  mHint->setBackgroundRole(QPalette::Base);
  mHint->setForegroundRole(QPalette::Text); // Placeholders are too faint to be read.
  mHint->setAttribute(Qt::WA_TransparentForMouseEvents);
  mHint->hide();
}

FinderTree::~FinderTree() = default;

TreeItem FinderTree::Append(TreeItem aParent, const KrString& aText, int aIcon, TreeItemInfo& aInfo) {
  auto* row = new QTreeWidgetItem;
  row->setText(0, ToPlainLine(aText));
  SetIcon(*row, aIcon);
  row->setData(0, kInfoRole, QVariant::fromValue<void*>(&aInfo));
  if (aParent)
    ToRow(aParent)->addChild(row);
  else
    mWidget->addTopLevelItem(row);
  return row;
}

/// A selected one leaves nothing selected: the toolkit's next best would be another camera than the user meant.
void FinderTree::Delete(TreeItem aItem) {
  QTreeWidgetItem* row = ToRow(aItem);
  if (row == mWidget->currentItem())
    ClearSelection();
  delete row;
}

void FinderTree::DeleteAll() {
  ClearSelection();
  mWidget->clear();
}

void FinderTree::SyncText(TreeItem aItem, const KrString& aText) {
  const QString text = ToPlainLine(aText);
  if (ToRow(aItem)->text(0) != text)
    ToRow(aItem)->setText(0, text);
}

void FinderTree::SyncIcon(TreeItem aItem, int aIcon) {
  if (ToRow(aItem)->data(0, kIconRole).toInt() != aIcon)
    SetIcon(*ToRow(aItem), aIcon);
}

void FinderTree::ExpandRoots() {
  for (int i = 0; i < mWidget->topLevelItemCount(); ++i) {
    if (QTreeWidgetItem* root = mWidget->topLevelItem(i); !root->isExpanded())
      root->setExpanded(true);
  }
}

void FinderTree::ClearSelection() {
  mWidget->clearSelection();
  mWidget->setCurrentItem(nullptr);
}

void FinderTree::Select(TreeItem aItem) {
  mWidget->setCurrentItem(ToRow(aItem));
}

int FinderTree::GetScroll() const {
  return mWidget->verticalScrollBar()->value();
}

void FinderTree::SetScroll(int aScroll) {
  // Else the scroll bar's range is still that of an empty control.
  mWidget->doItemsLayout();
  mWidget->verticalScrollBar()->setValue(aScroll);
}

TreeItemInfo* FinderTree::GetSelected() const {
  if (!mWidget)
    return nullptr;
  const QList<QTreeWidgetItem*> selected = mWidget->selectedItems();
  return selected.isEmpty() ? nullptr : static_cast<TreeItemInfo*>(selected.front()->data(0, kInfoRole).value<void*>());
}

void FinderTree::UpdateLists(TreeItemInfo& aInfo) {
  mCallbacks.updateLists(aInfo);
}

bool FinderTree::HasDevices() const {
  for (int i = 0; i < mWidget->topLevelItemCount(); ++i) {
    if (mWidget->topLevelItem(i)->childCount() > 0)
      return true;
  }
  return false;
}

/// The mouse means the item under it, a key the one that is selected.
void FinderTree::AskForMenu(const QContextMenuEvent& aEvent) {
  const bool isMouse = aEvent.reason() == QContextMenuEvent::Mouse;
  QTreeWidgetItem* row =
      isMouse ? mWidget->itemAt(mWidget->viewport()->mapFromGlobal(aEvent.globalPos())) : mWidget->currentItem();
  if (!row)
    return;
  mWidget->setCurrentItem(row);
  const QRect visible = mWidget->visualItemRect(row).intersected(mWidget->viewport()->rect());
  mCallbacks.showMenu(isMouse ? aEvent.globalPos() : mWidget->viewport()->mapToGlobal(visible.center()));
}

void FinderTree::ShowHint(const QString& aText) {
  if (!mHint)
    return;
  mHint->setText(aText);
  mWatcher->Place();
}

} // namespace krgui
