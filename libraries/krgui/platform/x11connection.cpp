#include "platform/x11connection.h"

#include <QGuiApplication>

namespace krgui {

xcb_connection_t* GetX11Connection() {
  if (QCoreApplication::instance() == nullptr) {
    return nullptr;
  }
  const auto* platform = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return platform == nullptr ? nullptr : platform->connection();
}

} // namespace krgui
