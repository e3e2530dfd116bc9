#include "page/messagebar.h"
#include "popups.h"
#include "region/regioneditor.h"
#include "scenes.h"
#include "viewerscene.h"

#include <QDoubleSpinBox>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>

#include <algorithm>
#include <utility>

namespace scene {

namespace {

using krviewer::CameraPage;
using krviewer::MessageBar;

const QString kLongName =
    QStringLiteral("Camera above the second conveyor belt, behind the pillar (192.168.77.11, 02:4b:52:00:77:11)");

bool HasToldTrouble(const CameraPage& aPage) {
  const auto* const bar = aPage.findChild<MessageBar*>();
  if (!aPage.IsInTrouble() || !bar || !bar->GetText().contains("subnet"))
    return false;
  const QList<QPushButton*> buttons = bar->findChildren<QPushButton*>();
  return std::ranges::any_of(buttons, [&](const QPushButton* aButton) {
    return aButton->isVisible() && bar->rect().contains(aButton->geometry());
  });
}

// As somebody who draws a part of the picture would.
void DrawRegion(CameraPage& aPage) {
  aPage.GetRegion().Begin();
  Await("region of interest", [&] { return aPage.GetRegion().IsEditing(); });
  for (const auto& [name, value] :
       {std::pair{"regionWidth", 1024}, {"regionHeight", 640}, {"regionX", 448}, {"regionY", 280}})
    if (auto* const box = aPage.findChild<QDoubleSpinBox*>(name))
      box->setValue(value);
  ViewerScene::AwaitFrames(aPage);
}

} // namespace

void TakeViewer(PictureBook& aBook) {
  ViewerScene scene;
  aBook.Save(scene.GetWindow(), "krviewer-first");
  CameraPage& page = scene.OpenStreaming("sim-colour");
  aBook.Save(scene.GetWindow(), "krviewer");

  DrawRegion(page);
  aBook.Save(scene.GetWindow(), "krviewer-region");
  page.GetRegion().Cancel();
}

void TakeViewerRegions(PictureBook& aBook) {
  ViewerScene scene;
  CameraPage& page = scene.OpenStreaming("sim-colour");
  ViewerScene::Set(page, "TestPattern", "Off");
  ViewerScene::Set(page, "ExposureTime", "20");
  DrawRegion(page);
  aBook.Save(scene.GetWindow(), "krviewer-region-dark");
  scene.GetWindow().resize(640, 480);
  ViewerScene::AwaitFrames(page);
  aBook.Save(scene.GetWindow(), "krviewer-region-small");
  page.GetRegion().Cancel();
  // Scenes behind this one show the same camera, and not in the dark.
  ViewerScene::Set(page, "TestPattern", "GreyDiagonalRampMoving");
  ViewerScene::Set(page, "ExposureTime", "1000");
}

void TakeViewerTrouble(PictureBook& aBook) {
  ViewerScene scene;
  const CameraPage& page = scene.Open("sim-foreign");
  Await("word about the camera", [&] { return HasToldTrouble(page); });
  aBook.Save(scene.GetWindow(), "krviewer-message");
  scene.GetWindow().resize(640, 480);
  Await("message in a small window", [&] { return HasToldTrouble(page) && page.width() <= 640; });
  aBook.Save(scene.GetWindow(), "krviewer-message-small");
}

void TakeViewerTabs(PictureBook& aBook) {
  ViewerScene scene;
  krviewer::MainWindow& window = scene.GetWindow();
  scene.Open("sim-foreign");
  scene.Open("sim-colour");
  CameraPage& page = scene.OpenStreaming("sim-mono");
  window.Notice("Frame 1234 was saved as /home/user/Pictures/sim-mono-1234.tiff");
  aBook.Save(window, "krviewer-tabs");
  const QList<QAction*> menus = window.menuBar()->actions();
  for (QAction* const menu : menus)
    SavePopup(aBook, "menu-" + menu->text().remove('&').toLower(),
              [&] { menu->menu()->popup(window.mapToGlobal(QPoint(20, 40))); });
  page.Disconnect();
  Await("camera given back", [&] { return page.CanConnect(); });
  Await("word of it", [&] { return page.findChild<MessageBar*>()->GetText().contains("disconnected"); });
  aBook.Save(window, "krviewer-disconnected");
  for (const QSize& size : {QSize(640, 480), QSize(1920, 1200)}) {
    window.resize(size);
    page.Reconnect();
    Await("stream", [&] { return page.IsStreaming(); });
    ViewerScene::AwaitFrames(page);
    aBook.Save(window, QStringLiteral("krviewer-%1x%2").arg(size.width()).arg(size.height()));
  }
}

void TakeViewerFirstPage(PictureBook& aBook) {
  ViewerScene scene;
  krviewer::MainWindow& window = scene.GetWindow();
  krviewer::RecentCameras cameras;
  for (int number = 0; number < 7; ++number)
    cameras.Add({QStringLiteral("02:4b:52:00:77:%1").arg(number + 10), QStringLiteral("sim-mono-%1").arg(number)});
  cameras.Add({"02:4b:52:00:77:11", kLongName});
  window.SetRecentCameras(cameras);
  auto* const link = window.GetFirstPage().findChild<QPushButton*>("recentCamera");
  Focus(*link);
  aBook.Save(window, "krviewer-first-recent");
  window.resize(480, 400);
  Focus(*window.GetFirstPage().findChild<QPushButton*>("findCamera"));
  aBook.Save(window, "krviewer-first-small");
}

} // namespace scene
