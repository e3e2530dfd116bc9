// A display under two cameras and a user who do all that they may, at random: nothing grows, nothing fails, and nothing
// is logged as an error but the refusals of bad frames.
//
//   displaysoak                 some hundred steps of each, as the tests run it
//   displaysoak --minutes N     as many as there are in that time
//
// Prints what is held after each stage, with the window in one and the same state, and ends with 1 when a bound is
// passed.

#include "footprint.h"
#include "krbase/krlogger.h"
#include "krgui/krdisplaywnd.h"
#include "randomcamera.h"
#include "randomuser.h"
#include "windowwait.h"
#include "xserver.h"

#include <QApplication>
#include <QTest>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <malloc.h>
#include <string>
#include <thread>

namespace {

constexpr int kShortSteps = 300;
constexpr int kShortStages = 3;
constexpr int kLongSteps = 2000;
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr std::int64_t kMostGrowthBytes = 400 << 20; // The sanitizers remember what was freed.
#else
constexpr std::int64_t kMostGrowthBytes =
    32 << 20; // Five of the largest pictures on the screen: the allocator keeps that much, or not.
#endif
constexpr std::int64_t kMostServerGrowthBytes = 32 << 20;
constexpr std::ptrdiff_t kMostSegmentGrowth = 1; // The second of two buffers is made when it is first needed.

class Soak {
public:
  /// Runs one stage, returns what is held after it.
  struct Held {
    Footprint footprint;
    std::int64_t serverBytes = 0;
  };
  Held RunStage(int aSteps) {
    const bool isFirst = mStages++ == 0;
    std::atomic<int> running = 2;
    const auto runCamera = [&](RandomCamera& aCamera) {
      if (isFirst)
        aCamera.GiveLargest();
      for (int step = 0; step < aSteps; ++step)
        aCamera.Step();
      --running;
    };
    if (isFirst)
      mWindow.SetPosition(0, 0, RandomUser::kMostWidth, RandomUser::kMostHeight);
    Require(mWindow.GetWidget() != nullptr || mWindow.ShowModeless(0).IsOK(), "open the window");
    std::thread first(runCamera, std::ref(mFirst));
    std::thread second(runCamera, std::ref(mSecond));
    while (running > 0) {
      mUser.Step();
      QApplication::processEvents();
    }
    first.join();
    second.join();
    return Settle();
  }

  /// How often something went wrong.
  int CountFaults() {
    TakeRecords();
    const KrDisplayStatistics statistics = mWindow.GetStatistics();
    const std::uint64_t refusals = mFirst.GetRefusals() + mSecond.GetRefusals();
    std::printf("received=%llu shown=%llu dropped=%llu refused=%llu\n",
                static_cast<unsigned long long>(statistics.received), static_cast<unsigned long long>(statistics.shown),
                static_cast<unsigned long long>(statistics.dropped),
                static_cast<unsigned long long>(statistics.refused));
    const bool isCounted = statistics.received == statistics.shown + statistics.dropped + statistics.refused;
    const bool isLogged = mErrors == refusals && statistics.refused == refusals;
    std::printf("failures=%d errors_logged=%llu errors_expected=%llu counts_agree=%d\n",
                mFirst.GetFailures() + mSecond.GetFailures() + mUser.GetFailures(),
                static_cast<unsigned long long>(mErrors), static_cast<unsigned long long>(refusals), isCounted ? 1 : 0);
    return mFirst.GetFailures() + mSecond.GetFailures() + mUser.GetFailures() + (isLogged ? 0 : 1) +
           (isCounted ? 0 : 1);
  }

private:
  static void Require(bool aIsDone, const char* aWhat) {
    if (aIsDone)
      return;
    std::fprintf(stderr, "soak: could not %s\n", aWhat);
    std::_Exit(1);
  }

