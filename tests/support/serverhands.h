#pragma once
// A user's hands at the X server's mouse and keyboard (xdotool), for windows of any program. What the hands do is a
// test's script.

#include "windowwait.h"

#include <QProcess>
#include <QString>
#include <QStringList>

#include <gtest/gtest.h>

namespace krtest {

/// Does what xdotool can, and returns what it prints; nothing where that fails, which is no failure: for hands that may
/// come too late.
inline QString TryHands(const QStringList& aMovement) {
  QProcess hands;
  hands.start("xdotool", aMovement);
  EXPECT_TRUE(hands.waitForFinished(GetGenerousMs())) << "xdotool " << aMovement.join(' ').toStdString();
  return QString::fromUtf8(hands.readAllStandardOutput()).trimmed();
}

/// The same for what has to succeed.
inline QString MoveHands(const QStringList& aMovement) {
  QProcess hands;
  hands.start("xdotool", aMovement);
  EXPECT_TRUE(hands.waitForFinished(GetGenerousMs()) && hands.exitStatus() == QProcess::NormalExit &&
              hands.exitCode() == 0)
      << "xdotool " << aMovement.join(' ').toStdString() << ": " << hands.readAllStandardError().toStdString();
  return QString::fromUtf8(hands.readAllStandardOutput()).trimmed();
}

/// The windows on the screen, by the server's numbers, whose titles match.
inline QStringList FindWindows(const QString& aTitle) {
  return TryHands({"search", "--onlyvisible", "--name", aTitle}).split('\n', Qt::SkipEmptyParts);
}

inline std::string DescribeWindows() {
  QString text;
  for (const QString& window : FindWindows("."))
    text += '"' + TryHands({"getwindowname", window}) + "\" ";
  const QString active = TryHands({"getactivewindow", "getwindowname"});
  return (text + "of which is active \"" + active + '"').toStdString();
}

/// Waits for a window whose title matches to be the active one, asking the window manager for it, and returns its
/// number.
inline QString ActivateWindow(const QString& aTitle) {
  QString active;
  const bool isActive = AwaitCondition([&] {
    const QStringList windows = FindWindows(aTitle);
    active = TryHands({"getactivewindow"});
    if (windows.isEmpty() || windows.contains(active))
      return !windows.isEmpty();
    // Without --sync, which waits for ever for a window that has gone.
    TryHands({"windowactivate", windows.front()});
    return false;
  });
  EXPECT_TRUE(isActive) << "There is no window " << aTitle.toStdString() << " to be used, but " << DescribeWindows();
  return active;
}

/// Types into a device finder the name of what it is to give, once: its tree has items as soon as they answer. The keys
/// are sent to that window alone, so that none reaches what comes after it.
inline void TypeIntoFinder(const QString& aFinder, const QString& aName) {
  TryHands({"key", "--window", aFinder, "Home"});
  TryHands({"type", "--window", aFinder, aName});
  TryHands({"key", "--window", aFinder, "Return"});
}

} // namespace krtest
