#pragma once
// A window's rectangle and the limits that bound its size, as plain values. Where the rectangle comes from, and which
// coordinates it is in, is left to the window.

#include <cstdint>

namespace krgui {

/// Left and top are inside, right and bottom outside, as window rectangles are counted.
struct WindowRect {
  std::int32_t left = 0;
  std::int32_t top = 0;
  std::int32_t right = 0;
  std::int32_t bottom = 0;
  friend bool operator==(const WindowRect&, const WindowRect&) = default;
};

/// Tracking limits in pixels; no minimum exceeds its maximum.
struct WindowLimits {
  int minWidth = 0;
  int maxWidth = 0;
  int minHeight = 0;
  int maxHeight = 0;
};

/// The rectangle (x, y, x + width, y + height); an edge that would leave 32 bits stays at the end of their range.
WindowRect MakeWindowRect(int aX, int aY, int aWidth, int aHeight);
/// Right less left, at the end of the 32-bit range where it would leave it.
int GetWidth(const WindowRect& aRect);
/// Bottom less top, likewise.
int GetHeight(const WindowRect& aRect);

/// Raises the width to its minimum, then lowers it to its maximum, then the height likewise, by moving the right and
/// the bottom edge; left and top never move. A negative width counts as too small. An edge that would leave 32 bits
/// stays at the end of their range.
WindowRect ClampToLimits(const WindowRect& aRect, const WindowLimits& aLimits);

} // namespace krgui
