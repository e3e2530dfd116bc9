#include "window/endkeys.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMainWindow>
#include <QWidget>

namespace krviewer {

namespace {

// The window around what has the keyboard; null where its keys are its own.
QWidget* FindPlainWindow(QObject& aWatched) {
  if (!aWatched.isWidgetType())
    return nullptr;
  QWidget& window = *static_cast<QWidget&>(aWatched).window();
  const bool isPlain = window.windowType() == Qt::Window || window.windowType() == Qt::Dialog;
  return isPlain && !window.isModal() && !qobject_cast<QMainWindow*>(&window) ? &window : nullptr;
}

} // namespace

EndKeys::EndKeys() {
  qApp->installEventFilter(this);
}

// Later, as the window must not end while the key is still on its way through it.
bool EndKeys::eventFilter(QObject* aWatched, QEvent* aEvent) {
  QWidget* const window = aEvent->type() == QEvent::KeyPress ? FindPlainWindow(*aWatched) : nullptr;
  if (!window)
    return false;
  const auto& key = static_cast<const QKeyEvent&>(*aEvent);
  const bool isQuit = key.keyCombination() == (Qt::CTRL | Qt::Key_Q);
  const bool isClose = key.keyCombination() == (Qt::CTRL | Qt::Key_W);
  if (!isQuit && !isClose)
    return false;
  if (isQuit && !key.isAutoRepeat())
    QMetaObject::invokeMethod(this, &EndKeys::QuitWanted, Qt::QueuedConnection);
  if (isClose && !key.isAutoRepeat())
    QMetaObject::invokeMethod(window, &QWidget::close, Qt::QueuedConnection);
  return true;
}

} // namespace krviewer
