#include "browser/windowkeys.h"

#include <QApplication>
#include <QKeyEvent>

#include <algorithm>
#include <utility>

namespace krgui {

namespace {

QKeyCombination GetCombination(const QKeyEvent& aEvent) {
  return QKeyCombination(aEvent.modifiers() & ~Qt::KeypadModifier, static_cast<Qt::Key>(aEvent.key()));
}

} // namespace

WindowKeys::WindowKeys() {
  // Before the control with the focus, which may have a meaning of its own for the key.
  qApp->installEventFilter(this);
}

bool WindowKeys::eventFilter(QObject* aWatched, QEvent* aEvent) {
  if ((aEvent->type() != QEvent::KeyPress && aEvent->type() != QEvent::ShortcutOverride) || !aWatched->isWidgetType())
    return false;
  auto& event = static_cast<QKeyEvent&>(*aEvent);
  const Key* key = Find(static_cast<const QWidget&>(*aWatched), event);
  if (key == nullptr)
    return false;
  event.accept();
  // A shortcut that is overridden comes as a press.
  if (event.type() == QEvent::KeyPress && !event.isAutoRepeat()) {
    const std::function<void()> act = key->act;
    act();
  }
  return true;
}

const WindowKeys::Key* WindowKeys::Find(const QWidget& aFocus, const QKeyEvent& aEvent) const {
  const auto found = std::find_if(mKeys.begin(), mKeys.end(), [&](const Key& aKey) {
    return aKey.place && (aKey.place == &aFocus || aKey.place->isAncestorOf(&aFocus)) &&
           aKey.key == GetCombination(aEvent) && (!aKey.isWanted || aKey.isWanted());
  });
  return found == mKeys.end() ? nullptr : &*found;
}

} // namespace krgui
