#include "platform/ctooltiplistctrl.h"

#include "logic/frame/dropdownplacement.h"
#include "platform/plainline.h"
#include "platform/topixelrect.h"

#include <QAbstractListModel>
#include <QComboBox>
#include <QCursor>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScreen>
#include <QScrollBar>
#include <QToolTip>

#include <algorithm>
#include <iterator>

namespace krgui {

namespace {

/// What is shown of a tooltip at most.
constexpr qsizetype kTooltipLength = 1023;

constexpr struct {
  Qt::Key key;
  Qt::Key meaning;
} kArrows[] = {{Qt::Key_Left, Qt::Key_Up}, {Qt::Key_Right, Qt::Key_Down}};

/// The keys that close the list without choosing: those that opened it do so, too.
bool IsCloseKey(const QKeyEvent& aEvent) {
  const bool isVertical = aEvent.key() == Qt::Key_Up || aEvent.key() == Qt::Key_Down;
  return aEvent.key() == Qt::Key_Escape || aEvent.key() == Qt::Key_F4 ||
         (isVertical && (aEvent.modifiers() & Qt::AltModifier) != 0);
}

bool CanBeChosen(const QModelIndex& aIndex) {
  constexpr Qt::ItemFlags kNeeded = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
  return aIndex.isValid() && (aIndex.flags() & kNeeded) == kNeeded;
}

/// The screen that a list of this combo box is seen on.
QRect FindDesktop(const QRect& aComboBox, const QComboBox& aFallback) {
  const QScreen* screen = QGuiApplication::screenAt(aComboBox.center());
  return (screen != nullptr ? screen : aFallback.screen())->availableGeometry();
}

} // namespace

/// The combo box's items, as many as there were when the list was shown.
class CTooltipListCtrl::Items : public QAbstractListModel {
public:
  explicit Items(CTooltipListCtrl& aList) : QAbstractListModel(&aList), mList(aList) {}

