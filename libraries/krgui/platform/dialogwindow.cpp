#include "platform/dialogwindow.h"

#include "platform/nativecaption.h"
#include "platform/x11connection.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCloseEvent>
#include <QExposeEvent>
#include <QKeyEvent>
#include <QPushButton>
#include <QWindow>

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

} // namespace

DialogWindow::DialogWindow(DialogOwner& aOwner, Style aStyle, QWidget* aParent)
    : QDialog(aParent), mOwner(&aOwner), mStyle(aStyle) {
  // The base class makes a window of every dialog; a child is turned back.
  setWindowFlags(GetFlags(aStyle));
}

DialogWindow::~DialogWindow() {
  if (mOwner != nullptr) {
    mOwner->OnDialogDying();
  }
}

void DialogWindow::Detach() {
  mOwner = nullptr;
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
  reject();
  // Refused while the opening goes on; a window that has ended must not stop its application from quitting.
  aEvent->setAccepted(self.isNull() || mOwner == nullptr);
}

void DialogWindow::keyPressEvent(QKeyEvent* aEvent) {
  const bool isPlain = (aEvent->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
  if (isPlain && aEvent->key() == Qt::Key_Escape) {
    reject();
  } else if (isPlain && (aEvent->key() == Qt::Key_Return || aEvent->key() == Qt::Key_Enter)) {
    PressEnter();
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

void DialogWindow::PressEnter() {
  auto* focused = qobject_cast<QPushButton*>(focusWidget());
  if (focused != nullptr && focused->hasFocus()) {
    focused->click();
  } else if (mAcceptButton == nullptr || mAcceptButton->isEnabled()) {
    accept();
  }
}

void DialogWindow::resizeEvent(QResizeEvent* aEvent) {
  QDialog::resizeEvent(aEvent);
  if (mOwner != nullptr) {
    mOwner->OnDialogResize(size());
  }
}

bool DialogWindow::eventFilter(QObject* aWatched, QEvent* aEvent) {
  if (aEvent->type() == QEvent::Expose && aWatched == windowHandle() && windowHandle()->isExposed()) {
    aWatched->removeEventFilter(this);
    if (mOwner != nullptr) {
      mOwner->OnDialogExpose();
    }
  }
  return false;
}

} // namespace krgui
