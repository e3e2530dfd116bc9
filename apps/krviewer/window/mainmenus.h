#pragma once
// The menus and the tool bar of a viewer's window. What its own entries ask for is left to the window and the viewer;
// those that act on a camera are PageActions.

#include "page/pageactions.h"
#include "window/recentcameras.h"

#include <QKeySequence>
#include <QObject>
#include <QString>

#include <functional>

class QAction;
class QMainWindow;
class QMenu;
class QToolBar;

namespace krviewer {

/// What of a window decides about its entries.
struct WindowLook {
  int pages = 0;
  bool isOwn = false; ///< It holds a page that was moved out of another one's tabs.
  bool isFullScreen = false;
};

/// Thread: user interface. Ownership: a child of its window, as its entries are.
class MainMenus : public QObject {
  Q_OBJECT

public:
  MainMenus(QMainWindow& aWindow, const std::function<CameraPage*()>& aGetPage);

  void SetRecentCameras(const RecentCameras& aCameras);
  /// Enables what makes sense at the moment; to be called often.
  void LookAgain(const WindowLook& aLook);
  /// Hides the bars, or shows them; the keys go on working.
  void SetShown(bool aIsShown);

signals:
  void FindWanted();
  /// The cameras are to be given addresses.
  void AddressesWanted();
  void SimulationWanted();
  void CameraWanted(const QString& aID);
  void ForgetWanted();
  void CloseCameraWanted();
  void QuitWanted();
  void FullScreenWanted();
  void MoveWanted();
  /// The tab so many further on.
  void StepWanted(int aStep);
  void GuideWanted();
  void KeysWanted();
  void AboutWanted();

private:
  using Signal = void (MainMenus::*)();

  /// aSignal is null for an entry that the caller connects.
  QAction* Add(QMenu& aMenu, const char* aName, const QString& aText, const QKeySequence& aKey, Signal aSignal);
  void AddSteps(QMenu& aMenu);

  QMainWindow& mWindow;
  PageActions mPageActions;
  QToolBar* const mToolBar;
  QMenu* mRecent = nullptr;
  QAction* mCloseCamera = nullptr;
  QAction* mFullScreen = nullptr;
  QAction* mMove = nullptr;
  QAction* mNext = nullptr;
  QAction* mPrevious = nullptr;
};

} // namespace krviewer
