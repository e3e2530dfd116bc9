#pragma once
// Hears that the toolkit's application object, or the process, is about to end, while windows can still be closed
// properly. A window object may outlive both: one that was declared before the application object, or a static one.

#include <functional>

namespace krgui {

/// Thread: user interface.
class ApplicationEnd {
public:
  /// aOnEnd may end this object.
  explicit ApplicationEnd(std::function<void()> aOnEnd);
  ~ApplicationEnd();
  ApplicationEnd(const ApplicationEnd&) = delete;
  ApplicationEnd& operator=(const ApplicationEnd&) = delete;

  /// Waits for the end of the application object that there is now; called again for each.
  void Watch();
  /// Static objects end in an order of their own, the toolkit's among them: its windows may not be deleted any more.
  /// True at the latest when an object that has watched ends with the process.
  static bool IsProcessEnding();

private:
  static void TellAll();

  std::function<void()> mOnEnd;
  bool mIsWatching = false;
  bool mIsProcessWatched = false;
};

} // namespace krgui
