#pragma once
// A user at the screen, on a thread of his own: looks at the windows and works with the X server's mouse and keyboard
// (xdotool), so that dialogs may open dialogs while he goes on. What he does is a test's script.

#include "await.h"
#include "windowcalls.h"

#include <QPoint>
#include <QString>
#include <QStringList>

#include <functional>
#include <string>

class QWidget;

/// Thread: the script's, which is not the user interface's; looks at widgets on that, one glance at a time.
///
///     RunWithUser([&] { result = finder.ShowModal(0); },
///                 [&](UserHands& aUser) {
///                   ASSERT_TRUE(aUser.AwaitRow("Device Selection", 1049, "T-100"));
///                   aUser.ClickRow("Device Selection", 1049, "T-100");
///                   aUser.Click("Device Selection", 1);
///                 });
class UserHands {
public:
  /// How long anything is waited for; what takes longer fails the test.
  inline static const int kLimitMs = krtest::GetGenerousMs();

  /// What it is given must outlive it.
  explicit UserHands(krtest::WindowCalls& aWindows) : mWindows(aWindows) {}

  /// Waits for a condition, which is looked at on the user-interface thread. False, and a failed test, past the limit.
  bool Await(const QString& aWhat, const std::function<bool()>& aCondition, int aLimitMs = kLimitMs) const;
  /// Waits for a window with a title to be the active one, or for it to be gone.
  bool AwaitWindow(const QString& aTitle) const;
  bool AwaitNoWindow(const QString& aTitle) const;
  /// Waits for a window that a look finds to have the keyboard, as both the toolkit and the window manager have it.
  bool AwaitActive(const QString& aWhat, const std::function<const QWidget*()>& aFind, int aLimitMs = kLimitMs) const;
  /// Waits for a menu to be open, for a control to be enabled.
  bool AwaitMenu() const;
  bool AwaitEnabled(const QString& aTitle, int aControl) const;
  /// Waits for all fields of an address to be filled.
  bool AwaitFields(const QString& aTitle, int aControl) const;
  /// Waits for a row of a tree, or of a list, whose text contains this; or for there to be none.
  bool AwaitRow(const QString& aTitle, int aControl, const QString& aText) const;
  bool AwaitNoRow(const QString& aTitle, int aControl, const QString& aText) const;

  /// The rows of a tree or list from the top: columns parted by " | ", each level moved in by two blanks.
  QStringList GetRows(const QString& aTitle, int aControl) const;
  bool IsEnabled(const QString& aTitle, int aControl) const;
  /// The text of a message box; "\n" begins a line.
  QString GetMessage(const QString& aTitle) const;

  /// Clicks the mark of a radio button or check box, whose text may be shorter than its place.
  void ClickMark(const QString& aTitle, int aControl) const;
  /// Clicks the middle of a control, or of the first row that contains a text.
  void Click(const QString& aTitle, int aControl) const;
  void ClickRow(const QString& aTitle, int aControl, const QString& aText, const QStringList& aClicks = {"1"}) const;
  /// Double-clicks a row with the left button; clicks one with the right button.
  void DoubleClickRow(const QString& aTitle, int aControl, const QString& aText) const;
  void RightClickRow(const QString& aTitle, int aControl, const QString& aText) const;
  /// Keys by the names that the X server has for them ("Return", "Tab", "ctrl+c"), and plain text.
  void Press(const QString& aKey, int aTimes = 1) const;
  void Type(const QString& aText) const;
  /// Holds a key down, which repeats until it is released.
  void Hold(const QString& aKey) const;
  void Release(const QString& aKey) const;
  /// Writes the whole screen to a file, to be looked at.
  void TakePicture(const QString& aPath) const;

private:
  std::string DescribeWindows() const;
  void Glance(const std::function<void()>& aLook) const;
  /// A point of a control on the screen.
  QPoint FindPoint(const QString& aTitle, int aControl,
                   const std::function<QPoint(const QWidget& aControl)>& aChoose) const;
  void ClickAt(const QPoint& aScreenPoint, const QStringList& aClicks) const;

  krtest::WindowCalls& mWindows;
};

/// Shows a window in a loop of its own, which blocks, and runs the script meanwhile. Returns when both have ended;
/// windows that the script leaves open are closed.
void RunWithUser(const std::function<void()>& aShow, const std::function<void(UserHands&)>& aScript);
