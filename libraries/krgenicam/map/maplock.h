#pragma once
// The lock of a map: one operation after the other, in the order in which they were asked for. A thread may keep it for
// several operations of its own.

#include "krbase/krturnmutex.h"

#include <atomic>
#include <thread>

namespace krgenicam {

/// Thread: any. Used as std::mutex is; what the thread that keeps it locks and unlocks does nothing.
class MapLock {
public:
  void lock() {
    if (!IsKeptHere())
      mMutex.lock();
  }
  bool try_lock() { return IsKeptHere() || mMutex.try_lock(); }
  void unlock() {
    if (!IsKeptHere())
      mMutex.unlock();
  }

  /// Waits for it and keeps it until as many calls of Release; both on one thread.
  void Keep() {
    if (!IsKeptHere()) {
      mMutex.lock();
      mKeeper = std::this_thread::get_id();
    }
    ++mTimes;
  }
  void Release() {
    if (--mTimes > 0)
      return;
    mKeeper = std::thread::id();
    mMutex.unlock();
  }

private:
  // Another thread may come and go meanwhile, but never with this one's id.
  bool IsKeptHere() const { return mKeeper.load(std::memory_order_relaxed) == std::this_thread::get_id(); }

  KrTurnMutex mMutex;
  std::atomic<std::thread::id> mKeeper;
  unsigned mTimes = 0; // The keeper's.
};

} // namespace krgenicam
