#include "platform/modalloop.h"

#include "logic/frame/dialogplacement.h"
#include "platform/topixelrect.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTimer>
#include <QWindow>

namespace krgui {

namespace {

/// Another window's, as that of a window that is not on the screen yet is not known: its owner's, which has the same
/// window manager.
QMargins GuessFrame(const QWidget* aOwner) {
  const QWindow* window = aOwner == nullptr ? nullptr : aOwner->window()->windowHandle();
  return window == nullptr ? QMargins() : window->frameMargins();
}

} // namespace

ModalLoop::ModalLoop(QWidget* aOwner)
    : mOwner(aOwner), mDialog(new DialogWindow(*this, DialogWindow::Style::Popup, aOwner)) {}

ModalLoop::~ModalLoop() {
  if (mUnseen)
    mUnseen->quit();
  if (DialogWindow* dialog = mDialog; dialog != nullptr && !mIsDying) {
    // Its handlers may be on the stack.
    dialog->Detach();
    dialog->hide();
    dialog->deleteLater();
  }
}

ModalResult ModalLoop::RunLoop() {
  const QPointer<DialogWindow> dialog = mDialog;
  if (dialog.isNull() || mHasEnded) {
    return *mResult;
  }
  dialog->MakeNative();
  Place();
  const std::shared_ptr<ModalResult> result = mResult;
  const std::weak_ptr<ModalResult> living = mResult;
  dialog->exec();
  // The loop's own share, and this object's if there still is one.
  if (living.use_count() > 1) {
    // The loop may also end without the dialog: the application quits.
    EndLoop(ModalResult::Gone);
    delete dialog.data();
  }
  return *result;
}

ModalResult ModalLoop::RunLoopWhenSlow(int aPatienceMs) {
  const std::shared_ptr<ModalResult> result = mResult;
  const std::weak_ptr<ModalResult> living = mResult;
  QEventLoop unseen;
  mUnseen = &unseen;
  QTimer::singleShot(aPatienceMs, &unseen, &QEventLoop::quit);
  if (!mHasEnded)
    unseen.exec(QEventLoop::ExcludeUserInputEvents);
  const bool isDeleted = living.use_count() == 1; // The loop's own share.
  return isDeleted ? *result : RunLoop();
}

/// Over its owner, on the owner's screen.
void ModalLoop::Place() {
  const QScreen* screen = mOwner ? mOwner->screen() : QGuiApplication::primaryScreen();
  if (screen == nullptr) {
    return;
  }
  const QRect available = screen->availableGeometry();
  const QRect owner = mOwner ? QRect(mOwner->mapToGlobal(QPoint()), mOwner->size()) : available;
  const QSize size = mDialog->size().grownBy(GuessFrame(mOwner));
  const PixelRect place = PlaceDialog({size.width(), size.height()}, ToPixelRect(owner), ToPixelRect(available));
  mDialog->move(place.left, place.top);
}

void ModalLoop::EndLoop(ModalResult aResult) {
  if (mHasEnded) {
    return;
  }
  mHasEnded = true;
  *mResult = aResult;
  if (mUnseen)
    mUnseen->quit();
  OnEnd();
  if (DialogWindow* dialog = mDialog) {
    dialog->Detach();
    if (!mIsDying) {
      dialog->Vanish();
    }
  }
}

void ModalLoop::OnSize(const QSize&) {}

void ModalLoop::OnEnd() {}

void ModalLoop::OnDialogAccept() {
  OnAccept();
}

void ModalLoop::OnDialogCancel() {
  OnCancel();
}

void ModalLoop::OnDialogClose() {
  OnCancel();
}

void ModalLoop::OnDialogResize(const QSize& aSize) {
  OnSize(aSize);
}

void ModalLoop::OnDialogExpose() {}

void ModalLoop::OnDialogDying() {
  mIsDying = true;
  EndLoop(ModalResult::Gone);
}

void ModalLoop::OnDialogParentEnd() {
  EndLoop(ModalResult::Gone);
}

} // namespace krgui
