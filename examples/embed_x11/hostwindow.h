#pragma once
// A window that is made without any toolkit, in place of one of the application's own. What is inside of it, and who
// asks for its events, is left to the program.

#include <xcb/xcb.h>

#include <cstdint>

/// Thread: one. Ownership: owns the window and the connection to the X server.
class HostWindow {
public:
  HostWindow(std::uint16_t aWidth, std::uint16_t aHeight, const char* aTitle);
  ~HostWindow() { xcb_disconnect(mConnection); }
  HostWindow(const HostWindow&) = delete;

  xcb_window_t GetID() const { return mID; }
  std::uint16_t GetWidth() const { return mPlace.width; }
  std::uint16_t GetHeight() const { return mPlace.height; }
  /// Takes what has come from the server. False once the user has closed the window, or the server has gone.
  bool HandleEvents();

private:
  xcb_atom_t GetAtom(const char* aName);

  xcb_connection_t* const mConnection;
  const xcb_window_t mID;
  xcb_atom_t mDeleteWindow = XCB_ATOM_NONE;
  xcb_configure_notify_event_t mPlace = {}; ///< As the server told it last.
  bool mIsOpen = false;
};
