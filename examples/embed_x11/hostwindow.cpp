#include "hostwindow.h"

#include <cstdlib>
#include <cstring>

HostWindow::HostWindow(std::uint16_t aWidth, std::uint16_t aHeight, const char* aTitle)
    : mConnection(xcb_connect(nullptr, nullptr)), mID(xcb_generate_id(mConnection)) {
  mPlace.width = aWidth;
  mPlace.height = aHeight;
  if (xcb_connection_has_error(mConnection))
    return; // Without a display the window is never open.
  const xcb_screen_t* const screen = xcb_setup_roots_iterator(xcb_get_setup(mConnection)).data;
  const std::uint32_t values[] = {screen->black_pixel, XCB_EVENT_MASK_STRUCTURE_NOTIFY};
  xcb_create_window(mConnection, XCB_COPY_FROM_PARENT, mID, screen->root, 0, 0, aWidth, aHeight, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values);
  xcb_change_property(mConnection, XCB_PROP_MODE_REPLACE, mID, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                      static_cast<std::uint32_t>(std::strlen(aTitle)), aTitle);
  // The window manager asks for the window's end instead of ending the program.
  mDeleteWindow = GetAtom("WM_DELETE_WINDOW");
  xcb_change_property(mConnection, XCB_PROP_MODE_REPLACE, mID, GetAtom("WM_PROTOCOLS"), XCB_ATOM_ATOM, 32, 1,
                      &mDeleteWindow);
  xcb_map_window(mConnection, mID);
  mIsOpen = xcb_flush(mConnection) > 0;
}

bool HostWindow::HandleEvents() {
  while (xcb_generic_event_t* const event = xcb_poll_for_event(mConnection)) {
    const int kind = event->response_type & 0x7F;
    if (kind == XCB_CLIENT_MESSAGE)
      mIsOpen = reinterpret_cast<const xcb_client_message_event_t*>(event)->data.data32[0] != mDeleteWindow && mIsOpen;
    if (kind == XCB_CONFIGURE_NOTIFY)
      mPlace = *reinterpret_cast<const xcb_configure_notify_event_t*>(event);
    std::free(event);
  }
  return mIsOpen && !xcb_connection_has_error(mConnection);
}

xcb_atom_t HostWindow::GetAtom(const char* aName) {
  const auto asked = xcb_intern_atom(mConnection, 0, static_cast<std::uint16_t>(std::strlen(aName)), aName);
  xcb_intern_atom_reply_t* const reply = xcb_intern_atom_reply(mConnection, asked, nullptr);
  const xcb_atom_t atom = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
  std::free(reply);
  return atom;
}
