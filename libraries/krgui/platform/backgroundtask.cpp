#include "platform/backgroundtask.h"

#include "krbase/krlogger.h"

#include <QCoreApplication>

#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <utility>
#include <vector>

namespace krgui {

namespace {

void LogFailure(const char* aWhat) {
  KrLogger("KrGUILib")
      .Log(KrLogLevel::Error, {"BackgroundTask", "backgroundtask"},
           KrString("What a dialog does beside its window was ended by an exception: ") + aWhat);
}

/// An exception that left the thread would end the process.
void DoWork(const std::function<void(const std::stop_token&)>& aWork, const std::stop_token& aStop) {
  try {
    aWork(aStop);
  } catch (const std::exception& error) {
    LogFailure(error.what());
  } catch (...) {
    LogFailure("it is of unknown type.");
  }
}

} // namespace

/// What a thread and the window that started it have in common.
class BackgroundTask::Run {
public:
  /// User-interface thread: nothing more is posted, and what has been is not continued.
  void Drop() {
    const std::lock_guard lock(mMutex);
    mIsDropped = true;
  }
  bool IsDropped() {
    const std::lock_guard lock(mMutex);
    return mIsDropped;
  }
  /// Posts to the user-interface thread, unless nobody waits there any more: the application object may be gone then,
  /// and cannot go while this is under way. Posting calls nobody's code.
  void Post(const std::function<void()>& aResume) {
    const std::lock_guard lock(mMutex);
    if (!mIsDropped) {
      QMetaObject::invokeMethod(QCoreApplication::instance(), aResume, Qt::QueuedConnection);
    }
  }

  std::atomic<bool> hasEnded = false; ///< The thread is on its last step.

private:
  std::mutex mMutex; ///< Guards mIsDropped.
  bool mIsDropped = false;
};

/// Threads that nobody waits for but the process' end.
struct BackgroundTask::Abandoned {
  struct Entry {
    std::shared_ptr<Run> run;
    std::jthread thread;
  };

  ~Abandoned() { Join(); }
  void Join() {
    std::vector<Entry> all;
    {
      const std::lock_guard lock(mutex);
      all.swap(entries);
    }
    // The end of the threads' own objects waits for them.
  }
  void Add(Entry aEntry) {
    const std::lock_guard lock(mutex);
    std::erase_if(entries, [](const Entry& aOne) { return aOne.run->hasEnded.load(); });
    entries.push_back(std::move(aEntry));
  }

  std::mutex mutex; ///< Guards entries.
  std::vector<Entry> entries;
};

BackgroundTask::BackgroundTask(WhenCancelled aWhenCancelled) : mWhenCancelled(aWhenCancelled) {}

BackgroundTask::~BackgroundTask() {
  Cancel();
}

void BackgroundTask::Start(std::function<void(const std::stop_token&)> aWork, std::function<void()> aThen) {
  Cancel();
  // Made before the work begins and so destroyed, which waits, before what the program made for it to use.
  (void)GetAbandoned();
  mRun = std::make_shared<Run>();
  const auto post = [this, run = mRun, then = std::move(aThen)] {
    run->Post([this, run, then] {
      if (!run->IsDropped()) {
        Continue(then);
      }
    });
  };
  try {
    mThread = std::jthread([work = aWork, post, run = mRun](const std::stop_token& aStop) {
      DoWork(work, aStop);
      post();
      run->hasEnded = true;
    });
  } catch (const std::system_error&) {
    // The host has no thread to spare. That the user waits for a moment is better than a dialog whose buttons do
    // nothing, and nobody could end it meanwhile, as whoever could is waiting, too.
    DoWork(aWork, {});
    post();
  }
}

void BackgroundTask::Cancel() {
  if (const std::shared_ptr<Run> run = std::exchange(mRun, nullptr)) {
    run->Drop();
    mThread.request_stop();
    if (mWhenCancelled == WhenCancelled::Abandon && mThread.joinable() && !run->hasEnded) {
      GetAbandoned().Add({run, std::move(mThread)});
    }
  }
  if (mThread.joinable()) {
    mThread.join();
  }
}

void BackgroundTask::AwaitAbandoned() {
  GetAbandoned().Join();
}

BackgroundTask::Abandoned& BackgroundTask::GetAbandoned() {
  static Abandoned abandoned;
  return abandoned;
}

/// The work has posted; only its thread's very end is to come.
void BackgroundTask::Continue(const std::function<void()>& aThen) {
  mRun->Drop();
  mRun.reset();
  if (mThread.joinable()) {
    mThread.join();
  }
  aThen();
}

} // namespace krgui
