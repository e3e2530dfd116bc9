#include "platform/windowconnection.h"

#include <sys/socket.h>
#include <xcb/xcb.h>

#include <span>

namespace krgui {

namespace {

// True when pixels of this depth are 32 bits each, blue in the lowest byte, as the server has them in memory.
bool HasPixelsOfOurs(const xcb_setup_t& aSetup, std::uint8_t aDepth) {
  constexpr std::uint8_t kBits = 32;
  if (aSetup.image_byte_order != XCB_IMAGE_ORDER_LSB_FIRST) {
    return false;
  }
  const std::span formats(xcb_setup_pixmap_formats(&aSetup),
                          static_cast<std::size_t>(xcb_setup_pixmap_formats_length(&aSetup)));
  for (const xcb_format_t& format : formats) {
    if (format.depth == aDepth) {
      return format.bits_per_pixel == kBits && format.scanline_pad == kBits;
    }
  }
  return false;
}

bool IsOfOurs(const xcb_visualtype_t& aVisual) {
  constexpr std::uint32_t kRed = 0xff0000, kGreen = 0xff00, kBlue = 0xff;
  return aVisual._class == XCB_VISUAL_CLASS_TRUE_COLOR && aVisual.red_mask == kRed && aVisual.green_mask == kGreen &&
         aVisual.blue_mask == kBlue;
}

bool HasColorsOfOurs(const xcb_setup_t& aSetup, std::uint8_t aDepth, xcb_visualid_t aVisual) {
  for (auto screen = xcb_setup_roots_iterator(&aSetup); screen.rem > 0; xcb_screen_next(&screen)) {
    for (auto depth = xcb_screen_allowed_depths_iterator(screen.data); depth.rem > 0; xcb_depth_next(&depth)) {
      const std::span visuals(xcb_depth_visuals(depth.data),
                              static_cast<std::size_t>(xcb_depth_visuals_length(depth.data)));
      for (const xcb_visualtype_t& visual : visuals) {
        if (visual.visual_id == aVisual) {
          return depth.data->depth == aDepth && IsOfOurs(visual);
        }
      }
    }
  }
  return false;
}

} // namespace

std::unique_ptr<WindowConnection> WindowConnection::Open(const std::string& aDisplayName, std::uint32_t aWindow,
                                                         TimePoint aEnd) {
  xcb_connection_t* connection = xcb_connect(aDisplayName.empty() ? nullptr : aDisplayName.c_str(), nullptr);
  // Owned from the first: a connection that could not be made is given back as well.
  std::unique_ptr<WindowConnection> made(new WindowConnection(connection, aWindow));
  if (made->HasEnded() || !made->LearnDepth(aEnd)) {
    return nullptr;
  }
  made->MakeContext();
  return made;
}

WindowConnection::WindowConnection(xcb_connection_t* aConnection, std::uint32_t aWindow)
    : mConnection(aConnection), mWindow(aWindow) {}

WindowConnection::~WindowConnection() {
  xcb_disconnect(mConnection);
}

bool WindowConnection::HasEnded() const {
  return xcb_connection_has_error(mConnection) != 0;
}

void WindowConnection::End() {
  shutdown(xcb_get_file_descriptor(mConnection), SHUT_RDWR);
}

bool WindowConnection::LearnDepth(TimePoint aEnd) {
  constexpr std::uint8_t kWithoutAlpha = 24, kWithAlpha = 32;
  const auto geometryCookie = xcb_get_geometry(mConnection, mWindow);
  const auto attributesCookie = xcb_get_window_attributes(mConnection, mWindow);
  const auto geometry = AwaitReply<xcb_get_geometry_reply_t>(mConnection, geometryCookie, aEnd);
  const auto attributes = AwaitReply<xcb_get_window_attributes_reply_t>(mConnection, attributesCookie, aEnd);
  if (!geometry || !attributes || (geometry->depth != kWithoutAlpha && geometry->depth != kWithAlpha)) {
    return false;
  }
  mDepth = geometry->depth;
  const xcb_setup_t& setup = *xcb_get_setup(mConnection);
  return HasPixelsOfOurs(setup, mDepth) && HasColorsOfOurs(setup, mDepth, attributes->visual);
}

void WindowConnection::MakeContext() {
  // Windows above and inside this one keep their pixels; what was sent is never told of as exposed.
  const std::uint32_t values[] = {XCB_SUBWINDOW_MODE_CLIP_BY_CHILDREN, 0};
  mContext = xcb_generate_id(mConnection);
  xcb_create_gc(mConnection, mContext, mWindow, XCB_GC_SUBWINDOW_MODE | XCB_GC_GRAPHICS_EXPOSURES, values);
}

} // namespace krgui
