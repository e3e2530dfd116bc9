#pragma once
// The one thread on which a map's sinks are called, and the parameters that wait for being looked at. What is looked
// at, and who is told, is left to the map and the watches.

#include "krbase/krresult.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <stop_token>
#include <thread>

namespace krgenicam {

class ParameterWatch;

/// Thread: any, but for Stop, which must not be called on the thread itself. Ownership: borrows the watches, which
/// outlive it.
class NotificationThread {
public:
  /// aLook looks at one watch and calls its sinks; called with no lock held.
  explicit NotificationThread(std::function<void(ParameterWatch&)> aLook) : mLook(std::move(aLook)) {}
  ~NotificationThread() { Stop(); }

  /// Starts the thread unless it runs already, or was stopped; SystemError where the system gives none.
  KrResult Start();
  /// Has a watch looked at, once if it is waiting for that already.
  void Queue(ParameterWatch& aWatch);
  /// Ends the thread after the look that it is at; what waits is not looked at any more.
  void Stop();

private:
  void Run(const std::stop_token& aStop);

  const std::function<void(ParameterWatch&)> mLook;
  std::mutex mMutex; // Guards the members from here on, and the watches' isQueued.
  std::condition_variable_any mHasWork;
  std::deque<ParameterWatch*> mQueue;
  bool mIsStopped = false;
  std::jthread mThread;
};

} // namespace krgenicam
