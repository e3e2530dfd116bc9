#pragma once
// One run of a dialog in a modal loop, whoever brings it to its end: the user, the dialog itself, or the end of the
// window that it belongs to. What is in the dialog, and what its keys and buttons mean, is left to those who derive.

#include "platform/dialogwindow.h"

#include <QEventLoop>
#include <QPointer>

#include <memory>

class QWidget;

namespace krgui {

/// What a modal run ended with; the numbers are those of the buttons.
enum class ModalResult {
  Gone = -1, ///< Nobody chose: the owner window ended, or the application quits. Nothing of the owner may be touched.
  OK = 1,
  Cancel = 2,
  Yes = 6,
  No = 7,
};

/// The base of dialogs that are shown for one question and return its answer.
///
/// Thread: user interface. Ownership: usually a local object of the function that asks. The dialog window belongs to
/// the owner window and to this object, whichever ends first; the object may be deleted while it runs.
class ModalLoop : private DialogOwner {
public:
  ModalLoop(const ModalLoop&) = delete;
  ModalLoop& operator=(const ModalLoop&) = delete;

protected:
  /// Makes the dialog window; aOwner is the window that it belongs to and is centred on, null for none.
  explicit ModalLoop(QWidget* aOwner);
  ~ModalLoop();

  /// The dialog window; null once it is gone.
  DialogWindow* GetDialog() const { return mDialog; }
  /// Shows the dialog, whose content is complete, and returns when it has ended. Once.
  ModalResult RunLoop();
  /// The same, but the dialog is shown only when it has not ended within a time of some tenths of a second. Until then
  /// the user's input waits. For work that is mostly short: a dialog that comes and goes at once would be a flicker,
  /// and the keyboard's way back to the owner, which the window manager has begun, would end in a window that is gone.
  ModalResult RunLoopWhenSlow(int aPatienceMs);
  /// Ends the run; a second end changes nothing. Code after it may use the dialog's controls until it returns to the
  /// loop, unless the result is Gone.
  void EndLoop(ModalResult aResult);
  bool HasEnded() const { return mHasEnded; }

  /// The Enter key, or the button that accepts.
  virtual void OnAccept() = 0;
  /// The Escape key, the button that cancels, or the close box.
  virtual void OnCancel() = 0;
  /// The dialog's client area has another size.
  virtual void OnSize(const QSize& aSize);
  /// The run ends, by whatever way; the controls still exist. Workers are joined here.
  virtual void OnEnd();

private:
  void OnDialogAccept() override;
  void OnDialogCancel() override;
  void OnDialogClose() override;
  void OnDialogResize(const QSize& aSize) override;
  void OnDialogExpose() override;
  void OnDialogDying() override;
  void OnDialogParentEnd() override;

  void Place();

  QPointer<QWidget> mOwner;
  QPointer<DialogWindow> mDialog;
  QPointer<QEventLoop> mUnseen; ///< Runs before the dialog is shown.
  bool mHasEnded = false;
  bool mIsDying = false; ///< The dialog window is in its destructor.
  /// Shared with the loop, which finds out by it that this object was deleted.
  std::shared_ptr<ModalResult> mResult = std::make_shared<ModalResult>(ModalResult::Gone);
};

} // namespace krgui
