#pragma once
// The one lock of a node map. Whoever waits for it gets it before a thread that gives it up takes it again, so that
// the notification thread, which takes it many times in a row, keeps nobody waiting for longer than one turn.

#include <mutex>

namespace krgenicam {

/// Thread: any; not recursive.
class MapLock {
public:
  void lock() {
    const std::lock_guard turn(mTurn);
    mLock.lock();
  }
  void unlock() { mLock.unlock(); }

private:
  std::mutex mTurn; // Held by the one who waits for the lock next.
  std::mutex mLock; // Guards all of a map that changes: nodes and what they remember, when they were polled.
};

} // namespace krgenicam
