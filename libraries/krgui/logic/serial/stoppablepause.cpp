#include "logic/serial/stoppablepause.h"

#include <condition_variable>
#include <mutex>

namespace krgui {

void PauseUnlessStopped(std::chrono::milliseconds aDuration, const std::stop_token& aStop) {
  std::mutex mutex; // Guards nothing: the wait needs one.
  std::condition_variable_any changed;
  std::unique_lock lock(mutex);
  changed.wait_for(lock, aStop, aDuration, [] { return false; });
}

} // namespace krgui
