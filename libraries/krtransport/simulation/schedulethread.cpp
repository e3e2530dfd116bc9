#include "simulation/schedulethread.h"

#include "simulation/labschedule.h"

#include <utility>

namespace krtransport {

ScheduleThread::ScheduleThread(std::shared_ptr<ICameraClock> aClock, Update aUpdate)
    : mClock(std::move(aClock)), mUpdate(std::move(aUpdate)), mThread([this] { Run(); }) {}

ScheduleThread::~ScheduleThread() {
  {
    const std::lock_guard lock(mMutex);
    mEnding = true;
  }
  mWake.notify_all();
  mThread.join();
}

void ScheduleThread::Run() {
  const auto isEnding = [this] { return mEnding; };
  std::unique_lock lock(mMutex);
  while (!mEnding) {
    lock.unlock();
    const std::uint64_t nextNs = mUpdate();
    lock.lock();
    if (nextNs == LabSchedule::kNever)
      mWake.wait(lock, isEnding);
    else
      mClock->WaitUntil(lock, mWake, nextNs, isEnding);
  }
}

} // namespace krtransport
