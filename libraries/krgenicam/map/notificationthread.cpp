#include "map/notificationthread.h"

#include "map/parameterwatch.h"

#include <system_error>
#include <utility>

namespace krgenicam {

KrResult NotificationThread::Start() {
  const std::lock_guard lock(mMutex);
  if (mThread.joinable() || mIsStopped)
    return {};
  try {
    mThread = std::jthread([this](const std::stop_token& aStop) { Run(aStop); });
  } catch (const std::system_error& error) {
    return {KrResult::Code::SystemError,
            "No thread could be started that tells of changes: " + error.code().message() + "."};
  }
  return {};
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
