#include "serial/enterkey.h"

#include "platform/enterrepeat.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QWidget>

#include <utility>

namespace krgui {

EnterKey::EnterKey(QWidget& aDialog, std::function<void()> aPress) : mDialog(aDialog), mPress(std::move(aPress)) {
  QCoreApplication::instance()->installEventFilter(this);
}

bool EnterKey::eventFilter(QObject* aWatched, QEvent* aEvent) {
  switch (aEvent->type()) {
  case QEvent::KeyPress: {
    const auto& key = static_cast<const QKeyEvent&>(*aEvent);
    // The native window has each key first.
    if (!IsEnter(key) || !aWatched->isWidgetType())
      return false;
    if (IsInDialog(aWatched))
      return Take(key);
    mOwnsRepeats = mOwnsRepeats && IsRepeatedEnter(key);
    return false;
  }
  case QEvent::KeyRelease: {
    // Wherever: what the key has done may have opened another window.
    const auto& key = static_cast<const QKeyEvent&>(*aEvent);
    mIsHeld = mIsHeld && (!IsEnter(key) || key.isAutoRepeat());
    return false;
  }
  case QEvent::WindowDeactivate:
    // Another program hears of the release.
    mIsHeld = mIsHeld && aWatched != mDialog.window();
    return false;
  default:
    return false;
  }
}

bool EnterKey::IsInDialog(const QObject* aWatched) const {
  const auto* widget = static_cast<const QWidget*>(aWatched);
  return widget->window() == mDialog.window() && (widget == &mDialog || mDialog.isAncestorOf(widget));
}

bool EnterKey::Take(const QKeyEvent& aEvent) {
  if (IsRepeatedEnter(aEvent))
    return mOwnsRepeats && !mDialog.isWindow();
  if (aEvent.modifiers().testFlag(Qt::AltModifier))
    return false;
  mOwnsRepeats = true;
  // A key-down more without a release between them is no second press.
  if (std::exchange(mIsHeld, true))
    return true;
  // This object may be gone afterwards.
  const std::function<void()> press = mPress;
  press();
  return true;
}

} // namespace krgui
