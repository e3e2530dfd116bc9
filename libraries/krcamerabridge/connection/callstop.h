#pragma once
// How a call that waits for the camera is ended by another thread.

#include <mutex>
#include <stop_token>

namespace krcamerabridge {

/// Thread: any.
class CallStop {
public:
  /// The token of a call that begins: former stops do not count for it.
  std::stop_token Begin() {
    const std::lock_guard lock(mMutex);
    mSource = std::stop_source();
    return mSource.get_token();
  }
  /// Stops the call that began last. Nothing is locked while its callbacks run.
  void Stop() {
    std::stop_source source = Get();
    source.request_stop();
  }

private:
  std::stop_source Get() const {
    const std::lock_guard lock(mMutex);
    return mSource;
  }

  mutable std::mutex mMutex; // Guards the source.
  std::stop_source mSource;
};

} // namespace krcamerabridge
