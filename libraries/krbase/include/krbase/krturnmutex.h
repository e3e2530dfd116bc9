#pragma once
// A mutex that is had in the order in which it was asked for, by any number of threads: whoever waits for it gets it
// before a thread that gives it up takes it again. For what one thread locks many times in a row, or nearly all the
// time, while others need it now and then.

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <utility>

/// Thread: any; not recursive. Used as std::timed_mutex is, with std::lock_guard and
/// std::unique_lock.
class KrTurnMutex {
public:
  KrTurnMutex() = default;
  KrTurnMutex(const KrTurnMutex&) = delete;
  KrTurnMutex& operator=(const KrTurnMutex&) = delete;

  /// Waits for its turn, without a limit.
  void lock() {
    std::unique_lock guard(mGuard);
    if (!std::exchange(mIsHeld, true))
      return;
    Waiter self;
    Append(self);
    self.turn.wait(guard, [&self] { return self.hasTurn; });
  }

  /// Waits for it until a time at most; false when it was not had by then.
  template <typename Clock, typename Duration>
  bool try_lock_until(const std::chrono::time_point<Clock, Duration>& aEnd) {
    std::unique_lock guard(mGuard);
    if (!std::exchange(mIsHeld, true))
      return true;
    Waiter self;
    Append(self);
    if (self.turn.wait_until(guard, aEnd, [&self] { return self.hasTurn; }))
      return true;
    Remove(self);
    return false;
  }

  /// Takes it if nobody has it; does not wait.
  bool try_lock() {
    const std::lock_guard guard(mGuard);
    return !std::exchange(mIsHeld, true);
  }

  /// Hands it over to who has waited longest.
  void unlock() {
    const std::lock_guard guard(mGuard);
    if (mFirst == nullptr) {
      mIsHeld = false;
      return;
    }
    Waiter& next = *mFirst;
    mFirst = next.next;
    if (mFirst == nullptr)
      mLast = nullptr;
    --mWaiting;
    next.hasTurn = true;
    // Under the guard, as the waiter is gone as soon as it goes on.
    next.turn.notify_one();
  }

  /// How many threads wait for it at this moment.
  std::size_t CountWaiting() const {
    const std::lock_guard guard(mGuard);
    return mWaiting;
  }

private:
  /// A thread that waits, on its own stack.
  struct Waiter {
    std::condition_variable turn;
    bool hasTurn = false;
    Waiter* next = nullptr;
  };

  void Append(Waiter& aWaiter) {
    (mLast == nullptr ? mFirst : mLast->next) = &aWaiter;
    mLast = &aWaiter;
    ++mWaiting;
  }
  void Remove(Waiter& aWaiter) {
    Waiter* before = nullptr;
    Waiter** place = &mFirst;
    while (*place != &aWaiter) {
      before = *place;
      place = &before->next;
    }
    *place = aWaiter.next;
    if (mLast == &aWaiter)
      mLast = before;
    --mWaiting;
  }

  mutable std::mutex mGuard; ///< Guards what follows; held for moments.
  bool mIsHeld = false;
  Waiter* mFirst = nullptr; ///< Has waited longest.
  Waiter* mLast = nullptr;
  std::size_t mWaiting = 0;
};
