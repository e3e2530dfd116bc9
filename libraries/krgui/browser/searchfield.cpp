#include "browser/searchfield.h"

#include <QKeyEvent>
#include <QPointer>

#include <utility>

namespace krgui {

namespace {

bool IsEnter(const QKeyEvent& aEvent) {
  return aEvent.key() == Qt::Key_Return || aEvent.key() == Qt::Key_Enter;
}

/// Opens and closes the search row, which is the window's.
bool IsWindowsKey(const QKeyEvent& aEvent) {
  return aEvent.key() == Qt::Key_F && (aEvent.modifiers() & Qt::ControlModifier) != 0;
}

/// A key that types a character; arrows, Home, Delete and the like type none.
bool TypesCharacter(const QKeyEvent& aEvent) {
  return aEvent.key() < Qt::Key_Escape || IsEnter(aEvent) || aEvent.key() == Qt::Key_Backspace;
}

} // namespace

SearchField::SearchField(std::function<void()> aMoveToNext, std::function<void()> aOnEdited, QWidget* aParent)
    : QLineEdit(aParent), mMoveToNext(std::move(aMoveToNext)), mOnEdited(std::move(aOnEdited)) {
  connect(this, &QLineEdit::textChanged, this, [this] {
    mIsEdited = true;
    mIsEditedByEvent = mEvents > 0;
    // From a menu of the field's, say, which does not come as an event of its own. No other event tells of it then: one
    // that a window has for all that is in it does not survive the end of one of them.
    if (mEvents == 0)
      QMetaObject::invokeMethod(this, &SearchField::TellEdit, Qt::QueuedConnection);
  });
}

void SearchField::TellEdit() {
  if (!mIsEdited)
    return;
  mIsEdited = false;
  const std::function<void()> onEdited = mOnEdited;
  onEdited();
}

bool SearchField::event(QEvent* aEvent) {
  if (aEvent->type() == QEvent::ShortcutOverride && IsWindowsKey(*static_cast<QKeyEvent*>(aEvent))) {
    aEvent->ignore();
    return true;
  }
  const QPointer<SearchField> living(this);
  ++mEvents;
  const bool isHandled = QLineEdit::event(aEvent);
  if (living && --mEvents == 0 && std::exchange(mIsEditedByEvent, false))
    TellEdit();
  return isHandled;
}

void SearchField::keyPressEvent(QKeyEvent* aEvent) {
  if ((aEvent->modifiers() & Qt::ControlModifier) != 0 && TypesCharacter(*aEvent)) {
    HandleControlKey(*aEvent);
    return;
  }
  if (IsEnter(*aEvent)) {
    // Taken before the handler, which may end the field; a dialog's default button must not hear of it.
    aEvent->accept();
    const std::function<void()> move = mMoveToNext;
    move();
    return;
  }
  if (aEvent->key() == Qt::Key_Escape) {
    // The field wants all keys: a window that Escape closes stays.
    aEvent->accept();
    return;
  }
  QLineEdit::keyPressEvent(aEvent);
}

void SearchField::HandleControlKey(QKeyEvent& aEvent) {
  if (IsWindowsKey(aEvent)) {
    aEvent.ignore();
    return;
  }
  aEvent.accept();
  if (aEvent.key() == Qt::Key_C)
    copy();
  else if (aEvent.key() == Qt::Key_V)
    paste();
  else if (aEvent.key() == Qt::Key_X)
    cut();
}

} // namespace krgui
