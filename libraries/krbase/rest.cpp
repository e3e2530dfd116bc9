#include "krbase/rest.h"

#include <condition_variable>
#include <mutex>

namespace krbase {

bool Rest(std::chrono::steady_clock::duration aTime, const std::stop_token& aStop) {
  std::mutex mutex; // Guards nothing: the wait needs one.
  std::condition_variable_any never;
  std::unique_lock lock(mutex);
  never.wait_for(lock, aStop, aTime, [] { return false; });
  return !aStop.stop_requested();
}

} // namespace krbase
