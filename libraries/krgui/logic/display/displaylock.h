#pragma once
// The lock of a display's content. Whoever waits for it gets it before a thread that gives it up takes it again, so
// that a camera at full rate, which takes it for every frame, leaves painting and the user their turn.

#include <mutex>

namespace krgui {

/// Thread: any; not recursive.
class DisplayLock {
public:
  void lock() {
    const std::lock_guard turn(mTurn);
    mLock.lock();
  }
  void unlock() { mLock.unlock(); }

private:
  std::mutex mTurn; // Held by the one who waits for the lock next.
  std::mutex mLock; // Guards what the owner says it guards.
};

} // namespace krgui
