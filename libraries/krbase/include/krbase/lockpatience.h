#pragma once
// How long a lock of another process is waited for by a thread that a user waits for: patiently, until it was waited
// for in vain once. A process that was stopped while it had the lock costs that one wait, not one for each try.

#include <atomic>
#include <chrono>

namespace krbase {

/// Thread: any.
class LockPatience {
public:
  /// Waits for at most so long; after a wait in vain for a tenth of it.
  explicit LockPatience(std::chrono::milliseconds aLongest) : mLongest(aLongest) {}

  /// The limit of the next wait.
  std::chrono::milliseconds GetLimit() const { return mIsInVain ? mLongest / 10 : mLongest; }
  /// How a wait ended.
  void Note(bool aIsLocked) { mIsInVain = !aIsLocked; }

private:
  const std::chrono::milliseconds mLongest;
  std::atomic<bool> mIsInVain = false;
};

} // namespace krbase
