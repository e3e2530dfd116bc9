#include "simulation/cameraclock.h"

namespace krtransport {

SteadyCameraClock::SteadyCameraClock() : mStart(std::chrono::steady_clock::now()) {}

std::uint64_t SteadyCameraClock::GetNowNs() const {
  const auto passed = std::chrono::steady_clock::now() - mStart;
  return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(passed).count());
}

bool SteadyCameraClock::WaitUntil(std::unique_lock<std::mutex>& aLock, std::condition_variable& aWake,
                                  std::uint64_t aTimeNs, const std::function<bool()>& aIsWoken) {
  return aWake.wait_until(aLock, mStart + std::chrono::nanoseconds(aTimeNs), aIsWoken);
}

} // namespace krtransport
