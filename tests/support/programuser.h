#pragma once
// A user of a program that runs beside the test: starts it, reads its windows as assistive technology does, and works
// with the X server's mouse and keyboard. What a program offers to its user is left to the tests.

#include "accessibleprogram.h"
#include "await.h"

#include <QPoint>
#include <QProcess>
#include <QSize>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

/// Every wait ends when its condition comes true, and fails the test past a limit that only a fault can reach.
///
/// Thread: one at a time. Ownership: owns the program's process, which ends with it.
///
///     ProgramUser user(KRVIEWER_PATH, {"--simulate"}, environment);
///     ASSERT_TRUE(user.AwaitWindow("krviewer"));
///     user.Press("ctrl+o");
class ProgramUser {
public:
  inline static const int kLimitMs = krtest::GetGenerousMs();

  /// aInChild is done in the program's process before it becomes the program; empty for nothing.
  ProgramUser(const QString& aProgram, const QStringList& aArguments, const QProcessEnvironment& aEnvironment,
              const std::function<void()>& aInChild = {});
  ~ProgramUser();
  ProgramUser(const ProgramUser&) = delete;
  ProgramUser& operator=(const ProgramUser&) = delete;

  AccessibleProgram& GetScreen() { return mScreen; }
  bool Await(const QString& aWhat, const std::function<bool()>& aCondition);
  /// Waits for a window whose title begins so to have the keyboard, asking the window manager to give it.
  bool AwaitWindow(const QString& aTitle);
  bool AwaitNoWindow(const QString& aTitle);
  /// Waits for anything whose name contains a text to be on the screen, or for there to be none.
  bool AwaitText(const QString& aText);
  bool AwaitNoText(const QString& aText);
  /// Waits for a control of a role with this name to be there and enabled.
  std::optional<AccessibleItem> AwaitControl(const QString& aRole, const QString& aName);
  /// Waits for the control with the keyboard to have this name.
  bool AwaitFocus(const QString& aName);
  bool Has(const QString& aText);
  AccessibleItem GetFocused();

  /// Keys by the names that the X server has for them ("Return", "ctrl+o"), and plain text.
  void Press(const QString& aKey, int aTimes = 1) const;
  void Type(const QString& aText) const;
  /// Opens a menu of the window with the keyboard by its letter and chooses the entry of another letter.
  bool Choose(const QString& aMenuKey, const QString& aEntry, const QString& aEntryKey);
  void MoveMouse(const QPoint& aPoint) const;
  /// 1 for the left button, 4 and 5 for the wheel.
  void Click(const QPoint& aPoint, int aButton = 1) const;
  bool Click(const QString& aRole, const QString& aName);
  /// Of the window with the keyboard.
  void ResizeWindow(QSize aSize) const;
  void Drag(const QPoint& aFrom, const QPoint& aTo) const;

  bool IsRunning();
  /// Asks the program to end, as the system does when it goes down.
  void Interrupt() { mProcess.terminate(); }
  /// Waits for the program's end; its exit code, or -1 where it did not end by itself.
  int AwaitEnd();
  /// What it has printed so far.
  QString GetOutput();
  QString GetErrors();

private:
  std::optional<AccessibleItem> FindWindow(const QString& aTitle);
  std::optional<AccessibleItem> FindControl(const QString& aRole, const QString& aName);
  QString DescribeScreen();

  QProcess mProcess;
  QString mOutput;
  QString mErrors;
  AccessibleProgram mScreen;
};
