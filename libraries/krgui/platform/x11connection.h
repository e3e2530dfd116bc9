#pragma once
// The toolkit's connection to an X server, and how replies of the server are kept. What is asked is the callers'.

#include <qwindowdefs.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

struct xcb_connection_t;

namespace krgui {

/// The toolkit's own connection, which stays its own; null when the platform is not X11 or there is no application
/// object.
xcb_connection_t* GetX11Connection();

/// The server's number for a name; 0 when it gives none. On X11 alone.
std::uint32_t FindX11Atom(std::string_view aName);

/// Gives a window that is not shown yet the frame of any window instead of a dialog's; without effect where there is no
/// X11.
void MakePlainX11Window(WId aID);

/// A reply or error, which the server's library leaves to the caller to free.
template <typename T>
using X11Reply = std::unique_ptr<T, decltype(&std::free)>;

template <typename T>
X11Reply<T> KeepReply(T* aReply) {
  return {aReply, &std::free};
}

} // namespace krgui
