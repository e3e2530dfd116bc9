#include "browser/propertiesgrid.h"

#include "browser/gridaccessible.h"
#include "browser/gridmodel.h"
#include "logic/browser/shownvalue.h"
#include "platform/plainline.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QPainter>
#include <QPointer>
#include <QScrollBar>
#include <QSocketNotifier>
#include <QStyledItemDelegate>

#include <algorithm>
#include <utility>

namespace krgui {

namespace {

/// What a row is higher than the platform's.
constexpr int kMoreRowHeight = 4;
/// How long messages are handled at a time before input and painting have their turn.
constexpr int kMostMessagesMs = 4;

/// Says how high a row is, whatever is in it.
class RowHeight final : public QStyledItemDelegate {
public:
  using QStyledItemDelegate::QStyledItemDelegate;
  QSize sizeHint(const QStyleOptionViewItem& aOption, const QModelIndex&) const override {
    QStyleOptionViewItem option = aOption;
    option.features = QStyleOptionViewItem::HasDisplay;
    option.text = QStringLiteral("Xg");
    option.font.setBold(true); // Selectors are.
    option.fontMetrics = QFontMetrics(option.font);
    const QStyle& style = option.widget != nullptr ? *option.widget->style() : *QApplication::style();
    const QSize size = style.sizeFromContents(QStyle::CT_ItemViewItem, &option, {}, option.widget);
    return {0, size.height() + kMoreRowHeight};
  }
};

/// As much of a text as can be seen in so many pixels, and a little more: nothing longer is ever measured.
QString ToShortLine(const KrString& aText, int aWidth) {
  return ToPlainLine(aText, GridPainter::GetMostCharacters(aWidth));
}

RowTint FindTint(const TreeItemData& aNode) {
  if (aNode.IsSelector())
    return RowTint::IsSelector;
  return aNode.HasSelectors() ? RowTint::HasSelectors : RowTint::None;
}

GridRect ToGridRect(const QRect& aRect) {
  return {aRect.left(), aRect.top(), aRect.left() + aRect.width(), aRect.top() + aRect.height()};
}

} // namespace

PropertiesGrid::PropertiesGrid(QWidget* aParent, std::shared_ptr<MessageQueue> aQueue)
    : QTreeView(aParent), mQueue(aQueue ? aQueue : std::make_shared<MessageQueue>()),
      mTree(std::make_unique<BrowserTree>(RowNotifier(mQueue))), mModel(new GridModel(*mTree, this)), mMenu(*mTree),
      mBoundary(*viewport(), [this] { MoveBoundary(); }), mHelp(*this, [this] { ShowHelpOfSelected(); }) {
  GridAccessible::Install();
  mEditors = std::make_unique<GridEditors>(static_cast<IEditorHost&>(*this));
  setObjectName(QStringLiteral("propertiesGrid"));
  setAccessibleName(QStringLiteral("Features"));
  setModel(mModel);
  setItemDelegate(new RowHeight(this));
  setUniformRowHeights(true);
  setHeaderHidden(true);
  setIndentation(0);
  setSelectionMode(SingleSelection);
  setEditTriggers(NoEditTriggers);
  setExpandsOnDoubleClick(false);
  setAnimated(false);
  setVerticalScrollMode(ScrollPerPixel);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  viewport()->setMouseTracking(true);
  header()->setMinimumSectionSize(0);
  header()->setStretchLastSection(false);
  header()->setSectionResizeMode(QHeaderView::Fixed);
  FitColumns();
  connect(this, &QTreeView::expanded, this,
          [this](const QModelIndex& aIndex) { GridAccessible::TellOpened(*this, mModel->ToItem(aIndex), true); });
  connect(this, &QTreeView::collapsed, this,
          [this](const QModelIndex& aIndex) { GridAccessible::TellOpened(*this, mModel->ToItem(aIndex), false); });
  if (!aQueue)
    WatchOwnQueue();
}

PropertiesGrid::~PropertiesGrid() {
  mSelection->End();
  mScreenHandler = nullptr;
  if (mNotifier != nullptr) {
    mNotifier->setEnabled(false);
    mQueue->Close();
  }
  mEditors->Abandon();
  // The selection goes while there is somebody to be told.
  setModel(nullptr);
}

void PropertiesGrid::Fill(const std::function<void(BrowserTree&)>& aChange) {
  const GridSelection::Action action(mSelection);
  if (GetSelectedItem() != kNoItem)
    mSelection->NoteChange(*this);
  mEditors->Abandon();
  mScreenRows.Forget();
  mWasValueCellClicked = false;
  mModel->BeginChange();
  aChange(*mTree);
  mModel->EndChange();
  for (const auto& node : mTree->GetFeatures()) {
    if (const BrowserTree::Item* item = mTree->Find(node->GetItem()))
      node->SetLevel(item->level);
  }
  ExpandAll();
  verticalScrollBar()->setValue(0);
  TellRowsMoved();
}

GridItem PropertiesGrid::Append(GridItem aParent, const std::function<GridItem(BrowserTree&)>& aAppend) {
  if (aParent != kNoItem && mTree->FindCategory(aParent) == nullptr)
    return kNoItem;
  const GridItem item = mModel->InsertRow(aParent, [&] { return aAppend(*mTree); });
  if (const BrowserTree::Item* row = mTree->Find(item); row != nullptr && row->node != nullptr)
    row->node->SetLevel(row->level);
  expand(mModel->ToIndex(aParent));
  return item;
}

void PropertiesGrid::Clear() {
  Fill([](BrowserTree& aTree) { aTree.Clear(); });
}

void PropertiesGrid::SetShowsDisplayNames(bool aShowsDisplayNames) {
  mTree->SetShowsDisplayNames(aShowsDisplayNames);
  Repaint();
}

void PropertiesGrid::WatchOwnQueue() {
  mQueue->Open();
  mNotifier = new QSocketNotifier(mQueue->GetWakeDescriptor(), QSocketNotifier::Read, this);
  connect(mNotifier, &QSocketNotifier::activated, this, [this] {
    const QPointer<PropertiesGrid> living(this);
    QElapsedTimer timer;
    timer.start();
    while (living && !timer.hasExpired(kMostMessagesMs)) {
      const std::optional<MessageQueue::Taken> message = mQueue->Take();
      if (!message)
        return;
      HandleMessage(message->Get());
    }
  });
}

bool PropertiesGrid::HandleMessage(const Message& aMessage) {
  switch (aMessage.number) {
  case kRowChangedMessage:
    HandleRowChanged(aMessage.first);
    return true;
  case kRepositionEditorMessage:
    mEditors->Reposition(aMessage.first != 0);
    return true;
  case kCommitMessage:
    mEditors->HandleCommit();
    return true;
  case kMarkOnScreenMessage:
    MarkOnScreen();
    return true;
  default:
    return false;
  }
}

/// Cheap for a row that is not on the screen: there may be thousands of them.
void PropertiesGrid::HandleRowChanged(GridItem aItem) {
  TreeItemData* node = mTree->FindFeature(aItem);
  if (node == nullptr)
    return;
  (void)node->GetValue(true);
  const bool isOnScreen = node->IsOnScreen();
  if (aItem == GetSelectedItem()) {
    const QPointer<PropertiesGrid> living(this);
    mEditors->UpdateRow(aItem);
    if (!living)
      return;
  }
  if (isOnScreen)
    RepaintRow(aItem);
  GridAccessible::TellRowChanged(*this, aItem, isOnScreen);
}

void PropertiesGrid::RepaintRow(GridItem aItem) {
  viewport()->update(FindRow(aItem));
}

void PropertiesGrid::Repaint() {
  viewport()->update();
}

void PropertiesGrid::PostRowOfSelected() {
  if (const GridItem item = GetSelectedItem(); item != kNoItem)
    mQueue->PostOnce({kRowChangedMessage, item, 1});
}

/// An editor that is not open would be opened first, for which the device is asked.
void PropertiesGrid::PostReposition() {
  if (GetEdited() != kNoItem)
    mQueue->PostOnce({kRepositionEditorMessage, 0, 0});
}

void PropertiesGrid::RepositionEditor() {
  if (GetEdited() != kNoItem)
    mEditors->Reposition(false);
}

GridItem PropertiesGrid::GetSelectedItem() const {
  const QModelIndex current = currentIndex();
  return current.isValid() && selectionModel()->isSelected(current) ? mModel->ToItem(current) : kNoItem;
}

void PropertiesGrid::Select(GridItem aItem) {
  const GridSelection::Action action(mSelection);
  mWasValueCellClicked = false;
  SelectItem(aItem);
}

void PropertiesGrid::SelectItem(GridItem aItem) {
  const QModelIndex index = mModel->ToIndex(aItem);
  if (!index.isValid()) {
    selectionModel()->clear();
    return;
  }
  // Parents that open on the way move rows.
  scrollTo(index);
  selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  TellRowsMoved();
}

/// The edit whose editor is still open is dropped; one that lost the focus before has been posted.
void PropertiesGrid::selectionChanged(const QItemSelection& aSelected, const QItemSelection& aDeselected) {
  QTreeView::selectionChanged(aSelected, aDeselected);
  // The view tells it of a new model, too: at the begin and at the end of the grid.
  if (mEditors == nullptr)
    return;
  mEditors->CloseWithoutWriting();
  PostRowOfSelected();
  mSelection->NoteChange(*this);
}

void PropertiesGrid::ShowFirst() {
  const GridSelection::Action action(mSelection);
  SelectItem(kNoItem);
  const std::vector<std::unique_ptr<TreeItemData>>& categories = mTree->GetCategories();
  const GridItem first = categories.empty() ? kNoItem : categories.front()->GetItem();
  if (const QModelIndex index = mModel->ToIndex(first); index.isValid())
    scrollTo(index, PositionAtTop);
  TellRowsMoved();
}

void PropertiesGrid::SetOpen(GridItem aItem, bool aIsOpen) {
  const QModelIndex index = mModel->ToIndex(aItem);
  if (!mModel->hasChildren(index) || isExpanded(index) == aIsOpen)
    return;
  const GridSelection::Action action(mSelection);
  if (!aIsOpen) {
    GridItem ancestor = GetSelectedItem();
    while (ancestor != kNoItem && ancestor != aItem)
      ancestor = mTree->Find(ancestor)->parent;
    if (ancestor == aItem && GetSelectedItem() != aItem)
      SelectItem(aItem);
  }
  setExpanded(index, aIsOpen);
  TellRowsMoved();
}

/// All at once: the view lays its rows out when the last one is known.
void PropertiesGrid::SetAllOpen(bool aIsOpen) {
  const GridSelection::Action action(mSelection);
  if (const GridItem selected = GetSelectedItem(); selected != kNoItem && !aIsOpen) {
    GridItem top = selected;
    while (mTree->Find(top)->parent != kNoItem)
      top = mTree->Find(top)->parent;
    if (top != selected)
      SelectItem(top);
  }
  // Told once, not for each.
  QSignalBlocker blocker(this);
  if (aIsOpen) {
    scheduleDelayedItemsLayout();
    for (const auto& category : mTree->GetCategories())
      expand(mModel->ToIndex(category->GetItem()));
    executeDelayedItemsLayout();
  } else {
    collapseAll();
  }
  blocker.unblock();
  GridAccessible::TellAllRowsChanged(*this);
  TellRowsMoved();
}

void PropertiesGrid::TellRowsMoved() {
  executeDelayedItemsLayout();
  MarkOnScreen();
  PostRowOfSelected();
  PostReposition();
  Repaint();
}

void PropertiesGrid::MarkOnScreen() {
  std::vector<GridItem> items;
  if (isVisible()) {
    QModelIndex index = indexAt({0, 0});
    while (index.isValid()) {
      const QRect row = visualRect(index);
      if (row.top() >= viewport()->height())
        break;
      items.push_back(mModel->ToItem(index));
      index = indexBelow(index);
    }
  }
  if (mScreenRows.Update(*mTree, std::move(items)) && mScreenHandler)
    mScreenHandler();
}

QRect PropertiesGrid::FindRow(GridItem aItem) const {
  const QRect cell = visualRect(mModel->ToIndex(aItem));
  return cell.isValid() ? QRect(0, cell.top(), viewport()->width(), cell.height()) : QRect();
}

RowGeometry PropertiesGrid::GetGeometry(GridItem aItem, const QRect& aRow) const {
  const BrowserTree::Item* item = mTree->Find(aItem);
  return {ToGridRect(aRow), item != nullptr ? item->level : 0, mBoundary.GetWidth()};
}

QRect PropertiesGrid::GetEditorRect(GridItem aItem) const {
  const QRect row = FindRow(aItem);
  if (!row.intersects(viewport()->rect()))
    return {};
  const GridRect editor = GetGeometry(aItem, row).GetEditor();
  return QStyle::visualRect(layoutDirection(), row,
                            QRect(editor.left, editor.top, editor.right - editor.left, editor.bottom - editor.top));
}

void PropertiesGrid::BringIntoView(GridItem aItem) {
  executeDelayedItemsLayout();
  scrollTo(mModel->ToIndex(aItem));
}

const GridPainter& PropertiesGrid::GetPainter() const {
  const double ratio = devicePixelRatioF();
  if (!mPainter || mPainterRatio != ratio) {
    mPainter.emplace(MakeGridLook(*this, hasFocus()));
    mPainterRatio = ratio;
  }
  return *mPainter;
}

GridRow PropertiesGrid::MakeRow(GridItem aItem, const QRect& aRow) const {
  GridRow row;
  row.geometry = GetGeometry(aItem, aRow);
  row.isSelected = aItem == GetSelectedItem();
  const BrowserTree::Item* item = mTree->Find(aItem);
  if (item == nullptr || item->node == nullptr)
    return row;
  const TreeItemData& node = *item->node;
  row.name = ToShortLine(node.GetShownName(), aRow.width());
  if (node.GetCategory() != nullptr) {
    row.isCategory = true;
    row.hasGlyph = !item->children.empty();
    row.isOpen = isExpanded(mModel->ToIndex(aItem));
    return row;
  }
  const RowSnapshot snapshot = node.GetSnapshot();
  if (GetEdited() != aItem)
    row.value = ToShortLine(GetShownValue(snapshot), aRow.width());
  row.tint = FindTint(node);
  row.isBold = node.IsSelector();
  row.isEditable = IsEditable(snapshot);
  row.hasError = snapshot.hasError;
  if (!mSearchText.IsEmpty())
    row.match = FindMatch(node.GetShownName(), mSearchText);
  return row;
}

void PropertiesGrid::drawRow(QPainter* aPainter, const QStyleOptionViewItem& aOption, const QModelIndex& aIndex) const {
  const QRect row(0, aOption.rect.top(), viewport()->width(), aOption.rect.height());
  GetPainter().Paint(*aPainter, MakeRow(mModel->ToItem(aIndex), row));
}

/// What a late layout asks for while it paints is posted.
void PropertiesGrid::paintEvent(QPaintEvent* aEvent) {
  mIsPainting = true;
  QTreeView::paintEvent(aEvent);
  mIsPainting = false;
  if (mModel->rowCount({}) == 0) {
    QPainter painter(viewport());
    GetPainter().PaintEmpty(painter, viewport()->rect());
  }
}

void PropertiesGrid::doItemsLayout() {
  QTreeView::doItemsLayout();
  mQueue->PostOnce({kMarkOnScreenMessage, 0, 0});
}

/// The view's own leaves out the last pixel, where the row's line is.
void PropertiesGrid::scrollTo(const QModelIndex& aIndex, ScrollHint aHint) {
  QTreeView::scrollTo(aIndex, aHint);
  const QRect row = visualRect(aIndex);
  const int hidden = row.bottom() - viewport()->rect().bottom();
  if (hidden > 0 && row.top() >= hidden)
    verticalScrollBar()->setValue(verticalScrollBar()->value() + hidden);
}

void PropertiesGrid::scrollContentsBy(int aX, int aY) {
  QTreeView::scrollContentsBy(aX, aY);
  if (aY == 0)
    return;
  Repaint();
  PostReposition();
  PostRowOfSelected();
  if (mIsPainting) {
    mQueue->PostOnce({kMarkOnScreenMessage, 0, 0});
    return;
  }
  MarkOnScreen();
  RepositionEditor();
}

void PropertiesGrid::resizeEvent(QResizeEvent* aEvent) {
  QTreeView::resizeEvent(aEvent);
  FitColumns();
  TellRowsMoved();
}

void PropertiesGrid::showEvent(QShowEvent* aEvent) {
  QTreeView::showEvent(aEvent);
  TellRowsMoved();
}

void PropertiesGrid::hideEvent(QHideEvent* aEvent) {
  mBoundary.Stop();
  QTreeView::hideEvent(aEvent);
  MarkOnScreen();
}

void PropertiesGrid::changeEvent(QEvent* aEvent) {
  mBoundary.NoteEvent(*aEvent);
  mPainter.reset();
  QTreeView::changeEvent(aEvent);
  PostReposition();
  Repaint();
}

void PropertiesGrid::FitColumns() {
  const int width = viewport()->width();
  const int nameWidth = std::min(mBoundary.GetWidth(), width);
  header()->resizeSection(GridModel::kNameColumn, nameWidth);
  header()->resizeSection(GridModel::kValueColumn, width - nameWidth);
}

void PropertiesGrid::MoveBoundary() {
  FitColumns();
  RepositionEditor();
  Repaint();
  PostReposition();
}

} // namespace krgui
