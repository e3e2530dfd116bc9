#include "page/pagepanels.h"

#include <QApplication>
#include <QChildEvent>
#include <QDockWidget>
#include <QFontMetrics>
#include <QLayout>
#include <QMainWindow>
#include <QMetaObject>
#include <QResizeEvent>
#include <QTabBar>

#include <algorithm>

namespace krviewer {

namespace {

/// Of the layout: changes when panels of another version could not take the places of these.
constexpr int kLayoutVersion = 1;
/// The part of the page that the panels under the picture take at first.
constexpr double kShareBelow = 0.4;
/// In which a panel shows names with their values, or a graph with its numbers.
constexpr int kUsefulLetters = 60;
constexpr int kUsefulLines = 14;

constexpr Qt::DockWidgetArea kSides[] = {Qt::LeftDockWidgetArea, Qt::RightDockWidgetArea, Qt::TopDockWidgetArea,
                                         Qt::BottomDockWidgetArea};

bool IsBeside(Qt::DockWidgetArea aSide) {
  return aSide == Qt::LeftDockWidgetArea || aSide == Qt::RightDockWidgetArea;
}

/// The extent that a side has of its own.
int GetExtent(Qt::DockWidgetArea aSide, const QSize& aSize) {
  return IsBeside(aSide) ? aSize.width() : aSize.height();
}

bool TakesTab(const QWidget& aWidget) {
  return aWidget.isVisible() && aWidget.isEnabled() && (aWidget.focusPolicy() & Qt::TabFocus) != 0 &&
         !aWidget.focusProxy();
}

/// Null for a panel that nothing of can have the keyboard.
QWidget* FindFirstStop(QDockWidget& aDock) {
  for (QWidget* widget = aDock.nextInFocusChain(); widget != &aDock; widget = widget->nextInFocusChain())
    if (aDock.isAncestorOf(widget) && TakesTab(*widget))
      return widget;
  return nullptr;
}

// The area makes its tab bars itself, with titles that are cut as soon as there are three.
void PrepareTabs(QObject* aChild) {
  if (auto* const tabs = qobject_cast<QTabBar*>(aChild)) {
    tabs->setElideMode(Qt::ElideNone);
    tabs->setUsesScrollButtons(true);
  }
}

} // namespace

PagePanels::PagePanels(QMainWindow& aArea) : mArea(aArea) {
  mArea.setDockNestingEnabled(true);
  // Lists want height, graphs as much width as the picture has.
  mArea.setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);
  mArea.setCorner(Qt::BottomLeftCorner, Qt::LeftDockWidgetArea);
  mArea.installEventFilter(this);
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* aNow) { NoteFocus(aNow); });
}

bool PagePanels::eventFilter(QObject* aObject, QEvent* aEvent) {
  if (aObject == &mArea && aEvent->type() == QEvent::ChildPolished)
    PrepareTabs(static_cast<QChildEvent*>(aEvent)->child());
  else if (aObject == &mArea && aEvent->type() == QEvent::Resize)
    FitSides(static_cast<QResizeEvent*>(aEvent)->oldSize()); // Its layout has been done already.
  else if (auto* const dock = qobject_cast<QDockWidget*>(aObject); dock && aEvent->type() == QEvent::Resize)
    NoteResize(*dock);
  return QObject::eventFilter(aObject, aEvent);
}

// While a menu has the keyboard, it is meant for what had it before.
void PagePanels::NoteFocus(QWidget* aFocused) {
  // By addresses alone, as this comes, too, while the panels end.
  for (QWidget* widget = aFocused; widget; widget = widget->parentWidget()) {
    const auto found = std::ranges::find(mDocks, widget, [](const auto& aEntry) { return aEntry.second; });
    if (found != mDocks.end() || widget == &mArea) {
      mFocused = found != mDocks.end() ? found->second : nullptr;
      return;
    }
  }
}

void PagePanels::MoveFocused(PanelPlace aPlace) {
  if (!HasFocusedPanel())
    return;
  QDockWidget& dock = *mFocused;
  QWidget* const keyboard = QApplication::focusWidget();
  const bool hadKeyboard = keyboard && dock.isAncestorOf(keyboard);
  dock.setFloating(aPlace == PanelPlace::Floating);
  if (aPlace == PanelPlace::Left)
    mArea.addDockWidget(Qt::LeftDockWidgetArea, &dock);
  else if (aPlace == PanelPlace::Right)
    mArea.addDockWidget(Qt::RightDockWidgetArea, &dock);
  else if (aPlace == PanelPlace::Bottom)
    mArea.addDockWidget(Qt::BottomDockWidgetArea, &dock);
  dock.raise();
  dock.activateWindow();
  if (hadKeyboard)
    keyboard->setFocus();
  mFocused = &dock;
}

