#pragma once
// The Enter key of the terminal: wherever in the window it is pressed, it sends, once until it is released.

#include <QObject>

#include <functional>

class QEvent;
class QKeyEvent;
class QWidget;

namespace krgui {

/// Takes the first key-down of Enter from whatever in a dialog has the focus. Repeated ones go their ordinary way,
/// which does nothing with them; within a window of the application's, which may well do something, they are taken too.
/// Every key of other windows goes its ordinary way, lists that are open included.
///
/// Thread: user interface. Ownership: the window's; it ends before the dialog, perhaps in what it calls.
class EnterKey : public QObject {
public:
  EnterKey(QWidget& aDialog, std::function<void()> aPress);

protected:
  bool eventFilter(QObject* aWatched, QEvent* aEvent) override;

private:
  bool IsInDialog(const QObject* aWatched) const;
  bool Take(const QKeyEvent& aEvent);

  QWidget& mDialog;
  const std::function<void()> mPress;
  bool mIsHeld = false;
  bool mOwnsRepeats = false; ///< The last press was taken here.
};

} // namespace krgui
