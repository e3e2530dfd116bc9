#pragma once
// Lets what is due in a lab happen while nobody asks, so that whoever has a camera open hears in time that it has gone.

#include "simulation/cameraclock.h"

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace krtransport {

/// Thread: destruction waits for an update that runs.
class ScheduleThread {
public:
  /// Carries out what is due and gives the clock's time of the next change.
  using Update = std::function<std::uint64_t()>;

  /// Calls aUpdate on a thread of its own, now and whenever a change is due.
  ScheduleThread(std::shared_ptr<ICameraClock> aClock, Update aUpdate);
  ~ScheduleThread();
  ScheduleThread(const ScheduleThread&) = delete;
  ScheduleThread& operator=(const ScheduleThread&) = delete;

private:
  void Run();

  const std::shared_ptr<ICameraClock> mClock;
  const Update mUpdate;
  std::mutex mMutex; // Guards mEnding.
  std::condition_variable mWake;
  bool mEnding = false;
  std::thread mThread;
};

} // namespace krtransport
