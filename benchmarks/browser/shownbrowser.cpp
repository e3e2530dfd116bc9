#include "shownbrowser.h"

#include "browser/propertiesgrid.h"
#include "heartbeat.h"
#include "krgui/genbrowsersearchbar.h"

#include <QKeyEvent>
#include <QWindow>

#include <algorithm>

namespace benchmarks {

namespace {

constexpr qint64 kLimitMs = 30'000;

GenBrowserSearchBar* FindSearchBar(const QWidget& aWindow) {
  for (QWidget* const widget : aWindow.findChildren<QWidget*>())
    if (auto* const searchBar = dynamic_cast<GenBrowserSearchBar*>(widget))
      return searchBar;
  return nullptr;
}

} // namespace

ShownBrowser::ShownBrowser(KrGenRefresh aMode) {
  static_cast<void>(mWindow.SetVisibility(KrGenVisibility::Guru)); // Always OK, as the next one.
  static_cast<void>(mWindow.SetRefreshMode(aMode));
  mWindow.SetPosition(100, 100, 600, 800);
  if (!mWindow.ShowModeless(0).IsOK())
    return;
  QWidget& widget = *mWindow.GetWidget();
  if (!RunUntil([&] { return widget.windowHandle() && widget.windowHandle()->isExposed(); }, kLimitMs))
    return;
  mGrid = widget.findChild<krgui::PropertiesGrid*>();
  mSearchBar = FindSearchBar(widget);
  QKeyEvent find(QEvent::KeyPress, Qt::Key_F, Qt::ControlModifier);
  if (mGrid)
    QCoreApplication::sendEvent(mGrid, &find);
}

QSize ShownBrowser::GetGridSize() const {
  return mGrid->size();
}

QTreeView& ShownBrowser::GetView() const {
  return *mGrid;
}

std::size_t ShownBrowser::CountFeatures() const {
  return mGrid->GetTree().GetFeatures().size();
}

bool ShownBrowser::IsAllRead() const {
  const auto& features = mGrid->GetTree().GetFeatures();
  return std::all_of(features.begin(), features.end(), [](const auto& aNode) { return aNode->IsRead(); });
}

void ShownBrowser::Search(const QString& aText) {
  mSearchBar->SetText(aText.toStdString());
}

} // namespace benchmarks
