#include "page/pagepanels.h"

#include <QDockWidget>
#include <QMainWindow>

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
}

bool PagePanels::IsShown(Panel aPanel) const {
  const auto found = mDocks.find(aPanel);
  return found != mDocks.end() && (!found->second->isHidden() || mPutAside.contains(found->second));
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
