#pragma once
// A window of the viewer: a tab for each of its cameras, under menus and a tool bar; without a camera, how to begin.
// Which cameras there are, and in which window, is left to the viewer.

#include "page/camerapage.h"
#include "panels/figurebar.h"
#include "window/firstpage.h"
#include "window/mainmenus.h"

#include <QMainWindow>

class QStackedWidget;
class QTabWidget;

namespace krviewer {

/// Thread: user interface. Ownership: a window of its own; the pages in it are the viewer's.
class MainWindow : public QMainWindow {
  Q_OBJECT

public:
  /// aIsOwn for a page that is moved out of another window's tabs.
  explicit MainWindow(bool aIsOwn = false);

  MainMenus& GetMenus() { return *mMenus; }
  FirstPage& GetFirstPage() { return *mFirstPage; }
  /// What is wrong with no camera in particular.
  MessageBar& GetBar() { return *mBar; }
  /// Says something in the status bar for a while.
  void Notice(const QString& aText);
  bool IsOwn() const { return mIsOwn; }
  void SetRecentCameras(const RecentCameras& aCameras);

  /// Adds the page as the last tab and brings it to the front.
  void AddPage(CameraPage& aPage);
  /// Takes it out; it is nobody's child then.
  void RemovePage(CameraPage& aPage);
  /// Whether it is here, after which it is in front.
  bool BringForward(CameraPage& aPage);
  /// Null without pages.
  CameraPage* GetCurrentPage() const;
  QList<CameraPage*> GetPages() const;

  /// Opens it where it was, or in the middle of the screen.
  void ShowOnScreen(const QByteArray& aLayout);
  QByteArray SaveLayout() const { return saveGeometry(); }
  /// Shows what has changed; to be called often.
  void LookAgain();

signals:
  void PageEndWanted(CameraPage* aPage);
  void MoveWanted(CameraPage* aPage);
  /// The user has closed the window, which is still on the screen.
  void EndWanted();

protected:
  /// Passes by the panels that nobody sees.
  bool focusNextPrevChild(bool aIsNext) override;
  void keyPressEvent(QKeyEvent* aEvent) override;
  void changeEvent(QEvent* aEvent) override;
  void closeEvent(QCloseEvent* aEvent) override;

private:
  CameraPage* GetPage(int aIndex) const;
  void ConnectMenus();
  void SwitchFullScreen();
  void FollowFullScreen();
  void Step(int aStep);
  void ShowTrouble(int aIndex);
  void ShowFigures(const CameraPage* aPage);

  const bool mIsOwn;
  QStackedWidget* const mParts; ///< The first page, or the tabs.
  FirstPage* const mFirstPage;
  QTabWidget* const mTabs;
  MessageBar* const mBar;
  FigureBar* const mFigures;
  MainMenus* const mMenus;
  bool mIsFullScreen = false; ///< As far as what is hidden then knows.
};

} // namespace krviewer
