#pragma once
// What the viewer shows while it shows no camera: what it is, how to begin, and the cameras that were shown before.
// What the buttons do is left to the window.

#include "window/recentcameras.h"

#include <QWidget>

class QLabel;
class QVBoxLayout;

namespace krviewer {

/// Thread: user interface. Ownership: a child of its window.
class FirstPage : public QWidget {
  Q_OBJECT

public:
  FirstPage();

  void SetRecentCameras(const RecentCameras& aCameras);

signals:
  void FindWanted();
  void SimulationWanted();
  /// The user wants the camera with this ID, which may not be there.
  void CameraWanted(const QString& aID);

private:
  QWidget* const mRecent;
  QVBoxLayout* const mRecentButtons;
};

} // namespace krviewer
