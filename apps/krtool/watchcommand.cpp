#include "watchcommand.h"

#include "camerasession.h"
#include "krbase/krsteadytime.h"
#include "outputreader.h"
#include "stopsignal.h"
#include "watchbook.h"
#include "watchtext.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <thread>

namespace krtool {

namespace {

using Clock = std::chrono::steady_clock;

// A signal handler can wake nobody, so the end is asked for now and then.
constexpr std::chrono::milliseconds kInterval{50};

std::vector<const KrInterface*> GetInterfaces(const KrSystem& aSystem) {
  std::vector<const KrInterface*> interfaces;
  for (std::size_t index = 0; const KrInterface* interface = aSystem.GetInterface(index); ++index)
    interfaces.push_back(interface);
  return interfaces;
}

/// Discovery round after round on a thread of its own.
class Watch final : public KrSystemEventSink {
public:
  explicit Watch(KrSystem& aSystem) : mSystem(aSystem) {
    mBook.TakeInterfaces(GetInterfaces(mSystem));
    // It was made for this one system and stays alone there, so it cannot be refused.
    static_cast<void>(mSystem.RegisterEventSink(this));
    mThread = std::jthread([this](const std::stop_token& aStop) { Run(aStop); });
  }

  ~Watch() override {
    mThread.request_stop();
    // A round may be about to begin, which forgets who cancelled the one before.
    while (!AwaitEnd())
      mSystem.Cancel();
    mThread.join();
    static_cast<void>(mSystem.UnregisterEventSink(this));
  }
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;

  void OnDeviceFound(const KrInterface*, const KrDeviceInfo* aDevice, bool&) override {
    const std::lock_guard lock(mMutex);
    mBook.TakeDevice(*aDevice, KrGetSteadyMs());
    mChanged.notify_all();
  }

  /// Waits a little for something to happen, and gives what did.
  std::vector<News> AwaitNews() {
    std::unique_lock lock(mMutex);
    mChanged.wait_for(lock, kInterval);
    mBook.Age(KrGetSteadyMs());
    return mBook.TakeNews();
  }

  /// Why the last round failed; OK where it did not, or was told of already.
  KrResult TakeFailure() {
    const std::lock_guard lock(mMutex);
    return std::exchange(mFailure, {});
  }

private:
  void Run(const std::stop_token& aStop) {
    while (!aStop.stop_requested()) {
      const Clock::time_point end = Clock::now() + std::chrono::milliseconds(mSystem.GetDetectionTimeout());
      const KrResult found = mSystem.Find();
      const std::vector<const KrInterface*> interfaces = GetInterfaces(mSystem);
      std::unique_lock lock(mMutex);
      mBook.TakeInterfaces(interfaces);
      NoteFailure(found);
      mChanged.notify_all();
      // Where everybody answers at once the rounds keep their pace none the less.
      mPaced.wait_until(lock, aStop, end, [&aStop] { return aStop.stop_requested(); });
    }
    const std::lock_guard lock(mMutex);
    mHasEnded = true;
    mChanged.notify_all();
  }

  // Said once as long as it lasts.
  void NoteFailure(const KrResult& aFound) {
    const KrResult failure = aFound == KrResult::Code::Aborted ? KrResult() : aFound;
    if (!failure.IsOK() && failure.GetDescription() != mLastFailure)
      mFailure = failure;
    mLastFailure = failure.GetDescription();
  }

  bool AwaitEnd() {
    constexpr std::chrono::milliseconds kAgain{5};
    std::unique_lock lock(mMutex);
    return mChanged.wait_for(lock, kAgain, [this] { return mHasEnded; });
  }

  KrSystem& mSystem;
  std::mutex mMutex; // Guards all below but the thread.
  std::condition_variable mChanged;
  std::condition_variable_any mPaced;
  WatchBook mBook;
  KrResult mFailure;
  KrString mLastFailure;
  bool mHasEnded = false;
  std::jthread mThread;
};

} // namespace

int WatchUntil(KrSystem& aSystem, const CommandLine& aCommandLine, const std::function<bool()>& aIsStopped,
               std::ostream& aOut, std::ostream& aErrors) {
  const Clock::time_point start = Clock::now();
  const auto isOver = [&] {
    return aCommandLine.timeoutMs && Clock::now() - start >= std::chrono::milliseconds(*aCommandLine.timeoutMs);
  };
  Watch watch(aSystem);
  while (!aIsStopped() && !isOver() && aOut.good()) {
    const std::vector<News> news = watch.AwaitNews();
    const NewsTime now = std::chrono::system_clock::now();
    for (const News& piece : news)
      aOut << (aCommandLine.json ? FormatNewsJson(piece, now) : FormatNews(piece, now));
    if (!news.empty())
      aOut.flush();
    if (const KrResult failure = watch.TakeFailure(); !failure.IsOK())
      static_cast<void>(Fail(aErrors, Explain("looking for devices failed", failure)));
  }
  return 0;
}

int RunWatch(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors) {
  const krapps::StopSignal stop;
  // Without news nothing is written, so that the reader's end would show in nothing else.
  const auto isStopped = [&stop] { return stop.IsRaised() || IsReaderGone(); };
  return WatchUntil(aSystem, aCommandLine, isStopped, aOut, aErrors);
}

} // namespace krtool
