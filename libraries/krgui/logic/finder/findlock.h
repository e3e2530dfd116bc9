#pragma once
// The lock around discovery: the worker holds it for each round and only tries it, the window waits for it. One thread
// that takes a lock again at once would starve the other, so a window that waits makes the worker's tries fail.

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>

namespace krgui {

/// Thread: TryLock and UnlockByWorker on the discovery thread, the rest on the window's thread, which may take the lock
/// again while it has it.
class FindLock {
public:
  /// How long a try that fails waits before it says so, unless the lock comes free.
  static constexpr std::chrono::milliseconds kFailedTryWait{20};
  /// How often a waiting window asks the round that runs to end.
  static constexpr std::chrono::milliseconds kCancelInterval{5};

  /// The worker's try; false when the window has the lock or waits for it.
  bool TryLock();
  void UnlockByWorker();

  /// Waits for the lock. aCancel ends the round that runs; it is called at once and again until the lock is free,
  /// without a lock of ours, because a round may be about to begin. It must not throw.
  void LockByWindow(const std::function<void()>& aCancel);
  void UnlockByWindow();

  /// A try of the worker, which gives the lock back at its end, by whatever way.
  class Try {
  public:
    explicit Try(FindLock& aLock) : mLock(aLock), mIsLocked(aLock.TryLock()) {}
    ~Try() {
      if (mIsLocked)
        mLock.UnlockByWorker();
    }
    Try(const Try&) = delete;
    Try& operator=(const Try&) = delete;
    bool IsLocked() const { return mIsLocked; }

  private:
    FindLock& mLock;
    const bool mIsLocked;
  };

private:
  std::mutex mMutex; // Guards the members below.
  std::condition_variable mChanged;
  bool mIsWorkers = false;
  int mWindowDepth = 0;
  bool mIsWindowWaiting = false;
};

} // namespace krgui