void PagePanels::Add(Panel aPanel, const QString& aName, const QString& aTitle, QWidget* aContent,
                     Qt::DockWidgetArea aSide) {
  auto* const dock = new QDockWidget(aTitle, &mArea);
  dock->setObjectName(aName);
  dock->setWidget(aContent);
  dock->setAccessibleName(aTitle);
  QDockWidget* neighbour = nullptr;
  for (const auto& [panel, other] : mDocks)
    if (mArea.dockWidgetArea(other) == aSide)
      neighbour = other;
  mArea.addDockWidget(aSide, dock);
  if (neighbour)
    mArea.tabifyDockWidget(neighbour, dock);
  dock->hide();
  mDocks[aPanel] = dock;
  dock->installEventFilter(this);
  // While they end one after the other, the keyboard still looks for a place.
  connect(dock, &QObject::destroyed, this, [this, dock] { mBehind.erase(dock); });
  connect(dock, &QDockWidget::visibilityChanged, this, [this, dock](bool aIsVisible) {
    if (aIsVisible) {
      mBehind.erase(dock);
    } else if (!dock->isHidden()) {
      mBehind.insert(dock);
      // Once it is known which one is in front.
      QMetaObject::invokeMethod(
          this, [this, dock] { TakeKeyboardAlong(*dock); }, Qt::QueuedConnection);
    }
  });
}

bool PagePanels::IsBehind(const QWidget& aWidget) const {
  return std::ranges::any_of(mBehind, [&](const QDockWidget* aDock) { return aDock->isAncestorOf(&aWidget); });
}

QWidget* PagePanels::FindTabStop(QWidget& aFrom, bool aIsNext) const {
  bool isPastPanel = false;
  QWidget* widget = &aFrom;
  do {
    widget = aIsNext ? widget->nextInFocusChain() : widget->previousInFocusChain();
    if (!TakesTab(*widget))
      continue;
    if (!IsBehind(*widget))
      return isPastPanel ? widget : nullptr;
    isPastPanel = true;
  } while (widget != &aFrom);
  return nullptr;
}

// Another panel has come in front of the one with the keyboard, and takes it.
void PagePanels::TakeKeyboardAlong(QDockWidget& aDock) {
  const QWidget* const keyboard = QApplication::focusWidget();
  if (!keyboard || !mBehind.contains(&aDock) || !aDock.isAncestorOf(keyboard))
    return;
  for (QDockWidget* const other : mArea.tabifiedDockWidgets(&aDock)) {
    QWidget* const stop = other->isVisible() && !mBehind.contains(other) ? FindFirstStop(*other) : nullptr;
    if (stop)
      return stop->setFocus(Qt::ShortcutFocusReason);
  }
}

bool PagePanels::IsShown(Panel aPanel) const {
  const auto found = mDocks.find(aPanel);
  return found != mDocks.end() && IsDockShown(*found->second);
}

bool PagePanels::IsDockShown(QDockWidget& aDock) const {
  return !aDock.isHidden() || mPutAside.contains(&aDock);
}

bool PagePanels::IsInFront(Panel aPanel) const {
  return IsShown(aPanel) && !mBehind.contains(mDocks.at(aPanel));
}

void PagePanels::Show(Panel aPanel, bool aIsShown) {
  const auto found = mDocks.find(aPanel);
  if (found == mDocks.end())
    return;
  QDockWidget& dock = *found->second;
  mPutAside.erase(&dock);
  const bool needsRoom = aIsShown && !mHasRoomBelow && mArea.dockWidgetArea(&dock) == Qt::BottomDockWidgetArea;
  dock.setVisible(aIsShown);
  if (aIsShown)
    dock.raise();
  if (needsRoom) {
    mHasRoomBelow = true;
    mArea.resizeDocks({&dock}, {static_cast<int>(mArea.height() * kShareBelow)}, Qt::Vertical);
  }
  const Qt::DockWidgetArea side = mArea.dockWidgetArea(&dock);
  if (aIsShown && !IsBeside(side)) // Once it has its size.
    QMetaObject::invokeMethod(
        this, [this, side] { LimitSide(side); }, Qt::QueuedConnection);
}

