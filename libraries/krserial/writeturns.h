#pragma once
// Lets one message at a time be written, in the order in which they were asked for, so that who writes again and again
// keeps nobody from it. A wait can be cancelled, which a mutex has not.

#include <condition_variable>
#include <cstddef>
#include <list>
#include <mutex>
#include <stop_token>
#include <thread>

namespace krserial {

/// Thread: any.
class WriteTurns {
public:
  /// A place in the queue while it lives.
  class Turn {
  public:
    /// Waits until all turns before it have ended, or aCancel is stopped.
    Turn(WriteTurns& aTurns, const std::stop_token& aCancel) : mTurns(aTurns) {
      std::unique_lock lock(mTurns.mMutex);
      mPlace = mTurns.mQueue.insert(mTurns.mQueue.end(), std::this_thread::get_id());
      mIsMine = mTurns.mChanged.wait(lock, aCancel, [this] { return mPlace == mTurns.mQueue.begin(); });
    }
    ~Turn() {
      const std::lock_guard lock(mTurns.mMutex);
      mTurns.mQueue.erase(mPlace);
      mTurns.mChanged.notify_all();
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    /// False when the wait was cancelled.
    bool IsMine() const { return mIsMine; }

  private:
    WriteTurns& mTurns;
    std::list<std::thread::id>::iterator mPlace;
    bool mIsMine = false;
  };

  /// The turn that runs, and those that wait.
  std::size_t Count() const {
    const std::lock_guard lock(mMutex);
    return mQueue.size();
  }

private:
  mutable std::mutex mMutex; // Guards the queue; held for moments.
  std::condition_variable_any mChanged;
  std::list<std::thread::id> mQueue; // By thread, the first one has its turn.
};

} // namespace krserial
