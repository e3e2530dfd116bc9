#pragma once
// A window to draw into from outside any toolkit, unmanaged and on a connection of its own, and what of it is on the
// screen. Only the thread that made it uses it.

#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace krgui {

/// Pixels without their alpha.
struct Grab {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> pixels;

  std::uint32_t At(int aX, int aY) const { return pixels[static_cast<std::size_t>(aY * width + aX)]; }
  friend bool operator==(const Grab&, const Grab&) = default;
};

class SurfaceWindow {
public:
  static constexpr std::uint32_t kBackground = 0x405060;

  /// On the display of the environment when none is named; inside another window when one is given.
  SurfaceWindow(int aX, int aY, int aWidth, int aHeight, const std::string& aDisplayName = {}, xcb_window_t aParent = 0)
      : mConnection(xcb_connect(aDisplayName.empty() ? nullptr : aDisplayName.c_str(), nullptr)), mX(aX), mY(aY) {
    EXPECT_EQ(xcb_connection_has_error(mConnection), 0);
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(mConnection)).data;
    mRoot = screen->root;
    const std::uint32_t values[] = {kBackground, 1};
    mWindow = xcb_generate_id(mConnection);
    xcb_create_window(mConnection, XCB_COPY_FROM_PARENT, mWindow, aParent == 0 ? screen->root : aParent,
                      static_cast<std::int16_t>(aX), static_cast<std::int16_t>(aY), static_cast<std::uint16_t>(aWidth),
                      static_cast<std::uint16_t>(aHeight), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
    xcb_map_window(mConnection, mWindow);
    Synchronise();
  }
  ~SurfaceWindow() { xcb_disconnect(mConnection); }
  SurfaceWindow(const SurfaceWindow&) = delete;
  SurfaceWindow& operator=(const SurfaceWindow&) = delete;

  xcb_window_t GetID() const { return mWindow; }

  void Destroy() {
    xcb_destroy_window(mConnection, mWindow);
    Synchronise();
  }
  void Resize(int aWidth, int aHeight) {
    const std::uint32_t values[] = {static_cast<std::uint32_t>(aWidth), static_cast<std::uint32_t>(aHeight)};
    xcb_configure_window(mConnection, mWindow, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, values);
    Synchronise();
  }

  /// What is on the screen from the window's upper left corner on, windows above it included; empty where that cannot
  /// be had. For a window that is in no other.
  Grab Take(int aWidth, int aHeight) const {
    constexpr std::uint32_t kAllPlanes = 0xffffffff;
    const auto cookie = xcb_get_image(mConnection, XCB_IMAGE_FORMAT_Z_PIXMAP, mRoot, static_cast<std::int16_t>(mX),
                                      static_cast<std::int16_t>(mY), static_cast<std::uint16_t>(aWidth),
                                      static_cast<std::uint16_t>(aHeight), kAllPlanes);
    const std::unique_ptr<xcb_get_image_reply_t, decltype(&std::free)> reply(
        xcb_get_image_reply(mConnection, cookie, nullptr), &std::free);
    Grab grab;
    if (!reply) {
      return grab;
    }
    grab = {aWidth, aHeight, std::vector<std::uint32_t>(static_cast<std::size_t>(aWidth) * aHeight)};
    EXPECT_EQ(static_cast<std::size_t>(xcb_get_image_data_length(reply.get())), grab.pixels.size() * 4);
    std::memcpy(grab.pixels.data(), xcb_get_image_data(reply.get()), grab.pixels.size() * 4);
    for (std::uint32_t& pixel : grab.pixels) {
      pixel &= 0xffffff;
    }
    return grab;
  }

  /// Returns when the server has done everything that this window asked for.
  void Synchronise() const {
    std::free(xcb_get_input_focus_reply(mConnection, xcb_get_input_focus(mConnection), nullptr));
  }

private:
  xcb_connection_t* mConnection;
  const int mX, mY;
  xcb_window_t mRoot = 0;
  xcb_window_t mWindow = 0;
};

} // namespace krgui
