#pragma once
// What other threads of a test have done on the user-interface thread. The toolkit's own calls between threads hand over
// what a thread sanitizer takes for a race, as it cannot see the order that the toolkit's queue gives.

#include <QCoreApplication>
#include <QEvent>
#include <QObject>

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <utility>

namespace krtest {

/// Made on the user-interface thread, which does the calls from its loop, in their order. What was not done when it ends
/// is dropped.
class WindowCalls : public QObject {
public:
  /// Thread: any.
  void Post(std::function<void()> aCall) {
    {
      const std::lock_guard lock(mMutex);
      mCalls.push_back(std::move(aCall));
    }
    QCoreApplication::postEvent(this, new QEvent(QEvent::User));
  }
  /// Returns when it is done. Thread: any other than the user interface's.
  void Ask(const std::function<void()>& aCall) {
    bool isDone = false;
    Post([&] {
      aCall();
      const std::lock_guard lock(mMutex);
      isDone = true;
      mDone.notify_all();
    });
    std::unique_lock lock(mMutex);
    mDone.wait(lock, [&] { return isDone; });
  }

protected:
  bool event(QEvent* aEvent) override {
    if (aEvent->type() != QEvent::User)
      return QObject::event(aEvent);
    std::function<void()> call;
    {
      const std::lock_guard lock(mMutex);
      call = std::move(mCalls.front());
      mCalls.pop_front();
    }
    call();
    return true;
  }

private:
  std::mutex mMutex; // Guards all members.
  std::condition_variable mDone;
  std::deque<std::function<void()>> mCalls;
};

} // namespace krtest
