#include "displayscreen.h"

#include "timing.h"

#include <sys/socket.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <span>

namespace benchmarks {

namespace {

struct Free {
  void operator()(void* aMemory) const { std::free(aMemory); }
};
template <typename Reply>
std::unique_ptr<Reply, Free> Own(Reply* aReply) {
  return std::unique_ptr<Reply, Free>(aReply);
}

[[noreturn]] void Fail(const char* aText) {
  std::fprintf(stderr, "%s\n", aText);
  std::exit(1);
}

/// The clock of the process at the other end of a local connection.
clockid_t FindPeerClock(int aSocket) {
  ucred peer{};
  socklen_t size = sizeof peer;
  clockid_t clock{};
  if (getsockopt(aSocket, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0 || clock_getcpuclockid(peer.pid, &clock) != 0)
    Fail("The processor time of the X server cannot be had; it must run on this machine.");
  return clock;
}

} // namespace

DisplayScreen::DisplayScreen() : mConnection(xcb_connect(nullptr, nullptr)) {
  if (xcb_connection_has_error(mConnection) != 0)
    Fail("There is no X display; run this through scripts/with-display.sh.");
  mServerClock = FindPeerClock(xcb_get_file_descriptor(mConnection));
}

DisplayScreen::~DisplayScreen() {
  xcb_disconnect(mConnection);
}

const xcb_screen_t& DisplayScreen::GetScreen() const {
  return *xcb_setup_roots_iterator(xcb_get_setup(mConnection)).data;
}

std::optional<ScreenPoint> DisplayScreen::FindMiddle() const {
  const auto tree = Own(xcb_query_tree_reply(mConnection, xcb_query_tree(mConnection, GetScreen().root), nullptr));
  std::optional<ScreenPoint> middle;
  int largest = 0;
  if (!tree)
    return middle;
  for (const xcb_window_t window : std::span(xcb_query_tree_children(tree.get()), tree->children_len)) {
    const auto attributes =
        Own(xcb_get_window_attributes_reply(mConnection, xcb_get_window_attributes(mConnection, window), nullptr));
    const auto geometry = Own(xcb_get_geometry_reply(mConnection, xcb_get_geometry(mConnection, window), nullptr));
    if (!attributes || !geometry || attributes->map_state != XCB_MAP_STATE_VIEWABLE ||
        attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT || geometry->width * geometry->height <= largest)
      continue;
    const int x = geometry->x + geometry->width / 2;
    const int y = geometry->y + geometry->height / 2;
    // Window managers keep windows of their own outside.
    if (x < 0 || y < 0 || x >= GetScreen().width_in_pixels || y >= GetScreen().height_in_pixels)
      continue;
    largest = geometry->width * geometry->height;
    middle = ScreenPoint{static_cast<std::int16_t>(x), static_cast<std::int16_t>(y)};
  }
  return middle;
}

std::uint32_t DisplayScreen::ReadPixel(ScreenPoint aPoint) const {
  return ReadPixels(aPoint, 1, 1).front();
}

std::vector<std::uint32_t> DisplayScreen::ReadPixels(ScreenPoint aCorner, std::uint16_t aWidth,
                                                     std::uint16_t aHeight) const {
  const auto cookie = xcb_get_image(mConnection, XCB_IMAGE_FORMAT_Z_PIXMAP, GetScreen().root, aCorner.x, aCorner.y,
                                    aWidth, aHeight, ~0U);
  const auto image = Own(xcb_get_image_reply(mConnection, cookie, nullptr));
  const std::size_t count = static_cast<std::size_t>(aWidth) * aHeight;
  if (!image || static_cast<std::size_t>(xcb_get_image_data_length(image.get())) < count * 4)
    Fail("The screen cannot be read.");
  const std::uint8_t* pixel = xcb_get_image_data(image.get());
  std::vector<std::uint32_t> pixels(count);
  for (std::uint32_t& value : pixels) {
    value = pixel[0] | pixel[1] << 8U | pixel[2] << 16U;
    pixel += 4;
  }
  return pixels;
}

double DisplayScreen::GetServerMs() const {
  return GetClockMs(mServerClock);
}

xcb_window_t ShowPlainWindow(const DisplayScreen& aScreen, std::uint32_t aWidth, std::uint32_t aHeight) {
  xcb_connection_t* connection = aScreen.GetConnection();
  const xcb_window_t window = xcb_generate_id(connection);
  // Nobody manages it, so that it has exactly this size.
  const std::uint32_t values[] = {aScreen.GetScreen().black_pixel, 1};
  xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, aScreen.GetScreen().root, 0, 0,
                    static_cast<std::uint16_t>(aWidth), static_cast<std::uint16_t>(aHeight), 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, aScreen.GetScreen().root_visual,
                    XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
  xcb_map_window(connection, window);
  Own(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
  return window;
}

} // namespace benchmarks
