#pragma once
// Clocks for simulated cameras, with which times in frames do not depend on how fast a test runs.

#include "simulation/cameraclock.h"

#include <atomic>
#include <chrono>

/// Stands still until it is moved.
class ManualClock final : public krtransport::ICameraClock {
public:
  std::uint64_t GetNowNs() const override { return mNowNs; }
  bool WaitUntil(std::unique_lock<std::mutex>& aLock, std::condition_variable& aWake, std::uint64_t aTimeNs,
                 const std::function<bool()>& aIsWoken) override {
    mAwaitedNs = aTimeNs;
    while (!aIsWoken() && mNowNs < aTimeNs)
      aWake.wait_for(aLock, std::chrono::milliseconds(1));
    return aIsWoken();
  }
  void Advance(std::uint64_t aNanoseconds) { mNowNs += aNanoseconds; }
  /// The time that was last waited for.
  std::uint64_t GetAwaitedNs() const { return mAwaitedNs; }

private:
  std::atomic<std::uint64_t> mNowNs{1000000000};
  std::atomic<std::uint64_t> mAwaitedNs{0};
};

/// Moves on by itself to whatever is waited for.
class JumpingClock final : public krtransport::ICameraClock {
public:
  std::uint64_t GetNowNs() const override { return mNowNs; }
  bool WaitUntil(std::unique_lock<std::mutex>&, std::condition_variable&, std::uint64_t aTimeNs,
                 const std::function<bool()>& aIsWoken) override {
    if (aIsWoken())
      return true;
    std::uint64_t nowNs = mNowNs;
    while (nowNs < aTimeNs && !mNowNs.compare_exchange_weak(nowNs, aTimeNs)) {
    }
    return false;
  }
  void Advance(std::uint64_t aNanoseconds) { mNowNs += aNanoseconds; }

private:
  std::atomic<std::uint64_t> mNowNs{1000000000};
};
