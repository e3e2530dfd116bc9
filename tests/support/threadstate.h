#pragma once
// Whether a thread waits, as the kernel sees it: for tests of calls that wait where nothing else tells so.

#include "await.h"

#include <atomic>
#include <fstream>
#include <functional>
#include <future>
#include <string>
#include <sys/types.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace krtest {

/// Whether a thread of this process, by its number (gettid), sleeps at this moment; one that has ended does not.
inline bool IsAsleep(pid_t aThread) {
  std::ifstream file("/proc/self/task/" + std::to_string(aThread) + "/stat");
  std::string line;
  // The state follows the name in its parentheses.
  return std::getline(file, line) && line.find(") S ") != std::string::npos;
}

/// A call on a thread of its own, of which a test wants to know that it waits.
class CallBeside {
public:
  explicit CallBeside(std::function<void()> aCall) {
    std::promise<pid_t> number;
    std::future<pid_t> known = number.get_future();
    mThread = std::jthread([this, call = std::move(aCall), begun = std::move(number)]() mutable {
      begun.set_value(::gettid());
      call();
      mHasReturned = true;
    });
    mNumber = known.get();
  }

  /// Looks until the call waits, or has returned without; which of both. Short rests on its way are no wait.
  [[nodiscard]] bool Waits() const {
    constexpr int kLooks = 100;
    int looks = 0;
    return Await([&] {
             looks = IsAsleep(mNumber) ? looks + 1 : 0;
             return looks == kLooks || mHasReturned;
           }) &&
           !mHasReturned;
  }
  void Join() { mThread.join(); }

private:
  std::atomic<bool> mHasReturned = false;
  pid_t mNumber = 0;
  std::jthread mThread; // Last, so that the rest is there when it begins.
};

} // namespace krtest
