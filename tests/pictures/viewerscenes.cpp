#include "krsystem/krsystem.h"
#include "page/messagebar.h"
#include "page/pagepanels.h"
#include "region/regioneditor.h"
#include "scene.h"
#include "scenes.h"
#include "window/viewer.h"

#include <QDoubleSpinBox>
#include <QPushButton>
#include <QSizeGrip>
#include <QTemporaryDir>

#include <algorithm>
#include <utility>

namespace scene {

namespace {

using krviewer::CameraPage;
using krviewer::Panel;

// Enough for what follows them, in the window and its panels, to have come.
void AwaitFrames(const CameraPage& aPage) {
  constexpr std::uint64_t kSomeFrames = 60;
  const std::uint64_t last = aPage.GetProgress().figures.GetFrames() + kSomeFrames;
  Await("live picture", [&] { return aPage.GetProgress().figures.GetFrames() > last; });
}

bool HasToldTrouble(const CameraPage& aPage) {
  const auto* const bar = aPage.findChild<krviewer::MessageBar*>();
  if (!aPage.IsInTrouble() || !bar || !bar->GetText().contains("subnet"))
    return false;
  const QList<QPushButton*> buttons = bar->findChildren<QPushButton*>();
  return std::ranges::any_of(buttons, [&](const QPushButton* aButton) {
    return aButton->isVisible() && bar->rect().contains(aButton->geometry());
  });
}

// The viewer with one window, and settings of its own: as one that is started for the first time.
class ViewerScene {
public:
  ViewerScene() : mViewer({}, krviewer::ViewerHost{.settingsFile = mFolder.filePath("krviewer.ini"), .libraries = {}}) {
    mViewer.Begin();
    GetWindow().resize(kWidth, kHeight);
    Await("window of its size", [this] {
      const auto* const grip = GetWindow().findChild<QSizeGrip*>(); // The last one to take its place.
      return grip && grip->mapTo(&GetWindow(), QPoint()).x() > kWidth / 2;
    });
  }
  ~ViewerScene() { mViewer.Finish(); }
  ViewerScene(const ViewerScene&) = delete;
  ViewerScene& operator=(const ViewerScene&) = delete;

  krviewer::MainWindow& GetWindow() { return *mViewer.GetWindows().constFirst(); }
  CameraPage& Open(const KrString& aName) {
    for (std::size_t index = 0; index < mSystem->GetDeviceCount(); ++index)
      if (mSystem->GetDeviceInfo(index)->GetUserDefinedName() == aName)
        mViewer.Open(krviewer::CameraInfo(mSystem, mSystem->GetDeviceInfo(index)));
    CameraPage* const page = GetWindow().GetCurrentPage();
    if (!page)
      throw std::runtime_error("The viewer did not show " + aName.ToUtf8() + ".");
    return *page;
  }
  CameraPage& OpenStreaming(const KrString& aName) {
    CameraPage& page = Open(aName);
    Await("stream", [&] { return page.IsStreaming(); });
    AwaitFeatures(page);
    AwaitFrames(page);
    return page;
  }

private:
  static constexpr int kWidth = 1200;
  static constexpr int kHeight = 800;

  static std::shared_ptr<KrSystem> FindCameras() {
    auto system = std::make_shared<KrSystem>();
    system->SetSubnetBroadcastEnabled(false);
    Require(system->Find());
    return system;
  }

  const QTemporaryDir mFolder;
  const std::shared_ptr<KrSystem> mSystem = FindCameras();
  krviewer::Viewer mViewer;
};

} // namespace

void TakeViewer(PictureBook& aBook) {
  ViewerScene scene;
  aBook.Save(scene.GetWindow(), "krviewer-first");
  CameraPage& page = scene.OpenStreaming("sim-colour");
  aBook.Save(scene.GetWindow(), "krviewer");

  page.GetRegion().Begin();
  Await("region of interest", [&] { return page.GetRegion().IsEditing(); });
  // As somebody who draws a part of the picture would.
  for (const auto& [name, value] :
       {std::pair{"regionWidth", 1024}, {"regionHeight", 640}, {"regionX", 448}, {"regionY", 280}})
    if (auto* const box = page.findChild<QDoubleSpinBox*>(name))
      box->setValue(value);
  AwaitFrames(page);
  aBook.Save(scene.GetWindow(), "krviewer-region");
  page.GetRegion().Cancel();
}

void TakeViewerPanels(PictureBook& aBook) {
  ViewerScene scene;
  CameraPage& page = scene.OpenStreaming("sim-colour");
  page.GetPanels().Show(Panel::Features, false);
  for (const Panel panel : {Panel::LineProfile, Panel::Intervals, Panel::Histogram})
    page.GetPanels().Show(panel, true);
  AwaitFrames(page);
  aBook.Save(scene.GetWindow(), "krviewer-panels");
  page.GetPanels().Show(Panel::Histogram, false);
  page.GetPanels().Show(Panel::Recording, true);
  AwaitFrames(page);
  aBook.Save(scene.GetWindow(), "krviewer-recording");
}

void TakeViewerTrouble(PictureBook& aBook) {
  ViewerScene scene;
  const CameraPage& page = scene.Open("sim-foreign");
  Await("word about the camera", [&] { return HasToldTrouble(page); });
  aBook.Save(scene.GetWindow(), "krviewer-message");
}

} // namespace scene
