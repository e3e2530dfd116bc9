#pragma once
// A mutex that is taken in turns: whoever waits for it gets it before a thread that gives it up takes it again. For what
// one thread locks many times in a row, or nearly all the time, while others need it now and then.

#include <mutex>

/// Thread: any; not recursive. Used as std::mutex is, with std::lock_guard and std::unique_lock.
class KrTurnMutex {
public:
  void lock() {
    const std::lock_guard turn(mTurn);
    mLock.lock();
  }
  void unlock() { mLock.unlock(); }

private:
  std::mutex mTurn; // Held by the one who waits for the lock next.
  std::mutex mLock; // Guards what the owner says.
};
