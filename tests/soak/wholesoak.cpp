// All windows of the library on a simulated lab, under a hand that does at random what users, cables and applications
// do: nothing grows, nothing hangs, no byte is lost, and nothing is logged but what belongs to cameras that go.
//
//   wholesoak [--minutes N] [--seed N] [--leak]
//
// A few steps without --minutes, as the tests run it; the seed of the last run is printed. --leak loses a little with
// each step, so that it can be seen that the soak tells. Ends with 1 when anything is not as it should be.

#include "deliberateleak.h"
#include "scene.h"
#include "soakhand.h"
#include "soakrecords.h"
#include "soakstation.h"
#include "watchdog.h"
#include "watchedfigures.h"
#include "xserver.h"

#include <QApplication>
#include <QCommandLineParser>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <random>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kShortStages = 9;
constexpr int kShortSteps = 8;
constexpr int kLongStages = 90;
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr std::chrono::seconds kStepLimit{600};
#else
constexpr std::chrono::seconds kStepLimit{120};
#endif

struct Options {
  std::chrono::minutes duration{0}; ///< 0 for a few steps.
  std::uint32_t seed = 0;
  bool isLeaking = false;
};

Options ReadOptions(const QApplication& aApplication) {
  QCommandLineParser parser;
  const QCommandLineOption minutes("minutes", "How long it takes.", "N", "0");
  const QCommandLineOption seed("seed", "What chance begins with.", "N", QString::number(std::random_device()()));
  const QCommandLineOption leak("leak", "Lose a little with each step.");
  parser.addOptions({minutes, seed, leak});
  parser.process(aApplication);
  return {.duration = std::chrono::minutes(parser.value(minutes).toInt()),
          .seed = parser.value(seed).toUInt(),
          .isLeaking = parser.isSet(leak)};
}

/// Steps, then a rest in which the figures are sampled; again and again.
class WholeSoak {
public:
  explicit WholeSoak(const Options& aOptions) : mOptions(aOptions) {}

  void Run() {
    const Clock::time_point begin = Clock::now();
    const Clock::duration stage = Clock::duration(mOptions.duration) / kLongStages;
    for (int stages = 0; stages < kShortStages || Clock::now() < begin + mOptions.duration; ++stages) {
      RunStage(Clock::now() + stage);
      mWatchdog.Begin("coming to rest");
      mStation.Rest();
      mRecords.Take();
      const std::chrono::duration<double> passed = Clock::now() - begin;
      char text[64];
      std::snprintf(text, sizeof text, "stage=%d seconds=%.0f steps=%d", stages, passed.count(), mSteps);
      mFigures.Sample(text);
      mStation.GoOn();
    }
  }

  bool Report() {
    mWatchdog.Begin("the report");
    mRecords.Take();
    std::printf("records_expected=%d message_boxes=%d unexpected=%d\n", mRecords.GetExpected(), mRecords.GetBoxes(),
                mRecords.GetUnexpected());
    const bool isWhole = mStation.ReportTraffic();
    return mFigures.AreFlat() && isWhole && mRecords.GetUnexpected() == 0;
  }

  const char* GetStep() const { return mWatchdog.GetStep(); }

private:
  /// Until its end, but some steps at least.
  void RunStage(Clock::time_point aEnd) {
    for (int steps = 0; steps < kShortSteps || Clock::now() < aEnd; ++steps, ++mSteps) {
      mHand.Step();
      if (mOptions.isLeaking)
        LeakALittle();
    }
  }

  const Options mOptions;
  Watchdog mWatchdog{kStepLimit};
  SoakRecords mRecords;
  SoakStation mStation{mOptions.seed};
  SoakHand mHand{mStation, mRecords, mWatchdog, mOptions.seed};
  WatchedFigures mFigures{FindXServer()};
  int mSteps = 0;
};

} // namespace

int main(int aArgumentCount, char** aArguments) {
  const TemporaryFolder settings; // Those of whoever runs it are neither read nor changed.
  ::setenv("XDG_CONFIG_HOME", settings.GetPath().c_str(), 1);
  const QApplication application(aArgumentCount, aArguments);
  QApplication::setQuitOnLastWindowClosed(false);
  const Options options = ReadOptions(application);
  std::printf("seed=%u minutes=%lld\n", options.seed, static_cast<long long>(options.duration.count()));
  try {
    InstallSoakLab();
    WholeSoak soak(options);
    try {
      soak.Run();
    } catch (const std::exception& error) {
      std::printf("failed in the step: %s: %s\n", soak.GetStep(), error.what());
      std::fflush(stdout);
      std::_Exit(1); // What is under way cannot be ended any more.
    }
    return soak.Report() ? 0 : 1;
  } catch (const std::exception& error) {
    std::printf("failed: %s\n", error.what());
    return 1;
  }
}
