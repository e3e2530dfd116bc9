#pragma once
// The clock of the simulated cameras, by which exposures are timed and frames are stamped. Tests put one of their own
// in its place, so that no result depends on how fast they run.

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>

namespace krtransport {

/// Thread: any.
class ICameraClock {
public:
  virtual ~ICameraClock() = default;

  /// Nanoseconds since the clock was started; never running back.
  virtual std::uint64_t GetNowNs() const = 0;
  /// Waits on a condition variable, with its lock held, until a time has come or aIsWoken holds; true for the latter.
  virtual bool WaitUntil(std::unique_lock<std::mutex>& aLock, std::condition_variable& aWake, std::uint64_t aTimeNs,
                         const std::function<bool()>& aIsWoken) = 0;
};

/// The host's steady clock, from its construction on.
class SteadyCameraClock final : public ICameraClock {
public:
  SteadyCameraClock();
  std::uint64_t GetNowNs() const override;
  bool WaitUntil(std::unique_lock<std::mutex>& aLock, std::condition_variable& aWake, std::uint64_t aTimeNs,
                 const std::function<bool()>& aIsWoken) override;

private:
  const std::chrono::steady_clock::time_point mStart;
};

} // namespace krtransport
