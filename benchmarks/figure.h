#pragma once
// How a benchmark prints what it measured: one line per figure, with its peer measured in the same run.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <limits>
#include <utility>

namespace benchmarks {

inline void PrintFigure(const char* aName, double aValue, const char* aUnit, const char* aPeer, double aPeerValue) {
  std::printf("figure=%s value=%.4g unit=%s peer=%s peer_value=%.4g ratio=%.3f\n", aName, aValue, aUnit, aPeer,
              aPeerValue, aPeerValue != 0 ? aValue / aPeerValue : 0.0);
  std::fflush(stdout);
}

/// The best time of several runs, in milliseconds: what the machine can do when nothing else disturbs it.
template <typename Work>
double MeasureBestMs(int aRuns, const Work& aWork) {
  double best = std::numeric_limits<double>::max();
  for (int i = 0; i < aRuns; ++i) {
    const auto begin = std::chrono::steady_clock::now();
    aWork();
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - begin;
    best = std::min(best, time.count());
  }
  return best;
}

/// The same in processor time of this thread, for work that waits for nobody: long runs are never undisturbed on a
/// machine that others use, and what they cost would look as if it grew.
template <typename Work>
double MeasureBestProcessorMs(int aRuns, const Work& aWork) {
  const auto getMs = [] {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
  };
  double best = std::numeric_limits<double>::max();
  for (int i = 0; i < aRuns; ++i) {
    const double begin = getMs();
    aWork();
    best = std::min(best, getMs() - begin);
  }
  return best;
}

/// Whose time is measured. Threads that share the work are measured by the clock on the wall; one thread by its own
/// time, in which nobody who uses the machine besides shows.
enum class Timing { Wall, Thread };

/// The best times of two pieces of work that take turns, in milliseconds: what disturbs one of them disturbs the other
/// one too. A turn has one run, or several of which the first one does not count, as it meets what the other one left
/// in the caches. Turns are taken for half a second, but at least five times.
template <typename First, typename Second>
std::pair<double, double> MeasureInTurnsMs(Timing aTiming, int aRunsPerTurn, const First& aFirst,
                                           const Second& aSecond) {
  constexpr int kLeastTurns = 5;
  constexpr double kEnoughMs = 500;
  const auto measure = [aTiming](int aRuns, const auto& aWork) {
    return aTiming == Timing::Wall ? MeasureBestMs(aRuns, aWork) : MeasureBestProcessorMs(aRuns, aWork);
  };
  const auto takeTurn = [&](const auto& aWork) {
    if (aRunsPerTurn == 1)
      return measure(1, aWork);
    aWork();
    return measure(aRunsPerTurn - 1, aWork);
  };
  std::pair best{std::numeric_limits<double>::max(), std::numeric_limits<double>::max()};
  double total = 0;
  for (int turn = 0; turn < kLeastTurns || total < kEnoughMs; ++turn) {
    const double first = takeTurn(aFirst);
    const double second = takeTurn(aSecond);
    best = {std::min(best.first, first), std::min(best.second, second)};
    total += aRunsPerTurn * (first + second);
  }
  return best;
}

} // namespace benchmarks
