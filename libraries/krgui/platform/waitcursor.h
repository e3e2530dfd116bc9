#pragma once
// The cursor that asks for patience, over the whole application, for as long as an object of it lives.

#include <QGuiApplication>

namespace krgui {

/// Thread: user interface.
class WaitCursor {
public:
  WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
  ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;
};

} // namespace krgui
