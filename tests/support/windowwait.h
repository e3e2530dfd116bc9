#pragma once
// Waits for windows and for what their events bring, with a limit that only a fault can reach; the toolkit's own waits
// give up after five seconds, which a busy machine may take.

#include "await.h"

#include <QTest>

namespace krtest {

inline const int kGenerousMs = GetGenerousMs();

/// Handles events until a window (QWidget or QWindow) is on the screen.
template <typename Window>
[[nodiscard]] bool AwaitExposed(Window* aWindow) {
  return QTest::qWaitForWindowExposed(aWindow, kGenerousMs);
}

/// Handles events until a window has the keyboard.
template <typename Window>
[[nodiscard]] bool AwaitActive(Window* aWindow) {
  return QTest::qWaitForWindowActive(aWindow, kGenerousMs);
}

/// Handles events until a condition holds.
template <typename Condition>
[[nodiscard]] bool AwaitCondition(Condition aCondition) {
  return QTest::qWaitFor(aCondition, kGenerousMs);
}

} // namespace krtest
