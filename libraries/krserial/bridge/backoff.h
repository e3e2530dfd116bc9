#pragma once
// How long to wait before the next try at what keeps failing: longer and longer, up to a limit.

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stop_token>

namespace krserial {

/// Thread: any; the waits of several threads count together.
class Backoff {
public:
  using Duration = std::chrono::milliseconds;

  static constexpr Duration kShortest{50};
  static constexpr Duration kLongest{2000};

  /// Waits, unless aStop is stopped, and makes the next wait twice as long.
  void Wait(const std::stop_token& aStop) {
    std::unique_lock lock(mMutex);
    const Duration pause = mPause;
    mPause = std::min(2 * mPause, kLongest);
    mNever.wait_for(lock, aStop, pause, [] { return false; });
  }
  /// It has worked.
  void Reset() {
    const std::lock_guard lock(mMutex);
    mPause = kShortest;
  }

private:
  std::mutex mMutex; // Guards the pause.
  std::condition_variable_any mNever;
  Duration mPause = kShortest;
};

} // namespace krserial
