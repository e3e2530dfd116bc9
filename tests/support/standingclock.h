#pragma once
// A clock for what waits by one of its own: it stands still until a test moves it.

#include "krbase/krwaitclock.h"

#include <atomic>
#include <chrono>

/// Thread: any.
class StandingClock final : public KrWaitClock {
public:
  TimePoint GetNow() const override { return TimePoint(mNow.load()); }
  bool WaitUntil(std::condition_variable_any& aChanged, std::unique_lock<std::mutex>& aLock,
                 const std::stop_token& aStop, TimePoint aEnd, const std::function<bool()>& aCondition) override {
    ++mWaiting;
    // The clock does not know whom to wake when it is moved.
    while (!aCondition() && !aStop.stop_requested() && GetNow() < aEnd)
      aChanged.wait_for(aLock, aStop, std::chrono::milliseconds(1), aCondition);
    --mWaiting;
    return aCondition();
  }

  void Advance(TimePoint::duration aTime) { mNow = mNow.load() + aTime; }
  /// How many threads wait until a time.
  int CountWaiting() const { return mWaiting; }

private:
  std::atomic<TimePoint::duration> mNow{std::chrono::hours(1)};
  std::atomic<int> mWaiting{0};
};
