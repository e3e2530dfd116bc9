#pragma once
// A window made without any toolkit, on a connection of its own, as another application's would be.

#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

namespace krgui {

class NativeWindow {
public:
  /// A plain grey window at a place on the screen.
  NativeWindow(int aX, int aY, int aWidth, int aHeight)
      : mConnection(xcb_connect(nullptr, nullptr)), mWindow(xcb_generate_id(mConnection)) {
    EXPECT_EQ(xcb_connection_has_error(mConnection), 0);
    const xcb_screen_t& screen = GetScreen();
    const std::uint32_t values[] = {0x00808080U, XCB_EVENT_MASK_STRUCTURE_NOTIFY};
    xcb_create_window(mConnection, XCB_COPY_FROM_PARENT, mWindow, screen.root, static_cast<std::int16_t>(aX),
                      static_cast<std::int16_t>(aY), static_cast<std::uint16_t>(aWidth),
                      static_cast<std::uint16_t>(aHeight), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, screen.root_visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values);
    SetTitle("Native");
    xcb_map_window(mConnection, mWindow);
    xcb_flush(mConnection);
    AwaitMapped();
  }
  ~NativeWindow() {
    Destroy();
    xcb_disconnect(mConnection);
  }
  NativeWindow(const NativeWindow&) = delete;
  NativeWindow& operator=(const NativeWindow&) = delete;

  xcb_window_t GetID() const { return mWindow; }

  void Destroy() {
    if (mWindow != 0) {
      xcb_destroy_window(mConnection, mWindow);
      Synchronise();
      mWindow = 0;
    }
  }

  /// Where another connection finds a window: relative to its parent in the window tree.
  struct Placing {
    xcb_window_t parent;
    int x, y, width, height;
  };
  Placing Find(xcb_window_t aWindow) const {
    auto* tree = xcb_query_tree_reply(mConnection, xcb_query_tree(mConnection, aWindow), nullptr);
    auto* geometry = xcb_get_geometry_reply(mConnection, xcb_get_geometry(mConnection, aWindow), nullptr);
    Placing placing = {};
    if (tree != nullptr && geometry != nullptr) {
      placing = {tree->parent, geometry->x, geometry->y, geometry->width, geometry->height};
    }
    free(tree);
    free(geometry);
    return placing;
  }

  /// The owner that the window manager is told of; 0 for none.
  xcb_window_t FindOwner(xcb_window_t aWindow) const {
    const auto cookie = xcb_get_property(mConnection, 0, aWindow, XCB_ATOM_WM_TRANSIENT_FOR, XCB_ATOM_WINDOW, 0, 1);
    auto* reply = xcb_get_property_reply(mConnection, cookie, nullptr);
    xcb_window_t owner = 0;
    if (reply != nullptr && xcb_get_property_value_length(reply) == static_cast<int>(sizeof owner)) {
      std::memcpy(&owner, xcb_get_property_value(reply), sizeof owner);
    }
    free(reply);
    return owner;
  }

  struct Property {
    xcb_atom_t type = XCB_ATOM_NONE;
    std::string value;
  };
  /// A property of any window as another client reads it.
  Property FindProperty(xcb_window_t aWindow, const char* aName) const {
    constexpr std::uint32_t kMostUnits = 1000;
    const auto cookie =
        xcb_get_property(mConnection, 0, aWindow, FindAtom(aName), XCB_GET_PROPERTY_TYPE_ANY, 0, kMostUnits);
    auto* reply = xcb_get_property_reply(mConnection, cookie, nullptr);
    Property property;
    if (reply != nullptr) {
      property = {reply->type, std::string(static_cast<const char*>(xcb_get_property_value(reply)),
                                           static_cast<std::size_t>(xcb_get_property_value_length(reply)))};
    }
    free(reply);
    return property;
  }
  xcb_atom_t FindAtom(const char* aName) const {
    const auto cookie = xcb_intern_atom(mConnection, 0, static_cast<std::uint16_t>(std::strlen(aName)), aName);
    auto* reply = xcb_intern_atom_reply(mConnection, cookie, nullptr);
    const xcb_atom_t atom = reply == nullptr ? xcb_atom_t(XCB_ATOM_NONE) : reply->atom;
    free(reply);
    return atom;
  }

  /// Asks for a place on the screen, as a client moves itself.
  void Move(int aX, int aY) {
    const std::uint32_t values[] = {static_cast<std::uint32_t>(aX), static_cast<std::uint32_t>(aY)};
    xcb_configure_window(mConnection, mWindow, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, values);
    Synchronise();
  }
  /// Where the inside of this window begins on the screen.
  std::pair<int, int> FindOrigin() const {
    auto* reply = xcb_translate_coordinates_reply(
        mConnection, xcb_translate_coordinates(mConnection, mWindow, GetScreen().root, 0, 0), nullptr);
    const std::pair<int, int> origin =
        reply == nullptr ? std::pair(0, 0) : std::pair<int, int>(reply->dst_x, reply->dst_y);
    free(reply);
    return origin;
  }

  /// Takes the keyboard, as a window manager gives it.
  void Focus() {
    xcb_set_input_focus(mConnection, XCB_INPUT_FOCUS_PARENT, mWindow, XCB_CURRENT_TIME);
    Synchronise();
  }
  /// The window that the server sends keys to.
  xcb_window_t FindFocus() const {
    auto* reply = xcb_get_input_focus_reply(mConnection, xcb_get_input_focus(mConnection), nullptr);
    const xcb_window_t focus = reply == nullptr ? 0 : reply->focus;
    free(reply);
    return focus;
  }

  /// Asks the window manager to close a window, as a task bar does.
  void AskToClose(xcb_window_t aWindow) {
    xcb_client_message_event_t event = {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = aWindow;
    event.type = FindAtom("_NET_CLOSE_WINDOW");
    constexpr std::uint32_t kToManager = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
    xcb_send_event(mConnection, 0, GetScreen().root, kToManager, reinterpret_cast<const char*>(&event));
    Synchronise();
  }

private:
  const xcb_screen_t& GetScreen() const { return *xcb_setup_roots_iterator(xcb_get_setup(mConnection)).data; }

  void SetTitle(const char* aTitle) {
    xcb_change_property(mConnection, XCB_PROP_MODE_REPLACE, mWindow, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                        static_cast<std::uint32_t>(std::strlen(aTitle)), aTitle);
  }

  void AwaitMapped() {
    bool isMapped = false;
    while (!isMapped) {
      xcb_generic_event_t* event = xcb_wait_for_event(mConnection);
      ASSERT_NE(event, nullptr);
      isMapped = event->response_type == XCB_MAP_NOTIFY;
      free(event);
    }
  }

  /// Returns when the server has done everything asked so far.
  void Synchronise() { free(xcb_get_input_focus_reply(mConnection, xcb_get_input_focus(mConnection), nullptr)); }

  xcb_connection_t* mConnection;
  xcb_window_t mWindow;
};

} // namespace krgui
