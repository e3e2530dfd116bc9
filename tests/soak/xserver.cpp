#include "xserver.h"

#include <sys/socket.h>

#include <xcb/xcb.h>

std::string FindXServer() {
  xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
  ucred server{};
  socklen_t size = sizeof server;
  const bool isFound = xcb_connection_has_error(connection) == 0 &&
                       ::getsockopt(xcb_get_file_descriptor(connection), SOL_SOCKET, SO_PEERCRED, &server, &size) == 0;
  xcb_disconnect(connection);
  return isFound ? std::to_string(server.pid) : "";
}
