#pragma once
// The X server as an onlooker has it: its processor time, and what is on the screen, whoever draws it.

#include <xcb/xcb.h>

#include <cstdint>
#include <ctime>
#include <optional>
#include <vector>

namespace benchmarks {

struct ScreenPoint {
  std::int16_t x = 0;
  std::int16_t y = 0;
};

/// A connection of its own to the display that the environment names; ends the process where there is none.
class DisplayScreen {
public:
  DisplayScreen();
  ~DisplayScreen();
  DisplayScreen(const DisplayScreen&) = delete;
  DisplayScreen& operator=(const DisplayScreen&) = delete;

  xcb_connection_t* GetConnection() const { return mConnection; }
  const xcb_screen_t& GetScreen() const;

  /// The middle of the largest window on the screen; nothing while there is none.
  std::optional<ScreenPoint> FindMiddle() const;
  /// The pixel there as 0x00RRGGBB.
  std::uint32_t ReadPixel(ScreenPoint aPoint) const;
  /// Those of a rectangle of the screen, line by line.
  std::vector<std::uint32_t> ReadPixels(ScreenPoint aCorner, std::uint16_t aWidth, std::uint16_t aHeight) const;

  /// The processor time of the server so far, in milliseconds.
  double GetServerMs() const;

private:
  xcb_connection_t* mConnection;
  clockid_t mServerClock{};
};

/// Makes a plain black window of this size in the screen's corner and shows it, for those who draw into a foreign one.
xcb_window_t ShowPlainWindow(const DisplayScreen& aScreen, std::uint32_t aWidth, std::uint32_t aHeight);

} // namespace benchmarks
