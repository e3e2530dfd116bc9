#include "platform/x11connection.h"

#include <QGuiApplication>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <xcb/xcb.h>
#include <xcb/xcbext.h>

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace krgui {

xcb_connection_t* GetX11Connection() {
  if (QCoreApplication::instance() == nullptr) {
    return nullptr;
  }
  const auto* platform = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return platform == nullptr ? nullptr : platform->connection();
}

std::string FindX11DisplayName() {
  xcb_connection_t* connection = GetX11Connection();
  sockaddr_un address = {};
  socklen_t length = sizeof address;
  if (connection == nullptr ||
      getpeername(xcb_get_file_descriptor(connection), reinterpret_cast<sockaddr*>(&address), &length) != 0 ||
      address.sun_family != AF_UNIX) {
    return {};
  }
  // The socket of display 7 is /tmp/.X11-unix/X7, in the file system or beside it, where names begin with a zero.
  std::string_view path(address.sun_path, std::min(length - offsetof(sockaddr_un, sun_path), sizeof address.sun_path));
  path.remove_prefix(path.starts_with('\0') ? 1 : 0);
  path = path.substr(0, path.find('\0'));
  constexpr std::string_view kDirectory = "/tmp/.X11-unix/X";
  const bool isNumbered = path.starts_with(kDirectory) && path.size() > kDirectory.size() &&
                          path.find_first_not_of("0123456789", kDirectory.size()) == std::string_view::npos;
  return isNumbered ? ':' + std::string(path.substr(kDirectory.size())) : std::string();
}

std::uint32_t FindX11Atom(std::string_view aName) {
  xcb_connection_t* connection = GetX11Connection();
  const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(aName.size()), aName.data());
  const auto reply = KeepReply(xcb_intern_atom_reply(connection, cookie, nullptr));
  return reply ? reply->atom : 0;
}

std::optional<QRect> FindX11WindowRect(WId aID) {
  constexpr std::chrono::milliseconds kLimit(100);
  xcb_connection_t* connection = GetX11Connection();
  if (connection == nullptr) {
    return std::nullopt;
  }
  const auto cookie = xcb_get_geometry(connection, static_cast<xcb_drawable_t>(aID));
  const auto reply =
      AwaitReply<xcb_get_geometry_reply_t>(connection, cookie, std::chrono::steady_clock::now() + kLimit);
  return reply ? std::optional(QRect(reply->x, reply->y, reply->width, reply->height)) : std::nullopt;
}

void MakePlainX11Window(WId aID) {
  if (xcb_connection_t* connection = GetX11Connection()) {
    constexpr std::uint8_t kBits = 32;
    const xcb_atom_t type = FindX11Atom("_NET_WM_WINDOW_TYPE_NORMAL");
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(aID),
                        FindX11Atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, kBits, 1, &type);
  }
}

void AwaitX11Data(xcb_connection_t* aConnection, std::chrono::steady_clock::time_point aEnd) {
  constexpr std::chrono::milliseconds kLongest = std::chrono::minutes(1);
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(aEnd - std::chrono::steady_clock::now());
  pollfd descriptor = {xcb_get_file_descriptor(aConnection), POLLIN, 0};
  poll(&descriptor, 1, static_cast<int>(std::clamp(left, std::chrono::milliseconds(0), kLongest).count()));
}

X11Reply<void> AwaitX11Reply(xcb_connection_t* aConnection, std::uint32_t aSequence,
                             std::chrono::steady_clock::time_point aEnd) {
  // The toolkit's own thread may take the data that the reply is among: looking again from time to time finds it.
  constexpr std::chrono::milliseconds kLookAgain(2);
  xcb_flush(aConnection);
  void* reply = nullptr;
  xcb_generic_error_t* error = nullptr;
  while (xcb_poll_for_reply(aConnection, aSequence, &reply, &error) == 0) {
    const auto now = std::chrono::steady_clock::now();
    if (now >= aEnd) {
      // Whenever it comes, nobody asks for it any more.
      xcb_discard_reply(aConnection, aSequence);
      return KeepReply(static_cast<void*>(nullptr));
    }
    AwaitX11Data(aConnection, std::min(aEnd, now + kLookAgain));
  }
  std::free(error);
  return KeepReply(reply);
}

} // namespace krgui