  void Show(int aCount) {
    beginResetModel();
    mCount = aCount;
    endResetModel();
  }
  int rowCount(const QModelIndex& aParent) const override { return aParent.isValid() ? 0 : mCount; }
  QVariant data(const QModelIndex& aIndex, int aRole) const override {
    switch (aRole) {
    case Qt::DisplayRole:
    case Qt::DecorationRole:
      return mList.mComboBox ? mList.mComboBox->itemData(aIndex.row(), aRole) : QVariant();
    case Qt::ToolTipRole: {
      const QString text = mList.GetToolText(aIndex.row() + 1);
      return text.isEmpty() ? QVariant() : QVariant(ToPlainToolTip(text));
    }
    case Qt::AccessibleDescriptionRole:
      return mList.GetToolText(aIndex.row() + 1);
    default:
      return {};
    }
  }
  /// What the combo box disables cannot be chosen here, either.
  Qt::ItemFlags flags(const QModelIndex& aIndex) const override {
    const QComboBox* comboBox = mList.mComboBox;
    if (comboBox == nullptr || !aIndex.isValid()) {
      return Qt::NoItemFlags;
    }
    const QModelIndex item =
        comboBox->model()->index(aIndex.row(), comboBox->modelColumn(), comboBox->rootModelIndex());
    return item.flags() & (Qt::ItemIsEnabled | Qt::ItemIsSelectable);
  }

private:
  CTooltipListCtrl& mList;
  int mCount = 0;
};

CTooltipListCtrl::CTooltipListCtrl() : mItems(new Items(*this)) {
  setModel(mItems);
  setUniformItemSizes(true);
  setSelectionMode(SingleSelection);
  setEditTriggers(NoEditTriggers);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setVerticalScrollMode(ScrollPerItem);
  setTextElideMode(Qt::ElideRight);
  setMouseTracking(true);
  // Two pixels on each side in all: the room that the placing leaves around the items.
  setFrameStyle(QFrame::Box | QFrame::Plain);
  setLineWidth(1);
  setViewportMargins(1, 1, 1, 1);
}

void CTooltipListCtrl::Init(QComboBox& aComboBox) {
  mComboBox = &aComboBox;
  setParent(&aComboBox, Qt::Popup);
  setAttribute(Qt::WA_WindowPropagation);
  setObjectName(QStringLiteral("dropDown"));
}

int CTooltipListCtrl::SetItemTooltip(std::int32_t aIndex, const QString& aText) {
  if (!mComboBox || aIndex < 0 || aIndex >= mComboBox->count()) {
    return -1;
  }
  mTooltips[aIndex] = aText;
  return aIndex;
}

void CTooltipListCtrl::ShowDropDown(const QRect& aOffered, const QRect& aComboBox) {
  if (!mComboBox) {
    return;
  }
  setUpdatesEnabled(false);
  setAccessibleName(mComboBox->accessibleName());
  mChosen = mComboBox->currentIndex();
  const int itemHeight = PrepareItems();
  const DropDownPlacement placement =
      PlaceDropDown({ToPixelRect(aOffered), aComboBox.height(), std::max(itemHeight, 1), mComboBox->count(),
                     ToPixelRect(FindDesktop(aComboBox, *mComboBox))});
  setVerticalScrollBarPolicy(placement.hasScrollBar ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
  setGeometry(placement.rect.left, placement.rect.top, placement.rect.GetWidth(), placement.rect.GetHeight());
  mIsOpen = true;
  mWasChosen = false;
  show();
  setFocus(Qt::PopupFocusReason);
  const QModelIndex chosen = model()->index(mChosen, 0);
  setCurrentIndex(chosen);
  scrollTo(chosen, EnsureVisible);
  setUpdatesEnabled(true);
}

int CTooltipListCtrl::PrepareItems() {
  if (!mComboBox) {
    return 0;
  }
  setFont(mComboBox->font());
  mItems->Show(mComboBox->count());
  ensurePolished();
  return std::max(sizeHintForRow(0), 0);
}

std::optional<CTooltipListCtrl::ToolHit> CTooltipListCtrl::HitTest() const {
  const QModelIndex selected = currentIndex();
  if (!selected.isValid()) {
    return std::nullopt;
  }
  return ToolHit{selected.row() + 1, visualRect(selected)};
}

QString CTooltipListCtrl::GetToolText(int aID) const {
  const auto found = mTooltips.find(aID - 1);
  if (aID == 0 || found == mTooltips.end()) {
    return {};
  }
  QString text = found->second.left(kTooltipLength);
  if (text.size() == kTooltipLength && text.back().isHighSurrogate()) {
    // Half a character is none.
    text.chop(1);
  }
  return text;
}

// What the user does.

bool CTooltipListCtrl::viewportEvent(QEvent* aEvent) {
  if (aEvent->type() != QEvent::ToolTip) {
    return QListView::viewportEvent(aEvent);
  }
  const std::optional<ToolHit> hit = HitTest();
  const QString text = hit ? GetToolText(hit->id) : QString();
  if (text.isEmpty() || !hit->rect.contains(static_cast<const QHelpEvent*>(aEvent)->pos())) {
    QToolTip::hideText();
  } else {
    QToolTip::showText(static_cast<const QHelpEvent*>(aEvent)->globalPos(), ToPlainToolTip(text), viewport(),
                       hit->rect);
  }
  return true;
}

bool CTooltipListCtrl::event(QEvent* aEvent) {
  if (aEvent->type() == QEvent::MouseButtonPress &&
      !rect().contains(static_cast<const QMouseEvent*>(aEvent)->position().toPoint())) {
    // The click on the combo box closes its list; it is not to open it again.
    setAttribute(Qt::WA_NoMouseReplay, IsPointerOverComboBox());
    CloseList(!IsPointerOverComboBox());
    return true;
  }
  return QListView::event(aEvent);
}

void CTooltipListCtrl::mousePressEvent(QMouseEvent* aEvent) {
  const QModelIndex pressed = indexAt(aEvent->position().toPoint());
  if (aEvent->button() == Qt::LeftButton && CanBeChosen(pressed)) {
    setCurrentIndex(pressed);
    TakeSelected();
    CloseList(true);
  }
}

/// The press that opened the list may end over it.
void CTooltipListCtrl::mouseReleaseEvent(QMouseEvent*) {}

void CTooltipListCtrl::mouseMoveEvent(QMouseEvent* aEvent) {
  const QModelIndex under = indexAt(aEvent->position().toPoint());
  if (CanBeChosen(under) && under != currentIndex()) {
    setCurrentIndex(under);
  }
}

void CTooltipListCtrl::keyPressEvent(QKeyEvent* aEvent) {
  if (IsCloseKey(*aEvent)) {
    // A key that is held may be the one that has just opened the list.
    if (aEvent->isAutoRepeat()) {
      return;
    }
    CloseList(!IsPointerOverComboBox());
    return;
  }
  if (aEvent->key() == Qt::Key_Return || aEvent->key() == Qt::Key_Enter) {
    TakeSelected();
    CloseList(true);
    return;
  }
  const auto* arrow =
      std::find_if(std::begin(kArrows), std::end(kArrows), [&](const auto& aRow) { return aRow.key == aEvent->key(); });
  if (arrow == std::end(kArrows)) {
    QListView::keyPressEvent(aEvent);
    return;
  }
  QKeyEvent meant(QEvent::KeyPress, arrow->meaning, aEvent->modifiers());
  QListView::keyPressEvent(&meant);
}

// By Enter and by the mouse a choice is made, and always told of, wherever the pointer is. Closed in any other way, the
// list says nothing while the pointer is over the combo box, as the click that closed it went there. Were a choice held
// to that, too, one made by Enter would be told to nobody when the pointer happens to rest there.

/// Also when somebody else hides it: another window came to the front, or the toolkit closes its popups.
void CTooltipListCtrl::hideEvent(QHideEvent* aEvent) {
  QListView::hideEvent(aEvent);
  CloseList(!IsPointerOverComboBox());
}

void CTooltipListCtrl::TakeSelected() {
  if (CanBeChosen(currentIndex())) {
    mChosen = currentIndex().row();
    mWasChosen = true;
  }
}

void CTooltipListCtrl::CloseList(bool aNotifies) {
  if (!mIsOpen) {
    return;
  }
  mIsOpen = false;
  QToolTip::hideText();
  hide();
  if (aNotifies) {
    QMetaObject::invokeMethod(this, &CTooltipListCtrl::SelectionChanged, Qt::QueuedConnection);
  }
  if (mComboBox) {
    mComboBox->setCurrentIndex(mChosen);
    // A hidden one, whose list closes with it, would take it when it is next shown.
    if (mComboBox->isVisible())
      mComboBox->setFocus(Qt::PopupFocusReason);
  }
}

bool CTooltipListCtrl::IsPointerOverComboBox() const {
  return mComboBox && mComboBox->rect().contains(mComboBox->mapFromGlobal(QCursor::pos()));
}

} // namespace krgui
