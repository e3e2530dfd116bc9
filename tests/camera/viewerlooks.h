#pragma once
// What a user sees of the viewer: its window, and which entries of its menu can be chosen. Looks are for the
// user-interface thread alone.

#include "userhands.h"

#include <QAction>
#include <QApplication>
#include <QKeySequence>
#include <QMainWindow>

inline const QKeySequence kTerminalKey = Qt::CTRL | Qt::Key_T;
inline const QKeySequence kBridgesKey = Qt::CTRL | Qt::Key_B;
inline const QKeySequence kCameraBridgesKey = Qt::CTRL | Qt::Key_K;

inline QMainWindow* FindViewer() {
  for (QWidget* const window : QApplication::topLevelWidgets())
    if (auto* const viewer = qobject_cast<QMainWindow*>(window); viewer && viewer->isVisible())
      return viewer;
  return nullptr;
}

/// Whether the entry of the viewer's menu with this key can be chosen.
inline bool IsToolOffered(const QKeySequence& aKey) {
  const QMainWindow* const viewer = FindViewer();
  if (!viewer)
    return false;
  for (const QAction* const action : viewer->findChildren<QAction*>())
    if (action->shortcut() == aKey)
      return action->isEnabled();
  return false;
}

/// Closes the viewer, whatever is open over it. The script's thread.
inline void EndViewer(const UserHands& aUser) {
  aUser.Await("the viewer's end", [] {
    if (QMainWindow* const viewer = FindViewer())
      viewer->close();
    return FindViewer() == nullptr;
  });
}
