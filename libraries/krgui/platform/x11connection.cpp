#include "platform/x11connection.h"

#include <QGuiApplication>

#include <xcb/xcb.h>

namespace krgui {

xcb_connection_t* GetX11Connection() {
  if (QCoreApplication::instance() == nullptr) {
    return nullptr;
  }
  const auto* platform = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return platform == nullptr ? nullptr : platform->connection();
}

std::uint32_t FindX11Atom(std::string_view aName) {
  xcb_connection_t* connection = GetX11Connection();
  const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(aName.size()), aName.data());
  const auto reply = KeepReply(xcb_intern_atom_reply(connection, cookie, nullptr));
  return reply ? reply->atom : 0;
}

void MakePlainX11Window(WId aID) {
  if (xcb_connection_t* connection = GetX11Connection()) {
    constexpr std::uint8_t kBits = 32;
    const xcb_atom_t type = FindX11Atom("_NET_WM_WINDOW_TYPE_NORMAL");
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(aID),
                        FindX11Atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, kBits, 1, &type);
  }
}

} // namespace krgui
