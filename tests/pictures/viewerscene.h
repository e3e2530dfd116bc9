#pragma once
// The viewer as its scenes have it: started for the first time, with one window, on the simulated lab.

#include "krsystem/krsystem.h"
#include "scene.h"
#include "window/viewer.h"

#include <QTemporaryDir>

#include <memory>

namespace scene {

/// Thread: user interface. Ownership: the viewer ends with it.
class ViewerScene {
public:
  static constexpr QSize kUsualSize{1200, 800};

  explicit ViewerScene(const QSize& aSize = kUsualSize);
  ~ViewerScene();
  ViewerScene(const ViewerScene&) = delete;
  ViewerScene& operator=(const ViewerScene&) = delete;

  krviewer::MainWindow& GetWindow() { return *mViewer.GetWindows().constFirst(); }
  krviewer::CameraPage& Open(const KrString& aName);
  /// Opens one and waits until its features are read and frames come.
  krviewer::CameraPage& OpenStreaming(const KrString& aName);
  /// Sets a feature of a camera that streams, and waits until that has been done.
  static void Set(krviewer::CameraPage& aPage, const KrString& aFeature, const KrString& aValue);
  /// Waits for so many frames that the window and its panels have caught up.
  static void AwaitFrames(const krviewer::CameraPage& aPage);

private:
  const QTemporaryDir mFolder;
  const std::shared_ptr<KrSystem> mSystem;
  krviewer::Viewer mViewer;
};

} // namespace scene
