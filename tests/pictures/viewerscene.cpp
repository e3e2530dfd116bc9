#include "viewerscene.h"

#include <QSizeGrip>

namespace scene {

using krviewer::CameraPage;

namespace {

std::shared_ptr<KrSystem> FindCameras() {
  auto system = std::make_shared<KrSystem>();
  system->SetSubnetBroadcastEnabled(false);
  Require(system->Find());
  return system;
}

} // namespace

ViewerScene::ViewerScene(const QSize& aSize)
    : mSystem(FindCameras()),
      mViewer({}, krviewer::ViewerHost{.settingsFile = mFolder.filePath("krviewer.ini"), .libraries = {}}) {
  mViewer.Begin();
  GetWindow().resize(aSize);
  Await("window of its size", [this, &aSize] {
    const auto* const grip = GetWindow().findChild<QSizeGrip*>(); // The last one to take its place.
    return grip && grip->mapTo(&GetWindow(), QPoint()).x() > aSize.width() / 2;
  });
}

ViewerScene::~ViewerScene() {
  mViewer.Finish();
}

CameraPage& ViewerScene::Open(const KrString& aName) {
  for (std::size_t index = 0; index < mSystem->GetDeviceCount(); ++index)
    if (mSystem->GetDeviceInfo(index)->GetUserDefinedName() == aName)
      mViewer.Open(krviewer::CameraInfo(mSystem, mSystem->GetDeviceInfo(index)));
  CameraPage* const page = GetWindow().GetCurrentPage();
  if (!page)
    throw std::runtime_error("The viewer did not show " + aName.ToUtf8() + ".");
  return *page;
}

CameraPage& ViewerScene::OpenStreaming(const KrString& aName) {
  CameraPage& page = Open(aName);
  Await("stream", [&] { return page.IsStreaming(); });
  AwaitFeatures(page);
  AwaitFrames(page);
  return page;
}

void ViewerScene::Set(CameraPage& aPage, const KrString& aFeature, const KrString& aValue) {
  std::optional<KrResult> done;
  aPage.Do({.run = [&](KrGenParameterArray& aParameters) { return aParameters.Get(aFeature)->FromString(aValue); },
            .isStreamStopped = true,
            .then = [&](const KrResult& aResult) { done = aResult; }});
  Await("answer of the camera", [&] { return done.has_value(); });
  Require(*done);
  Await("stream", [&] { return aPage.IsStreaming(); });
  AwaitFrames(aPage);
}

void ViewerScene::AwaitFrames(const CameraPage& aPage) {
  constexpr std::uint64_t kSomeFrames = 60;
  const std::uint64_t last = aPage.GetProgress().figures.GetFrames() + kSomeFrames;
  Await("live picture", [&] { return aPage.GetProgress().figures.GetFrames() > last; });
}

} // namespace scene
