#pragma once
// What a display window has done with the frames that it was given.

#include "krbase/krstring.h"
#include "krbuffer/krpixelvalue.h"

#include <chrono>
#include <cstdint>

/// Counts since the window object was made or its statistics were reset.
struct KrDisplayStatistics {
  std::uint64_t received = 0; ///< Frames given to Display, refused ones included.
  std::uint64_t shown = 0;    ///< Frames that reached the window.
  /// Frames that were accepted and replaced by a newer one, or cleared, before they reached the window, and those that
  /// were damaged so that they could not be converted; while the window is closed, all of them.
  std::uint64_t dropped = 0;
  std::uint64_t refused = 0;                  ///< Frames that Display returned an error for.
  KrString lastRefusal;                       ///< The text of the last such error; empty without one.
  std::chrono::nanoseconds conversionTime{0}; ///< Spent making pixels for the screen out of frames, in all.
  std::chrono::nanoseconds drawingTime{0};    ///< Spent on texts and on putting pixels onto the screen, in all.
};

/// The pixel of the image that lies under the mouse cursor.
struct KrDisplayPixel {
  std::uint32_t x = 0;     ///< Column, from the left.
  std::uint32_t y = 0;     ///< Row, from the top.
  KrPixelValue raw;        ///< What the sensor sent; without samples for a format that cannot tell.
  unsigned char red = 0;   ///< As it is shown.
  unsigned char green = 0; ///< As it is shown.
  unsigned char blue = 0;  ///< As it is shown.
};
