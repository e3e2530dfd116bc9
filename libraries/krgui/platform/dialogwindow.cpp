#include "platform/dialogwindow.h"

#include "platform/altletters.h"
#include "platform/enterrepeat.h"
#include "platform/nativecaption.h"
#include "platform/x11connection.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCloseEvent>
#include <QExposeEvent>
#include <QKeyEvent>
#include <QPushButton>
#include <QThread>
#include <QWindow>

#include <algorithm>

namespace krgui {

namespace {

constexpr Qt::WindowFlags kCaptionFlags = Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;

Qt::WindowFlags GetFlags(DialogWindow::Style aStyle) {
  switch (aStyle) {
  case DialogWindow::Style::Child:
    return Qt::Widget;
  case DialogWindow::Style::FramelessWindow:
    return Qt::Widget | Qt::FramelessWindowHint;
  case DialogWindow::Style::PlainPopup:
  case DialogWindow::Style::Popup:
    break;
  }
  return Qt::Dialog | kCaptionFlags;
}

bool TakesTabFocus(const QWidget& aControl) {
  return (aControl.focusPolicy() & Qt::TabFocus) != 0 && aControl.isEnabled() && !aControl.isHidden();
}

bool CountsAsLast(const QWindow* aWindow) {
  return aWindow->isVisible() && aWindow->transientParent() == nullptr && aWindow->type() != Qt::ToolTip &&
         aWindow->type() != Qt::Popup;
}

/// What the toolkit does when a window is closed by its close function, which ours is not: that would destroy the
/// native window while it may still be needed.
void EndWithLastWindow() {
  const QWindowList windows = QGuiApplication::topLevelWindows();
  if (std::any_of(windows.cbegin(), windows.cend(), CountsAsLast)) {
    return;
  }
  Q_EMIT qGuiApp->lastWindowClosed();
  if (QGuiApplication::quitOnLastWindowClosed()) {
    QCoreApplication::quit();
  }
}

} // namespace

DialogWindow::DialogWindow(DialogOwner& aOwner, Style aStyle, QWidget* aParent)
    : QDialog(aParent), mOwner(&aOwner), mStyle(aStyle) {
  // The base class makes a window of every dialog; a child is turned back.
  setWindowFlags(GetFlags(aStyle));
  WatchEnter();
  new AltLetters(*this);
}

DialogWindow::~DialogWindow() {
  if (mOwner != nullptr) {
    mOwner->OnDialogDying();
  }
}

void DialogWindow::Detach() {
  mOwner = nullptr;
}

void DialogWindow::Vanish() {
  QList<QPointer<DialogWindow>> dependents;
  for (DialogWindow* dependent : findChildren<DialogWindow*>()) {
    dependents.append(dependent);
  }
  for (const QPointer<DialogWindow>& dependent : dependents) {
    if (dependent && dependent->mOwner != nullptr) {
      dependent->mOwner->OnDialogParentEnd();
    }
  }
  // A modal dialog may come before the application's loop, and its end is the application's business.
  const bool mayBeLast = isWindow() && parentWidget() == nullptr && isVisible() && !isModal() && !mIsClosing &&
                         mStyle != Style::FramelessWindow && thread()->loopLevel() > 0;
  hide();
  if (mayBeLast) {
    QMetaObject::invokeMethod(qGuiApp, &EndWithLastWindow, Qt::QueuedConnection);
  }
}

void DialogWindow::SetPreferredSize(const QSize& aSize) {
  mPreferredSize = aSize;
  updateGeometry();
}

QSize DialogWindow::sizeHint() const {
  return mPreferredSize.isValid() ? mPreferredSize : QDialog::sizeHint();
}

void DialogWindow::MakeNative() {
  winId();
  windowHandle()->installEventFilter(this);
  if (mStyle == Style::PlainPopup) {
    // The toolkit tells the window manager of a dialog's owner, but not of any other window's.
    MakePlainX11Window(winId());
  }
  mCaption = NativeCaption::Make(*this);
  if (mCaption) {
    mCaption->Write();
  }
}

void DialogWindow::SetCaption(const QString& aCaption) {
  // The toolkit reads "[*]" as the mark of a changed document.
  setWindowTitle(QString(aCaption).replace(QLatin1String("[*]"), QLatin1String("[*][*]")));
  if (mCaption) {
    mCaption->Write();
  }
}

void DialogWindow::SetButtons(QWidget* aAccept, QWidget* aCancel) {
  mAcceptButton = aAccept;
  if (const auto* button = qobject_cast<QAbstractButton*>(aAccept)) {
    connect(button, &QAbstractButton::clicked, this, &DialogWindow::accept);
  }
  if (const auto* button = qobject_cast<QAbstractButton*>(aCancel)) {
    connect(button, &QAbstractButton::clicked, this, &DialogWindow::reject);
  }
}

void DialogWindow::KeepDefaultButton() {
  for (QPushButton* button : findChildren<QPushButton*>()) {
    button->setAutoDefault(false);
    // The default button takes Enter before the dialog does.
    button->installEventFilter(this);
  }
}

void DialogWindow::FocusDefaultControl() {
  if (window()->focusWidget() != nullptr) {
    return;
  }
  for (QWidget* control = nextInFocusChain(); control != nullptr && control != this;
       control = control->nextInFocusChain()) {
    if (isAncestorOf(control) && TakesTabFocus(*control)) {
      control->setFocus(Qt::TabFocusReason);
      return;
    }
  }
}

void DialogWindow::accept() {
  if (mOwner != nullptr) {
    mOwner->OnDialogAccept();
  }
}

void DialogWindow::reject() {
  if (mOwner != nullptr) {
    mOwner->OnDialogCancel();
  }
}

void DialogWindow::closeEvent(QCloseEvent* aEvent) {
  const QPointer<DialogWindow> self(this);
  mIsClosing = true;
  if (mOwner != nullptr) {
    mOwner->OnDialogClose();
  }
  if (!self.isNull()) {
    mIsClosing = false;
  }
  // Refused while the opening goes on; a window that has ended must not stop its application from quitting.
  aEvent->setAccepted(self.isNull() || mOwner == nullptr);
}

void DialogWindow::keyPressEvent(QKeyEvent* aEvent) {
  // In a widget the keys of a dialog are the surrounding window's too, as a child does not close on them.
  const bool isShared = mStyle == Style::Child;
  const bool isPlain = (aEvent->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
  if (isPlain && aEvent->key() == Qt::Key_Escape) {
    reject();
    aEvent->setAccepted(!isShared);
  } else if (isPlain && IsEnter(*aEvent)) {
    aEvent->setAccepted((!IsRepeatedEnter(*aEvent) && PressEnter()) || !isShared);
  } else {
    QWidget::keyPressEvent(aEvent);
  }
}

void DialogWindow::keyReleaseEvent(QKeyEvent* aEvent) {
  // X11 reports a key that is held down as releases and presses in turn.
  if (!aEvent->isAutoRepeat()) {
    QWidget::keyReleaseEvent(aEvent);
  }
}

bool DialogWindow::PressEnter() {
  auto* focused = qobject_cast<QPushButton*>(focusWidget());
  if (focused != nullptr && focused->hasFocus()) {
    focused->click();
    return true;
  }
  if (mAcceptButton == nullptr || mAcceptButton->isEnabled()) {
    accept();
  }
  return false;
}

void DialogWindow::resizeEvent(QResizeEvent* aEvent) {
  QDialog::resizeEvent(aEvent);
  if (mOwner != nullptr) {
    mOwner->OnDialogResize(size());
  }
}

bool DialogWindow::eventFilter(QObject* aWatched, QEvent* aEvent) {
  if (aEvent->type() == QEvent::KeyPress && IsRepeatedEnter(static_cast<const QKeyEvent&>(*aEvent))) {
    return true;
  }
  if (aEvent->type() == QEvent::Expose && aWatched == windowHandle() && windowHandle()->isExposed()) {
    aWatched->removeEventFilter(this);
    if (mOwner != nullptr) {
      mOwner->OnDialogExpose();
    }
  }
  return false;
}

} // namespace krgui
