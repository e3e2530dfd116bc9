#pragma once
// The toolkit's connection to an X server, and how replies of the server are awaited and kept. What is asked is the
// callers'.

#include <QRect>
#include <qwindowdefs.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

struct xcb_connection_t;

namespace krgui {

/// The toolkit's own connection, which stays its own; null when the platform is not X11 or there is no application
/// object.
xcb_connection_t* GetX11Connection();

/// The display that the toolkit is connected to, as a further connection names it; empty where that cannot be told,
/// which names the environment's.
std::string FindX11DisplayName();

/// The server's number for a name; 0 when it gives none. On X11 alone.
std::uint32_t FindX11Atom(std::string_view aName);

/// Where a window lies in its parent in the server's pixels, which is what the toolkit's rounding made of it; nothing
/// where there is no X11, or no answer within a tenth of a second.
std::optional<QRect> FindX11WindowRect(WId aID);

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

/// Waits for data of the server, and not for longer than until aEnd. Another thread may take them meanwhile.
void AwaitX11Data(xcb_connection_t* aConnection, std::chrono::steady_clock::time_point aEnd);

/// The reply to a request, from a server that may have stopped; null when it has none until aEnd, or an error.
X11Reply<void> AwaitX11Reply(xcb_connection_t* aConnection, std::uint32_t aSequence,
                             std::chrono::steady_clock::time_point aEnd);

template <typename T, typename Cookie>
X11Reply<T> AwaitReply(xcb_connection_t* aConnection, Cookie aCookie, std::chrono::steady_clock::time_point aEnd) {
  return KeepReply(static_cast<T*>(AwaitX11Reply(aConnection, aCookie.sequence, aEnd).release()));
}

} // namespace krgui
