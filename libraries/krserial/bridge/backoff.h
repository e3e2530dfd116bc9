#pragma once
// How long to wait before the next try at what keeps failing: longer and longer, up to a limit.

#include "krbase/rest.h"

#include <algorithm>
#include <chrono>
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
    Duration pause;
    {
      const std::lock_guard lock(mMutex);
      pause = mPause;
      mPause = std::min(2 * mPause, kLongest);
    }
    (void)krbase::Rest(pause, aStop);
  }
  /// It has worked.
  void Reset() {
    const std::lock_guard lock(mMutex);
    mPause = kShortest;
  }

private:
  std::mutex mMutex; // Guards the pause.
  Duration mPause = kShortest;
};

} // namespace krserial
