#pragma once
// Where a test holds a thread up.

#include "await.h"

#include <condition_variable>
#include <mutex>
#include <stop_token>

/// A gate that one thread reaches and another opens.
class Gate {
public:
  /// Tells that the gate was reached and waits until it is opened or the token asks.
  void Wait(const std::stop_token& aStop) {
    std::unique_lock lock(mMutex);
    mIsReached = true;
    mChanged.notify_all();
    (void)mChanged.wait(lock, aStop, [this] { return mIsOpen; });
  }
  /// Tells that the gate was reached and goes on.
  void Pass() {
    const std::lock_guard lock(mMutex);
    mIsReached = true;
    mChanged.notify_all();
  }
  void Open() {
    const std::lock_guard lock(mMutex);
    mIsOpen = true;
    mChanged.notify_all();
  }
  /// False when nobody comes within a limit that only a fault can reach.
  [[nodiscard]] bool AwaitReached() {
    std::unique_lock lock(mMutex);
    return mChanged.wait_for(lock, krtest::GetGenerousLimit(), [this] { return mIsReached; });
  }
  bool IsReached() const {
    const std::lock_guard lock(mMutex);
    return mIsReached;
  }

private:
  mutable std::mutex mMutex; // Guards both flags.
  std::condition_variable_any mChanged;
  bool mIsReached = false;
  bool mIsOpen = false;
};
