#pragma once
// The viewer from its command line to its end: which cameras are shown, in which windows, what is kept of them, and
// what is printed. What a window and a camera's page do is theirs.

#include "commandline.h"
#include "page/camerapage.h"
#include "stopsignal.h"
#include "window/camerafinder.h"
#include "window/endedpages.h"
#include "window/endkeys.h"
#include "window/mainwindow.h"
#include "window/viewersettings.h"
#include "window/wantedcameras.h"

#include <QObject>
#include <QTimer>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <memory>
#include <vector>

namespace krviewer {

/// How long an end is awaited.
struct EndLimits {
  std::chrono::milliseconds pictures{5000}; ///< For a camera to be given back before its pictures are taken.
  std::chrono::milliseconds batch{30'000};  ///< For everything, of a run that ends by itself.
  std::chrono::milliseconds camera{30'000}; ///< For a camera to be given back, of one that its user ends.
};

/// What the program gives the viewer beside its command line.
struct ViewerHost {
  QString settingsFile = {};                        ///< Empty to keep nothing.
  QString guideFile = {};                           ///< The document that the menu "Help" opens.
  QStringList libraries = {};                       ///< That devices are reached by, for the box that tells of them.
  std::function<KrResult()> installSimulation = {}; ///< Offers the simulated cameras; empty where they are offered.
  EndLimits endLimits = {};
  /// Ends the program, with what does not end by itself.
  std::function<void()> giveUp = [] { std::quick_exit(EXIT_FAILURE); };
};

/// Shows cameras until the last window is closed, what the command line ends it with has come, or the program is
/// interrupted.
///
/// Thread: user interface. Ownership: owns windows and pages.
class Viewer : public QObject {
  Q_OBJECT

public:
  explicit Viewer(const CommandLine& aCommandLine, const ViewerHost& aHost = {});
  ~Viewer() override;

  /// Opens the first window.
  void Begin();
  /// Shows a camera in a tab of its own, or the tab in which it is shown already, and connects it again where it is
  /// disconnected. Only after Begin.
  void Open(const CameraInfo& aCamera);
  /// Looks for a camera by its ID, address, serial number or name while the windows go on, and shows it; what was not
  /// found is said in the window. Only after Begin.
  void Search(const QString& aName) { mWanted.Search(aName); }
  /// Runs the application's loop until the end; gives the program's exit code, which for a signal that cut short a run
  /// with an end of its own is 128 and its number.
  int Run();
  /// Ends everything, as if the windows had been closed.
  void Finish();
  bool IsOver() const { return mIsOver; }
  /// The windows, the first one first.
  QList<MainWindow*> GetWindows() const;

private:
  MainWindow& AddWindow(bool aIsOwn);
  void ConnectWindow(MainWindow& aWindow);
  void CloseWindow(MainWindow& aWindow);
  MainWindow& GetActiveWindow() const;
  MainWindow* FindWindowOf(const CameraPage& aPage) const;
  void ShowFinder(FinderPurpose aPurpose = FinderPurpose::Pick);
  void OpenSimulated();
  void OpenGuide(MainWindow& aWindow);
  void ClearBars();
  void ConnectPage(CameraPage& aPage);
  void ShowAgain(CameraPage& aPage, const CameraInfo& aCamera);
  void NoteChange(const CameraPage& aPage, const QString& aFormerID);
  void MovePage(CameraPage& aPage);
  void EndPage(CameraPage& aPage);
  void Discard(CameraPage& aPage);
  void NoteEndedPages();
  void OpenReturned();
  void AwaitEndedPages();
  void LeaveCameras();
  bool LeaveMenu();
  void GiveUp(const QString& aUnderWay);
  void DeleteEnded();
  void HideWindows();
  void NoteEnd(CameraPage& aPage);
  void NoteLost();
  void SetRecentCameras(const RecentCameras& aCameras);
  void KeepState(CameraPage& aPage);
  void KeepLayouts();
  QString TakeWriteTrouble();
  QString KeepSettings();
  void CountSeconds();
  void LookAgain();
  void SaveWindowPicture();

  const CommandLine mCommandLine;
  const ViewerHost mHost;
  const krapps::StopSignal mStopSignal;
  ViewerSettings mSettings;
  RecentCameras mRecentCameras;
  std::vector<std::unique_ptr<MainWindow>> mWindows;
  std::vector<std::unique_ptr<CameraPage>> mPages;
  EndedPages mEndedPages;
  std::vector<CameraInfo> mReturning; ///< To be opened when pages of the same camera have given it back.
  std::vector<std::unique_ptr<MainWindow>> mEndedWindows;
  EndKeys mEndKeys;
  CameraFinder mFinder;
  WantedCameras mWanted;
  QTimer mTimer;
  QTimer mEndTimer;
  KrString mSimulatedCamera; ///< That the user is shown who wants just any; empty until somebody does.
  int mOpened = 0;           ///< So many cameras so far.
  int mLoopLevel = 0;        ///< How many loops run while none of a window's own does.
  bool mIsRunning = false;   ///< The application's loop is the viewer's.
  int mExitCode = 0;
  bool mIsCutShort = false; ///< A signal came before the end that the command line asks for.
  bool mIsOver = false;
};

} // namespace krviewer
