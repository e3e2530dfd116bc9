#include "page/pagepanels.h"
#include "recording/recordpanel.h"
#include "scenes.h"
#include "viewerscene.h"

#include <QApplication>
#include <QCheckBox>
#include <QDockWidget>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QTableWidget>
#include <QToolButton>

namespace scene {

namespace {

using krviewer::CameraPage;
using krviewer::Panel;

struct PanelRow {
  Panel panel;
  const char* dock;
};

constexpr PanelRow kPanels[] = {
    {Panel::Features, "features"},
    {Panel::StreamFeatures, "streamParameters"},
    {Panel::TransportFeatures, "connectionParameters"},
    {Panel::Histogram, "histogram"},
    {Panel::LineProfile, "lineProfile"},
    {Panel::Intervals, "intervals"},
    {Panel::Recording, "recording"},
};

void ShowOnly(CameraPage& aPage, Panel aPanel) {
  for (const PanelRow& row : kPanels)
    aPage.GetPanels().Show(row.panel, row.panel == aPanel);
}

template <typename Control>
Control& FindIn(const QWidget& aPage, const char* aPanel, const QString& aName = {}) {
  const auto* const panel = aPage.findChild<QWidget*>(aPanel);
  auto* const control = panel ? panel->findChild<Control*>(aName) : nullptr;
  if (!control)
    throw std::runtime_error(std::string("There is no such control in ") + aPanel + ".");
  return *control;
}

} // namespace

void TakeViewerPanels(PictureBook& aBook) {
  ViewerScene scene;
  CameraPage& page = scene.OpenStreaming("sim-colour");
  page.GetPanels().Show(Panel::Features, false);
  for (const Panel panel : {Panel::LineProfile, Panel::Intervals, Panel::Histogram})
    page.GetPanels().Show(panel, true);
  ViewerScene::AwaitFrames(page);
  aBook.Save(scene.GetWindow(), "krviewer-panels");
  page.GetPanels().Show(Panel::Histogram, false);
  page.GetPanels().Show(Panel::Recording, true);
  ViewerScene::AwaitFrames(page);
  // The home of whoever takes the pictures is of no interest. The panel does not look whether the folder is there.
  auto& folder = FindIn<QLineEdit>(page, "recordPanel", "recordFolder");
  const QSignalBlocker blocker(folder);
  folder.setText("/home/user/Recordings");
  aBook.Save(scene.GetWindow(), "krviewer-recording");
}

// Each panel in front, as high as it is at the side, and in a window of its own.
void TakeViewerDocks(PictureBook& aBook) {
  ViewerScene scene({900, 700});
  CameraPage& page = scene.OpenStreaming("sim-colour");
  for (const PanelRow& row : kPanels) {
    ShowOnly(page, row.panel);
    ViewerScene::AwaitFrames(page);
    const QString name = QStringLiteral("dock-%1").arg(QString::fromLatin1(row.dock).toLower());
    aBook.Save(scene.GetWindow(), name);
    auto& dock = *page.findChild<QDockWidget*>(row.dock);
    dock.setFloating(true);
    dock.resize(360, 420);
    ViewerScene::AwaitFrames(page);
    aBook.Save(dock, name + "-floating");
    dock.setFloating(false);
  }
  for (const PanelRow& row : kPanels)
    page.GetPanels().Show(row.panel, true);
  ViewerScene::AwaitFrames(page);
  aBook.Save(scene.GetWindow(), "dock-all");
}

// The keyboard on each kind of control that panels have.
void TakeViewerFocus(PictureBook& aBook) {
  ViewerScene scene({1000, 700});
  CameraPage& page = scene.OpenStreaming("sim-colour");
  ShowOnly(page, Panel::Histogram);
  page.GetPanels().Show(Panel::Recording, true);
  ViewerScene::AwaitFrames(page);
  const auto take = [&](QWidget& aControl, const char* aName) {
    Focus(aControl);
    aBook.Save(scene.GetWindow(), QStringLiteral("focus-%1").arg(aName));
  };
  take(FindIn<QCheckBox>(page, "histogramPanel"), "checkbox");
  take(FindIn<QToolButton>(page, "histogramPanel"), "toolbutton");
  take(FindIn<QTableWidget>(page, "histogramPanel"), "table");
  take(FindIn<QSpinBox>(page, "recordPanel", "recordMostFrames"), "spinbox");
  take(FindIn<QPushButton>(page, "recordPanel", "recordButton"), "button");
  take(FindIn<QAbstractButton>(page, "recordPanel", "recordBrowse"), "browse");
}

void TakeViewerRecording(PictureBook& aBook) {
  ViewerScene scene({1000, 700});
  const QTemporaryDir folder;
  CameraPage& page = scene.OpenStreaming("sim-mono");
  ShowOnly(page, Panel::Recording);
  FindIn<QLineEdit>(page, "recordPanel", "recordFolder").setText(folder.path());
  FindIn<QSpinBox>(page, "recordPanel", "recordMostSeconds").setValue(600);
  page.StartOrStopRecording();
  Await("recording", [&] { return page.GetRecording().counts.written > 3; });
  ViewerScene::AwaitFrames(page);
  aBook.Save(scene.GetWindow(), "recording-runs");
  page.GiveUpRecording();
  Await("end of the recording", [&] { return !page.IsRecording(); });
  ViewerScene::AwaitFrames(page);
  aBook.Save(scene.GetWindow(), "recording-given-up");
  FindIn<QLineEdit>(page, "recordPanel", "recordFolder").setText("/there/is/no/such/folder");
  page.StartOrStopRecording();
  Await("word about the folder", [&] { return QApplication::activeModalWidget() != nullptr || !page.IsRecording(); });
  ViewerScene::AwaitFrames(page);
  aBook.Save(scene.GetWindow(), "recording-no-folder");
  if (QWidget* const box = QApplication::activeModalWidget())
    box->close();
}

} // namespace scene
