#pragma once
// Ends the program, and says where it was, when a case takes so long that it can only hang.

#include "await.h"

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace krtest {

/// Watches the thread that made it, from construction to destruction. The waits of a case end by themselves long
/// before.
class CaseLimit {
public:
  /// aWhere is called on another thread, and says what the case was doing.
  explicit CaseLimit(std::function<std::string()> aWhere, std::chrono::milliseconds aLimit = 5 * GetGenerousLimit())
      : mThread([this, where = std::move(aWhere), aLimit] { Watch(where, aLimit); }) {}
  ~CaseLimit() {
    {
      const std::lock_guard lock(mMutex);
      mIsOver = true;
    }
    mChanged.notify_all();
    mThread.join();
  }
  CaseLimit(const CaseLimit&) = delete;
  CaseLimit& operator=(const CaseLimit&) = delete;

private:
  void Watch(const std::function<std::string()>& aWhere, std::chrono::milliseconds aLimit) {
    std::unique_lock lock(mMutex);
    if (mChanged.wait_for(lock, aLimit, [this] { return mIsOver; }))
      return;
    std::fprintf(stderr, "The case hangs: %s\n", aWhere().c_str());
    std::abort(); // With the stacks of all threads, where a debugger or the system keeps them.
  }

  std::mutex mMutex; // Guards the flag.
  std::condition_variable mChanged;
  bool mIsOver = false;
  std::thread mThread; // Last, so that the rest is there when it begins.
};

} // namespace krtest
