#pragma once
// What reaches a control without a press of a button or a key: assistive technology and the mouse wheel.

#include <QAccessible>
#include <QCoreApplication>
#include <QString>
#include <QWheelEvent>
#include <QWidget>

#include <gtest/gtest.h>

namespace krtest {

/// Has a control do what it offers to assistive technology.
inline void DoAccessibly(QWidget& aControl, const QString& aAction) {
  QAccessibleInterface* const interface = QAccessible::queryAccessibleInterface(&aControl);
  ASSERT_NE(interface, nullptr);
  ASSERT_NE(interface->actionInterface(), nullptr);
  ASSERT_TRUE(interface->actionInterface()->actionNames().contains(aAction)) << aAction.toStdString();
  interface->actionInterface()->doAction(aAction);
}

inline void ToggleAccessibly(QWidget& aControl) {
  DoAccessibly(aControl, QAccessibleActionInterface::toggleAction());
}

/// Turns the wheel by one notch, away from the user or towards him; true when the control takes it.
inline bool TurnWheel(QWidget& aControl, bool aIsAway) {
  const QPointF place(5, 5);
  QWheelEvent event(place, aControl.mapToGlobal(place), {}, {0, aIsAway ? 120 : -120}, Qt::NoButton, Qt::NoModifier,
                    Qt::NoScrollPhase, false);
  QCoreApplication::sendEvent(&aControl, &event);
  return event.isAccepted();
}

} // namespace krtest
