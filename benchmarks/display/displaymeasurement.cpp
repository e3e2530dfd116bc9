#include "displaymeasurement.h"

#include "displayscreen.h"
#include "failing.h"
#include "statistics.h"
#include "timing.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace benchmarks {

namespace {

constexpr int kRuns = 12;
constexpr std::size_t kFramesPerRun = 3 * FrameRing::kCount;

/// Looks at the place where the number of a frame is.
class FrameFinder {
public:
  explicit FrameFinder(const DisplayScreen& aScreen) : mScreen(aScreen) {}

  /// Waits until a frame is on the screen; ends the process when it is not within a limit that only a fault reaches.
  void Require(std::size_t aFrame) {
    const std::uint32_t grey = FrameRing::GetShade(aFrame) * 0x010101U;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(3);
    while (!mMiddle || mScreen.ReadPixel(*mMiddle) != grey) {
      if (!mIsSettled)
        mMiddle = mScreen.FindMiddle();
      if (std::chrono::steady_clock::now() > end)
        Fail("frame " + std::to_string(aFrame) + " is not on the screen.");
      std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
  }
  /// The window stays where it is from now on, so that looking costs one request.
  void Settle() { mIsSettled = true; }

private:
  const DisplayScreen& mScreen;
  std::optional<ScreenPoint> mMiddle;
  bool mIsSettled = false;
};

/// What was counted once all given frames are, or nothing more is: who counts may do so just after the screen shows it.
std::uint64_t AwaitCount(const FrameShower& aShower, std::size_t aGiven) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(100);
  while (aShower.GetShown() < aGiven && std::chrono::steady_clock::now() < end)
    std::this_thread::sleep_for(std::chrono::microseconds(200));
  return aShower.GetShown();
}

} // namespace

DisplayCase TakeCase(int aArgumentCount, char** aArguments) {
  const std::optional<DisplayCase> displayCase =
      ParseDisplayCase({aArguments + std::min(1, aArgumentCount), aArguments + std::min(4, aArgumentCount)});
  if (!displayCase) {
    std::fprintf(stderr, "usage: %s FORMAT SOURCE WINDOW, for example Mono8 640x480 1280x960\n", aArguments[0]);
    std::exit(64);
  }
  return *displayCase;
}

void MeasureAndPrint(FrameShower& aShower) {
  const DisplayScreen screen;
  FrameFinder finder(screen);
  std::size_t frame = 0;
  for (; frame < 2 * FrameRing::kCount; ++frame) {
    aShower.Show(frame);
    finder.Require(frame);
  }
  finder.Settle();

  std::vector<double> cpuMs;
  std::vector<double> perSecond;
  for (int run = 0; run < kRuns; ++run) {
    const std::uint64_t shownBefore = AwaitCount(aShower, frame);
    const double cpuBefore = GetProcessMs() + screen.GetServerMs();
    const auto begin = std::chrono::steady_clock::now();
    for (std::size_t i = 0; i < kFramesPerRun; ++i)
      aShower.Show(frame++);
    // The frames that are still on their way belong to the run.
    finder.Require(frame - 1);
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - begin;
    const double cpu = GetProcessMs() + screen.GetServerMs() - cpuBefore;
    const auto shown = static_cast<double>(AwaitCount(aShower, frame) - shownBefore);
    if (shown < 1 || shown > static_cast<double>(kFramesPerRun))
      Fail(std::to_string(shown) + " frames of " + std::to_string(kFramesPerRun) + " were shown.");
    cpuMs.push_back(cpu / shown);
    perSecond.push_back(shown / time.count());
  }
  std::printf("%.6g %.6g\n", GetMedian(cpuMs), GetMedian(perSecond));
  std::fflush(stdout);
}

} // namespace benchmarks
