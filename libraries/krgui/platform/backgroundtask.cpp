#include "platform/backgroundtask.h"

#include "krbase/krlogger.h"
#include "krbase/wakeevent.h"

#include <QCoreApplication>
#include <QSocketNotifier>

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
struct BackgroundTask::Run {
  krbase::WakeEvent wake;             ///< The work is over. It needs no application object, which may be gone then.
  std::atomic<bool> hasEnded = false; ///< The thread is on its last step.
  bool isDropped = false;             ///< User-interface thread: it is not continued.
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
  mThen = std::move(aThen);
  if (StartThread(aWork)) {
    return;
  }
  // The host has no thread or descriptor to spare. That the user waits for a moment is better than a dialog whose
  // buttons do nothing, and nobody could end it meanwhile, as whoever could is waiting, too.
  DoWork(aWork, {});
  const auto resume = [this, run = mRun] {
    if (!run->isDropped) {
      Continue();
    }
  };
  QMetaObject::invokeMethod(QCoreApplication::instance(), resume, Qt::QueuedConnection);
}

bool BackgroundTask::StartThread(const std::function<void(const std::stop_token&)>& aWork) {
  if (!mRun->wake.IsOpen()) {
    return false;
  }
  mNotifier = std::make_unique<QSocketNotifier>(mRun->wake.GetDescriptor(), QSocketNotifier::Read);
  QObject::connect(mNotifier.get(), &QSocketNotifier::activated, [this] { Continue(); });
  try {
    mThread = std::jthread([work = aWork, run = mRun](const std::stop_token& aStop) {
      DoWork(work, aStop);
      run->wake.Signal();
      run->hasEnded = true;
    });
  } catch (const std::system_error&) {
    mNotifier.reset();
    return false;
  }
  return true;
}

void BackgroundTask::Cancel() {
  mNotifier.reset();
  mThen = nullptr;
  if (const std::shared_ptr<Run> run = std::exchange(mRun, nullptr)) {
    run->isDropped = true;
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

/// The work is over; only its thread's very end is to come.
void BackgroundTask::Continue() {
  if (mNotifier) {
    // It is what tells.
    mNotifier->setEnabled(false);
    mNotifier.release()->deleteLater();
  }
  const std::function<void()> then = std::exchange(mThen, nullptr);
  mRun.reset();
  if (mThread.joinable()) {
    mThread.join();
  }
  then();
}

} // namespace krgui
