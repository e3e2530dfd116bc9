#include "map/notificationthread.h"

#include "map/parameterwatch.h"

#include <utility>

namespace krgenicam {

void NotificationThread::Start() {
  const std::lock_guard lock(mMutex);
  if (!mThread.joinable() && !mIsStopped)
    mThread = std::jthread([this](const std::stop_token& aStop) { Run(aStop); });
}

void NotificationThread::Queue(ParameterWatch& aWatch) {
  {
    const std::lock_guard lock(mMutex);
    if (std::exchange(aWatch.isQueued, true))
      return;
    mQueue.push_back(&aWatch);
  }
  mHasWork.notify_one();
}

void NotificationThread::Stop() {
  std::jthread thread;
  {
    const std::lock_guard lock(mMutex);
    mIsStopped = true;
    thread = std::move(mThread);
  }
  // Its end requests the stop and joins.
}

void NotificationThread::Run(const std::stop_token& aStop) {
  while (true) {
    ParameterWatch* watch = nullptr;
    {
      std::unique_lock lock(mMutex);
      if (!mHasWork.wait(lock, aStop, [this] { return !mQueue.empty(); }) || aStop.stop_requested())
        return;
      watch = mQueue.front();
      mQueue.pop_front();
      // What changes from here on has it looked at again.
      watch->isQueued = false;
    }
    mLook(*watch);
  }
}

} // namespace krgenicam
