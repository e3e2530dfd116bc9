#include "page/pagepanels.h"

#include <QApplication>
#include <QChildEvent>
#include <QDockWidget>
#include <QMainWindow>
#include <QTabBar>

#include <algorithm>

namespace krviewer {

namespace {

/// Of the layout: changes when panels of another version could not take the places of these.
constexpr int kLayoutVersion = 1;
/// The part of the page that the panels under the picture take at first.
constexpr double kShareBelow = 0.4;

} // namespace

PagePanels::PagePanels(QMainWindow& aArea) : mArea(aArea) {
  mArea.setDockNestingEnabled(true);
  // Lists want height, graphs as much width as the picture has.
  mArea.setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);
  mArea.setCorner(Qt::BottomLeftCorner, Qt::LeftDockWidgetArea);
  mArea.installEventFilter(this);
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* aNow) { NoteFocus(aNow); });
}

// The area makes its tab bars itself, with titles that are cut as soon as there are three.
bool PagePanels::eventFilter(QObject* aObject, QEvent* aEvent) {
  if (aObject == &mArea && aEvent->type() == QEvent::ChildPolished)
    if (auto* const tabs = qobject_cast<QTabBar*>(static_cast<QChildEvent*>(aEvent)->child())) {
      tabs->setElideMode(Qt::ElideNone);
      tabs->setUsesScrollButtons(true);
    }
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
  connect(dock, &QDockWidget::visibilityChanged, this, [this, dock](bool aIsVisible) {
    if (aIsVisible)
      mBehind.erase(dock);
    else if (!dock->isHidden())
      mBehind.insert(dock);
  });
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
}

void PagePanels::FitSides(int aPageBefore, int aPage) {
  for (const Qt::DockWidgetArea side : {Qt::LeftDockWidgetArea, Qt::RightDockWidgetArea})
    for (const auto& [panel, dock] : mDocks) {
      if (dock->isFloating() || !dock->isVisible() || mBehind.contains(dock) || mArea.dockWidgetArea(dock) != side)
        continue;
      if (const std::optional<int> width = mSides[side].Fit(dock->width(), aPageBefore, aPage))
        mArea.resizeDocks({dock}, {*width}, Qt::Horizontal);
      break; // The others of the side are as wide.
    }
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
