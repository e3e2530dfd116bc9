#pragma once
// The time by which a class waits and gives up, where a test has a clock of its own, on which waiting takes no time.

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <stop_token>

/// The host's steady clock, unless a derived class says otherwise.
///
/// Thread: any.
class KrWaitClock {
public:
  /// A time of the steady clock.
  using TimePoint = std::chrono::steady_clock::time_point;

  virtual ~KrWaitClock() = default;

  /// The time at this moment.
  virtual TimePoint GetNow() const { return std::chrono::steady_clock::now(); }
  /// Waits, as the variable does, until the condition holds, a stop is asked for or it is that late; whether the
  /// condition holds.
  virtual bool WaitUntil(std::condition_variable_any& aChanged, std::unique_lock<std::mutex>& aLock,
                         const std::stop_token& aStop, TimePoint aEnd, const std::function<bool()>& aCondition) {
    return aChanged.wait_until(aLock, aStop, aEnd, aCondition);
  }
};
