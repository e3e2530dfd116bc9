#pragma once
// A pause that whoever asks a camera makes, and that a stop ends. How long is left to who makes it.

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stop_token>

namespace krcamerabridge {

/// Waits, unless aStop is stopped, in which case it is false. Any thread.
inline bool Rest(std::chrono::steady_clock::duration aTime, const std::stop_token& aStop) {
  std::mutex mutex;
  std::condition_variable_any never;
  std::unique_lock lock(mutex);
  never.wait_for(lock, aStop, aTime, [] { return false; });
  return !aStop.stop_requested();
}

} // namespace krcamerabridge