void PagePanels::SetPageShown(bool aIsShown) {
  mIsPageShown = aIsShown;
  if (aIsShown)
    return PutBack();
  for (const auto& [panel, dock] : mDocks)
    if (dock->isFloating() && !dock->isHidden()) {
      mPutAside.insert(dock);
      dock->hide();
    }
}

void PagePanels::PutBack() {
  for (QDockWidget* const dock : mPutAside)
    dock->show();
  mPutAside.clear();
}

void PagePanels::SetWidth(Panel aPanel, int aWidth) {
  const auto found = mDocks.find(aPanel);
  if (found != mDocks.end())
    mArea.resizeDocks({found->second}, {aWidth}, Qt::Horizontal);
  mIsFitted = true;
  mAreaSize = mArea.size();
}

void PagePanels::FitRestored() {
  mIsFitted = true;
  mAreaSize = mArea.size();
  const QFontMetrics metrics = mArea.fontMetrics();
  const QSize useful(kUsefulLetters * metrics.averageCharWidth(), kUsefulLines * metrics.height());
  for (const Qt::DockWidgetArea side : kSides)
    if (const QDockWidget* const dock = FindFront(side)) {
      mSides[side].NoteRestored(GetExtent(side, dock->size()), GetExtent(side, useful));
      const int page = GetExtent(side, mAreaSize);
      FitSide(side, page, page);
    }
}

// One of a side, whose others are as large.
QDockWidget* PagePanels::FindFront(Qt::DockWidgetArea aSide) const {
  for (const auto& [panel, dock] : mDocks)
    if (!dock->isFloating() && dock->isVisible() && !mBehind.contains(dock) && mArea.dockWidgetArea(dock) == aSide)
      return dock;
  return nullptr;
}

void PagePanels::NoteResize(QDockWidget& aDock) {
  const Qt::DockWidgetArea side = mArea.dockWidgetArea(&aDock);
  if (mIsFitted && !mIsFitting && mArea.size() == mAreaSize && FindFront(side) == &aDock)
    mSides[side].NoteMove(GetExtent(side, aDock.size()));
}

void PagePanels::FitAgain() {
  if (mArea.size() != mAreaSize)
    FitSides(mAreaSize);
}

void PagePanels::FitSides(QSize aBefore) {
  if (!mIsFitted || !mArea.isVisible())
    return;
  mAreaSize = mArea.size();
  for (const Qt::DockWidgetArea side : kSides)
    FitSide(side, GetExtent(side, aBefore), GetExtent(side, mAreaSize));
}

void PagePanels::FitSide(Qt::DockWidgetArea aSide, int aBefore, int aPage) {
  QDockWidget* const dock = FindFront(aSide);
  if (!dock)
    return;
  SideWidth& extent = mSides[aSide];
  const std::optional<int> wanted = extent.Fit(GetExtent(aSide, dock->size()), aBefore, aPage);
  if (!wanted)
    return;
  mIsFitting = true;
  mArea.resizeDocks({dock}, {*wanted}, IsBeside(aSide) ? Qt::Horizontal : Qt::Vertical);
  mArea.layout()->activate();
  mIsFitting = false;
  extent.NoteGiven(GetExtent(aSide, dock->size()));
}

// As if the page had just become as small as it is.
void PagePanels::LimitSide(Qt::DockWidgetArea aSide) {
  const int page = GetExtent(aSide, mArea.size());
  if (mIsFitted && mArea.isVisible())
    FitSide(aSide, page + 1, page);
}

QByteArray PagePanels::SaveLayout() {
  // As it is when the page is shown: what was put aside counts as shown.
  if (!mIsPageShown)
    PutBack();
  const QByteArray layout = mArea.saveState(kLayoutVersion);
  if (!mIsPageShown)
    SetPageShown(false);
  return layout;
}

bool PagePanels::RestoreLayout(const QByteArray& aLayout) {
  const bool isRestored = !aLayout.isEmpty() && mArea.restoreState(aLayout, kLayoutVersion);
  for (const auto& [panel, dock] : mDocks)
    if (isRestored && !dock->isHidden() && mArea.dockWidgetArea(dock) == Qt::BottomDockWidgetArea)
      mHasRoomBelow = true;
  return isRestored;
}

} // namespace krviewer
