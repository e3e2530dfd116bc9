#pragma once
// The toolkit's dialog of one opening. It turns what the user does to a dialog into calls of its owner and keeps
// nothing of the toolkit's own habits (Escape hides, Enter presses the button with the focus). What they mean is left
// to the owner.

#include <QDialog>
#include <QPointer>

#include <memory>

namespace krgui {

class NativeCaption;

/// Who is told what happens to a dialog. Each call may end the opening and even the owner.
class DialogOwner {
public:
  /// The Enter key that no control took, or the button with id 1.
  virtual void OnDialogAccept() = 0;
  /// The Escape key or the button with id 2.
  virtual void OnDialogCancel() = 0;
  /// The caption's close box, or whatever else closes the widget.
  virtual void OnDialogClose() = 0;
  virtual void OnDialogResize(const QSize& aSize) = 0;
  /// The window came onto the screen for the first time.
  virtual void OnDialogExpose() = 0;
  /// The dialog is being destroyed by somebody else, usually with its parent; its controls still exist.
  virtual void OnDialogDying() = 0;
  /// The window that owns the dialog's has ended.
  virtual void OnDialogParentEnd() = 0;

protected:
  ~DialogOwner() = default;
};

class DialogWindow : public QDialog {
  Q_OBJECT

public:
  enum class Style {
    Child,           ///< Inside a widget, without frame.
    FramelessWindow, ///< To be put into a native window of another toolkit.
    Popup,           ///< A window with caption, system menu and close box, in a dialog's frame.
    PlainPopup,      ///< The same in the frame of any window, where the window system knows the difference.
  };

  DialogWindow(DialogOwner& aOwner, Style aStyle, QWidget* aParent);
  ~DialogWindow() override;

  /// Tells the owner nothing more.
  void Detach();
  /// Leaves the screen for good, after Detach: takes the dialogs along that lie in it or belong to it, and lets the
  /// application end with its last window as the user's closing does.
  void Vanish();
  /// The size that layouts give the dialog when they are free to.
  void SetPreferredSize(const QSize& aSize);
  /// Makes the native window of a popup, before it is shown, and watches for its coming onto the screen.
  void MakeNative();
  /// The caption as it is: nothing in it is a placeholder, nothing is added to it where the window system lets us.
  void SetCaption(const QString& aCaption);
  /// Wires the buttons that accept and cancel; null for none.
  void SetButtons(QWidget* aAccept, QWidget* aCancel);
  /// Keeps the buttons made so far from becoming the default button with the focus.
  void KeepDefaultButton();
  /// Gives the focus to the first control that takes it, unless a control has it already.
  void FocusDefaultControl();

  void accept() override;
  void reject() override;
  QSize sizeHint() const override;

protected:
  void closeEvent(QCloseEvent* aEvent) override;
  void keyPressEvent(QKeyEvent* aEvent) override;
  void keyReleaseEvent(QKeyEvent* aEvent) override;
  void resizeEvent(QResizeEvent* aEvent) override;
  bool eventFilter(QObject* aWatched, QEvent* aEvent) override;

private:
  /// True when a button of the dialog took the key.
  bool PressEnter();

  DialogOwner* mOwner; ///< Null once the opening has ended.
  const Style mStyle;
  QSize mPreferredSize;
  bool mIsClosing = false; ///< The toolkit is closing the window and sees to the application's end itself.
  QPointer<QWidget> mAcceptButton;
  std::unique_ptr<NativeCaption> mCaption; ///< Null without a native window of X11.
};

} // namespace krgui
