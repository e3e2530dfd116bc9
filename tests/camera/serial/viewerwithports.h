#pragma once
// A user at the viewer of a camera with serial ports.

#include "terminaluser.h"
#include "viewer.h"

#include <QAction>
#include <QMainWindow>

inline const QKeySequence kTerminalKey = Qt::CTRL | Qt::Key_T;
inline const QKeySequence kBridgesKey = Qt::CTRL | Qt::Key_B;

/// Looks; user-interface thread alone.
inline QMainWindow* FindViewer() {
  for (QWidget* const window : QApplication::topLevelWidgets())
    if (auto* const viewer = qobject_cast<QMainWindow*>(window); viewer && viewer->isVisible())
      return viewer;
  return nullptr;
}

/// Whether the entry of the viewer's menu with this key can be chosen. Looks.
inline bool IsToolOffered(const QKeySequence& aKey) {
  const QMainWindow* const viewer = FindViewer();
  if (!viewer)
    return false;
  for (const QAction* const action : viewer->findChildren<QAction*>())
    if (action->shortcut() == aKey)
      return action->isEnabled();
  return false;
}

class ViewerUser : public TerminalUser {
protected:
  /// Runs the viewer on the camera and lets the user do this once he is offered to use its ports; he ends the viewer.
  void RunViewer(const std::function<void(UserHands&, const TerminalHands&)>& aScript) {
    krviewer::Viewer viewer(*mSystem.GetDeviceInfo(0), {});
    RunWithUser(
        [&] { EXPECT_EQ(viewer.Run(), 0); },
        [&](UserHands& aUser) {
          if (aUser.Await("the viewer", [] { return IsToolOffered(kTerminalKey) && FindViewer()->isActiveWindow(); }))
            aScript(aUser, TerminalHands(aUser));
          EndViewer(aUser);
        });
  }

private:
  static void EndViewer(UserHands& aUser) {
    aUser.Await("the viewer's end", [] {
      if (QMainWindow* const viewer = FindViewer())
        viewer->close();
      return FindViewer() == nullptr;
    });
  }
};
