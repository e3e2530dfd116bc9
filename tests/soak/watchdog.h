#pragma once
// Ends a soak that hangs, and says in which step. What a step is, is left to the soak.

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

/// Thread: Begin on the one that makes it, which is watched.
class Watchdog {
public:
  explicit Watchdog(std::chrono::seconds aLimit);
  ~Watchdog();
  Watchdog(const Watchdog&) = delete;
  Watchdog& operator=(const Watchdog&) = delete;

  /// A step begins, and the one before has ended. The name is a literal.
  void Begin(const char* aStep);
  const char* GetStep() const;

private:
  void Run(const std::stop_token& aStop);
  /// Says what the threads of the process do, and where the one that is watched stands; ends the process with 1.
  [[noreturn]] void ReportHang(const char* aStep) const;

  const std::chrono::seconds mLimit;
  const pthread_t mWatched;
  mutable std::mutex mMutex; // Guards the members up to the thread.
  std::condition_variable_any mBegan;
  const char* mStep = "the start";
  std::chrono::steady_clock::time_point mBegin = std::chrono::steady_clock::now();
  std::jthread mThread;
};
