#pragma once
// A call that may take long, on a thread of its own, and what follows it on the thread that looks. What is called is
// left to the owner.

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <stop_token>
#include <thread>

namespace krviewer {

/// One call at a time. Thread: one, but for the work.
class BackgroundCall {
public:
  using Work = std::function<void(const std::stop_token& aStop)>;

  BackgroundCall() = default;
  /// Ends what runs.
  ~BackgroundCall() { End(); }
  BackgroundCall(const BackgroundCall&) = delete;
  BackgroundCall& operator=(const BackgroundCall&) = delete;

  /// Begins the work; none may run. aHurry, from this thread, ends what the work waits for at the moment. aThen follows
  /// the work, from Follow.
  void Start(Work aWork, std::function<void()> aHurry, std::function<void()> aThen);
  bool IsRunning() const { return mThread.joinable(); }
  /// Does what follows work that is over; to be called often.
  void Follow();
  /// Waits until the work is over, so that Follow does what follows it.
  void Await() const;
  /// The same, but no longer than a limit; whether it is over.
  bool AwaitFor(std::chrono::milliseconds aLimit) const;
  /// Ends the work, which is over afterwards, and nothing follows.
  void End();
  /// Lets go of work that may never be over: it goes on with what it owns, and nothing follows.
  void Leave();

private:
  std::jthread mThread;
  std::future<void> mEnd; ///< Of the work.
  std::function<void()> mHurry;
  std::function<void()> mThen;
};

} // namespace krviewer
