#pragma once
// Lets a test act while a modal dialog runs, as a user does: once the dialog is on the screen and active.

#include <QApplication>
#include <QPointer>
#include <QTest>
#include <QTimer>

#include <functional>

namespace krgui {

/// Calls an action, once, as soon as another modal dialog than the one there is now is active.
inline void DuringNextModalLoop(std::function<void(QWidget&)> aAction) {
  auto* timer = new QTimer(qApp);
  const QPointer<QWidget> before(QApplication::activeModalWidget());
  QObject::connect(timer, &QTimer::timeout, qApp, [timer, before, action = std::move(aAction)] {
    QWidget* dialog = QApplication::activeModalWidget();
    if (dialog == nullptr || dialog == before || !dialog->isActiveWindow()) {
      return;
    }
    timer->stop();
    timer->deleteLater();
    action(*dialog);
  });
  timer->start(0);
}

} // namespace krgui
