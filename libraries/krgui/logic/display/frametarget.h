#pragma once
// What a display's content draws to: the frame as it is handed over, and the interface of whoever can bring it onto the
// screen. How it gets there is left to the window.

#include "krbase/krstring.h"
#include "krbuffer/krlineconversion.h"
#include "logic/display/viewgeometry.h"

#include <chrono>
#include <cstdint>

namespace krgui {

/// What a drawing needs; valid while the display lock is held.
struct Frame {
  const KrLineConversion* image = nullptr; ///< Null when no image is held.
  std::uint64_t number = 0; ///< Counts the images that were accepted; 0 where nobody counts, and each may be another.
  ViewArea view;
  KrString overlayText; ///< Empty when none is to be drawn.
  KrString refusalText; ///< Why nothing is shown; empty while an image is held or nothing was refused.
  KrString cursorText;  ///< The line about the pixel under the cursor; empty when none is to be drawn.
  /// When the call that draws it began, before it waited for its turn: how long it may wait counts from here.
  std::chrono::steady_clock::time_point callBegin;
};

/// Where a frame is drawn, as far as the content needs to know.
///
/// Thread: any, one at a time, under the display lock.
class FrameTarget {
public:
  enum class Outcome {
    Shown,    ///< The frame is on its way to the screen.
    Deferred, ///< It will be shown by the next paint of the window, which the caller asks for.
    Dropped,  ///< The screen did not take it in time, or there is no memory for it; the caller asks for a paint.
  };
  struct Times {
    std::chrono::nanoseconds conversion{0};
    std::chrono::nanoseconds drawing{0};
  };

  virtual ~FrameTarget() = default;
  virtual Outcome Draw(const Frame& aFrame, Times& aTimes) = 0;
  /// The same for a paint of the window: what it draws is shown by it.
  virtual Outcome Paint(const Frame& aFrame, Times& aTimes) { return Draw(aFrame, aTimes); }
};

} // namespace krgui
