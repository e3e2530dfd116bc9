#pragma once
// One piece of work at a time that would keep the user interface waiting: done on a thread of its own, and continued on
// the user-interface thread. What is done, and what with, is left to the window that owns the task.

#include <functional>
#include <memory>
#include <stop_token>
#include <thread>

namespace krgui {

/// Thread: user interface, but for the work. Ownership: the window; its end cancels the work and waits for it.
class BackgroundTask {
public:
  BackgroundTask() = default;
  ~BackgroundTask();
  BackgroundTask(const BackgroundTask&) = delete;
  BackgroundTask& operator=(const BackgroundTask&) = delete;

  /// Does aWork on a thread, then aThen on this one, from the toolkit's loop. aWork must not touch the window; aThen
  /// may end it. What runs is cancelled first.
  void Start(std::function<void(const std::stop_token&)> aWork, std::function<void()> aThen);
  /// Asks the work to end, waits until it has, and drops what was to come then.
  void Cancel();
  bool IsRunning() const { return mRun != nullptr; }

private:
  void Continue(const std::function<void()>& aThen);

  std::jthread mThread;
  /// One run; what is posted by an earlier one finds that it has expired.
  std::shared_ptr<const bool> mRun;
};

} // namespace krgui