  /// Brings the window into the state in which all stages are compared: of one size, having shown one image, empty.
  Held Settle() {
    TakeRecords();
    mWindow.SetPosition(100, 100, 640, 480);
    mWindow.ZoomFit();
    KrBuffer frame;
    Require(frame.GetImage()->Alloc(640, 480, KrPixel::Mono8).IsOK(), "make an image");
    const std::uint64_t shown = mWindow.GetStatistics().shown;
    Require(mWindow.Display(frame, false).IsOK(), "show an image");
    Require(krtest::AwaitCondition([&] { return mWindow.GetStatistics().shown > shown; }), "see an image");
    mWindow.Clear();
    Require(mWindow.DoEvents().IsOK(), "come to rest");
    // A thread that was joined is among the kernel's a little longer.
    Require(krtest::AwaitCondition([&] { return MeasureFootprint().threads <= mMostThreads; }), "see the threads end");
    ::malloc_trim(0);
    const Held held = {MeasureFootprint(), GetResidentBytes(mServer)};
    mMostThreads = held.footprint.threads;
    return held;
  }

  /// Counts the errors among the records and forgets all, so that they do not grow; while no camera writes any.
  void TakeRecords() {
    for (const KrLogRecord& record : mRecords.GetRecords()) {
      mErrors += record.level == KrLogLevel::Error ? 1 : 0;
    }
    mRecords.Clear();
  }

  const std::string mServer = FindXServer();
  KrLogCapture mRecords;
  KrDisplayWnd mWindow;
  RandomCamera::SharedSize mSize = 320U << 16 | 240U;
  RandomCamera mFirst{mWindow, mSize, 1};
  RandomCamera mSecond{mWindow, mSize, 2};
  RandomUser mUser{mWindow, 3};
  int mStages = 0;
  std::ptrdiff_t mMostThreads = std::numeric_limits<std::ptrdiff_t>::max(); // After the stage before.
  std::uint64_t mErrors = 0;
};

void Print(const char* aStage, const Soak::Held& aHeld) {
  const auto getMB = [](std::int64_t aBytes) { return static_cast<double>(aBytes) / (1 << 20); };
  std::printf("stage=%s resident_MB=%.1f server_MB=%.1f threads=%td descriptors=%td segments=%td\n", aStage,
              getMB(aHeld.footprint.residentBytes), getMB(aHeld.serverBytes), aHeld.footprint.threads,
              aHeld.footprint.descriptors, aHeld.footprint.sharedSegments);
  std::fflush(stdout);
}

bool HasGrown(const Soak::Held& aBefore, const Soak::Held& aAfter) {
  return aAfter.footprint.residentBytes - aBefore.footprint.residentBytes > kMostGrowthBytes ||
         aAfter.serverBytes - aBefore.serverBytes > kMostServerGrowthBytes ||
         aAfter.footprint.descriptors > aBefore.footprint.descriptors ||
         aAfter.footprint.sharedSegments - aBefore.footprint.sharedSegments > kMostSegmentGrowth;
}

} // namespace

int main(int aArgumentCount, char** aArguments) {
  const QApplication application(aArgumentCount, aArguments);
  QApplication::setQuitOnLastWindowClosed(false);
  const bool isLong = aArgumentCount == 3 && std::strcmp(aArguments[1], "--minutes") == 0;
  const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(isLong ? std::atoi(aArguments[2]) : 0);
  const int steps = isLong ? kLongSteps : kShortSteps;

  Soak soak;
  const Soak::Held before = soak.RunStage(steps);
  Print("warm_up", before);
  Soak::Held after;
  for (int stage = 1; stage < kShortStages || std::chrono::steady_clock::now() < end; ++stage) {
    after = soak.RunStage(steps);
    Print(std::to_string(stage).c_str(), after);
  }

  const int faults = soak.CountFaults();
  if (HasGrown(before, after))
    std::fprintf(stderr, "soak: more is held than after the warm-up\n");
  return faults == 0 && !HasGrown(before, after) ? 0 : 1;
}
