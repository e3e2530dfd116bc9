#pragma once
// The viewer from the chosen camera to its end: a window with the picture and the camera's features beside it, its
// title, pictures and figures at the end.

#include "acquisition.h"
#include "bridgemenu.h"
#include "camerabridges.h"
#include "commandline.h"
#include "featurebrowser.h"
#include "mainwindow.h"
#include "serialbridges.h"
#include "serialterminal.h"
#include "stopsignal.h"

#include <QObject>
#include <QTimer>

#include <memory>

namespace krviewer {

/// Shows one camera until the window is closed, the number of frames has come, or the program is interrupted.
///
/// Thread: user interface. Ownership: borrows the device information, which must outlive it.
class Viewer : public QObject {
  Q_OBJECT

public:
  Viewer(const KrDeviceInfo& aDevice, const CommandLine& aCommandLine);
  ~Viewer() override;

  /// Opens the window and runs the application's loop; gives the program's exit code.
  int Run();
  /// Why no picture could be had at all, after Run; OK where there was one, or the user did not wait for it.
  const KrResult& GetFailure() const { return mFailure; }

private:
  KrResult OpenWindow();
  void LookAgain();
  void UpdateTitle(const AcquisitionProgress& aProgress);
  void ShowTerminal();
  void TellMissingFeatures(const AcquisitionProgress& aProgress);
  void Finish();
  bool SaveBrowserPicture();
  bool SavePictures();

  const KrDeviceInfo& mDeviceInfo;
  const CommandLine mCommandLine;
  const krapps::StopSignal mStopSignal;
  MainWindow mMainWindow;
  KrDisplayWnd mWindow;
  FeatureBrowser mBrowser;
  SerialTerminal mTerminal;
  QAction* const mTerminalAction;
  SerialBridges mBridges;
  BridgeMenu mBridgeMenu;
  QAction* const mPortCreation; ///< Whether the bridges make ports of the host.
  CameraBridges mCameraBridges;
  BridgeMenu mCameraBridgeMenu;
  std::unique_ptr<Acquisition> mAcquisition;
  QTimer mTimer;
  QString mTitle;
  KrResult mFailure;
  int mExitCode = 0;
  bool mHasToldMissing = false;
  bool mIsOver = false;
};

} // namespace krviewer
