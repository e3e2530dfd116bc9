#include "platform/altletters.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QWidget>

namespace krgui {

namespace {

/// Neither what the third level of a keyboard gives nor a command.
bool IsAltLetter(const QKeyEvent& aEvent) {
  constexpr Qt::KeyboardModifiers kOthers = Qt::ControlModifier | Qt::MetaModifier | Qt::GroupSwitchModifier;
  return aEvent.modifiers().testFlag(Qt::AltModifier) && (aEvent.modifiers() & kOthers) == Qt::NoModifier &&
         !aEvent.text().isEmpty() && aEvent.text().front().isPrint();
}

} // namespace

AltLetters::AltLetters(QWidget& aDialog) : QObject(&aDialog), mDialog(aDialog) {
  // Of the application's: the controls of a dialog come and go.
  QCoreApplication::instance()->installEventFilter(this);
}

bool AltLetters::eventFilter(QObject* aWatched, QEvent* aEvent) {
  // What is a mnemonic at the moment was taken before.
  if (aEvent->type() != QEvent::KeyPress || !IsAltLetter(static_cast<const QKeyEvent&>(*aEvent)) || !IsField(aWatched))
    return false;
  aEvent->ignore();
  return true;
}

/// Whatever can be typed into asks for an input method.
bool AltLetters::IsField(const QObject* aWatched) const {
  if (!aWatched->isWidgetType())
    return false;
  const auto* widget = static_cast<const QWidget*>(aWatched);
  return widget->testAttribute(Qt::WA_InputMethodEnabled) && mDialog.isAncestorOf(widget);
}

} // namespace krgui
