#include "platform/backgroundtask.h"

#include <QCoreApplication>

#include <system_error>
#include <utility>

namespace krgui {

BackgroundTask::~BackgroundTask() {
  Cancel();
}

void BackgroundTask::Start(std::function<void(const std::stop_token&)> aWork, std::function<void()> aThen) {
  Cancel();
  mRun = std::make_shared<const bool>(true);
  const auto post = [this, run = std::weak_ptr(mRun), then = std::move(aThen)] {
    const auto resume = [this, run, then] {
      if (!run.expired()) {
        Continue(then);
      }
    };
    QMetaObject::invokeMethod(QCoreApplication::instance(), resume, Qt::QueuedConnection);
  };
  try {
    mThread = std::jthread([work = aWork, post](const std::stop_token& aStop) {
      work(aStop);
      post();
    });
  } catch (const std::system_error&) {
    // Without a thread the user waits.
    aWork({});
    post();
  }
}

void BackgroundTask::Cancel() {
  mRun.reset();
  if (mThread.joinable()) {
    mThread.request_stop();
    mThread.join();
  }
}

void BackgroundTask::Continue(const std::function<void()>& aThen) {
  Cancel();
  aThen();
}

} // namespace krgui
