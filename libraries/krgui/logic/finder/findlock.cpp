#include "logic/finder/findlock.h"

namespace krgui {

bool FindLock::TryLock() {
  std::unique_lock lock(mMutex);
  const auto isFree = [this] { return mWindowDepth == 0 && !mIsWindowWaiting; };
  const bool isTaken = isFree();
  if (!isTaken)
    mChanged.wait_for(lock, kFailedTryWait, isFree);
  else
    mIsWorkers = true;
  return isTaken;
}

void FindLock::UnlockByWorker() {
  const std::lock_guard lock(mMutex);
  mIsWorkers = false;
  mChanged.notify_all();
}

void FindLock::LockByWindow(const std::function<void()>& aCancel) {
  std::unique_lock lock(mMutex);
  mIsWindowWaiting = true;
  while (mIsWorkers) {
    lock.unlock();
    aCancel();
    lock.lock();
    mChanged.wait_for(lock, kCancelInterval, [this] { return !mIsWorkers; });
  }
  mIsWindowWaiting = false;
  ++mWindowDepth;
}

void FindLock::UnlockByWindow() {
  const std::lock_guard lock(mMutex);
  --mWindowDepth;
  mChanged.notify_all();
}

} // namespace krgui
