#pragma once
// What became of the frames that were given to a display. At most one frame waits to be shown; when that happens is
// left to the display's content.

#include "krgui/krdisplaystatistics.h"
#include "logic/display/frametarget.h"

namespace krgui {

/// received is always shown, dropped, refused and the frame that waits, if there is one.
///
/// Thread: one at a time.
class FrameCounts {
public:
  /// A frame takes the place of the one that waits.
  void Accept();
  /// A frame was accepted but cannot be shown: what waits goes on waiting.
  void Lose();
  void Refuse(const KrString& aText);
  /// What waits has reached the target.
  void Show();
  /// What waits will not be shown.
  void Drop();
  void AddTimes(const FrameTarget::Times& aTimes);

  const KrDisplayStatistics& Get() const { return mStatistics; }
  /// All are 0; a frame that waits now is not counted any more.
  void Reset();

private:
  KrDisplayStatistics mStatistics;
  bool mIsWaiting = false;
};

} // namespace krgui
