#pragma once
// One piece of work at a time that would keep the user interface waiting: done on a thread of its own, and continued on
// the user-interface thread. What is done, and what with, is left to the window that owns the task.

#include <functional>
#include <memory>
#include <stop_token>
#include <thread>

class QSocketNotifier;

namespace krgui {

/// Thread: user interface, but for the work. Ownership: the window; its end cancels the work.
class BackgroundTask {
public:
  /// What becomes of work that still runs when nobody wants its end any more.
  enum class WhenCancelled {
    Wait,    ///< It heeds its stop token and is waited for: it may borrow what the window has.
    Abandon, ///< It cannot be hurried and is left alone: all that it uses is its own. The process' end waits for it.
  };

  explicit BackgroundTask(WhenCancelled aWhenCancelled = WhenCancelled::Wait);
  ~BackgroundTask();
  BackgroundTask(const BackgroundTask&) = delete;
  BackgroundTask& operator=(const BackgroundTask&) = delete;

  /// Does aWork on a thread, then aThen on this one, from the toolkit's loop. aWork must not touch the window; aThen
  /// may end it. Work that throws is logged and continued all the same, with what it has got so far. What runs is
  /// cancelled first.
  void Start(std::function<void(const std::stop_token&)> aWork, std::function<void()> aThen);
  /// Asks the work to end, waits for it or abandons it, and drops what was to come then.
  void Cancel();
  bool IsRunning() const { return mRun != nullptr; }

  /// Waits for all work that was abandoned. The process' end does so, before anything static that work may use is gone;
  /// who unregisters a transport under a dialog that sends, too.
  static void AwaitAbandoned();

private:
  struct Run;
  struct Abandoned;

  static Abandoned& GetAbandoned();
  bool StartThread(const std::function<void(const std::stop_token&)>& aWork);
  void Continue();

  const WhenCancelled mWhenCancelled;
  std::jthread mThread;
  std::function<void()> mThen; ///< Of the run.
  std::shared_ptr<Run> mRun;
  std::unique_ptr<QSocketNotifier> mNotifier; ///< Hears the run's thread; null where it has none.
};

} // namespace krgui
