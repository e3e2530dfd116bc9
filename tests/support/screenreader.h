#pragma once
// What is on the screen, read over a connection of its own: from any thread, whatever the toolkit's thread does.

#include "await.h"

#include <QPoint>
#include <QRect>

#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <vector>

/// Thread: one at a time.
class ScreenReader {
public:
  /// Reads a display by its name, or with null the one that the environment names.
  explicit ScreenReader(const char* aDisplay = nullptr) : mConnection(xcb_connect(aDisplay, nullptr)) {
    EXPECT_EQ(xcb_connection_has_error(mConnection), 0);
  }
  ~ScreenReader() { xcb_disconnect(mConnection); }
  ScreenReader(const ScreenReader&) = delete;
  ScreenReader& operator=(const ScreenReader&) = delete;

  /// The pixels of a part of the screen as 0x00RRGGBB, row by row; empty where it cannot be read.
  std::vector<std::uint32_t> Read(const QRect& aRect) const {
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(mConnection)).data->root;
    const auto cookie =
        xcb_get_image(mConnection, XCB_IMAGE_FORMAT_Z_PIXMAP, root, static_cast<std::int16_t>(aRect.x()),
                      static_cast<std::int16_t>(aRect.y()), static_cast<std::uint16_t>(aRect.width()),
                      static_cast<std::uint16_t>(aRect.height()), ~0U);
    auto* image = xcb_get_image_reply(mConnection, cookie, nullptr);
    std::vector<std::uint32_t> pixels;
    if (image != nullptr) {
      const std::uint8_t* bytes = xcb_get_image_data(image);
      for (int i = 0; i + 3 < xcb_get_image_data_length(image); i += 4)
        pixels.push_back(bytes[i] | bytes[i + 1] << 8U | bytes[i + 2] << 16U);
    }
    std::free(image);
    return pixels;
  }
  /// One pixel; a value that no pixel has where it cannot be read.
  std::uint32_t Read(const QPoint& aPoint) const {
    const std::vector<std::uint32_t> pixels = Read(QRect(aPoint, QSize(1, 1)));
    return pixels.empty() ? ~0U : pixels.front();
  }
  /// True when all pixels of a part have one colour.
  bool IsUniform(const QRect& aRect, std::uint32_t aColor) const {
    const std::vector<std::uint32_t> pixels = Read(aRect);
    return !pixels.empty() &&
           std::all_of(pixels.begin(), pixels.end(), [&](std::uint32_t aPixel) { return aPixel == aColor; });
  }
  /// Waits until a pixel has a colour; false when it does not within a limit that only a fault can reach.
  bool AwaitColor(const QPoint& aPoint, std::uint32_t aColor) const {
    return krtest::Await([&] { return Read(aPoint) == aColor; });
  }

private:
  xcb_connection_t* mConnection;
};
