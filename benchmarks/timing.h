#pragma once
// How long a piece of work takes, alone or in turns with another one.

#include <algorithm>
#include <chrono>
#include <ctime>
#include <limits>
#include <utility>

namespace benchmarks {

inline double GetClockMs(clockid_t aClock) {
  timespec time{};
  ::clock_gettime(aClock, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

/// The processor time of this thread so far.
inline double GetThreadMs() {
  return GetClockMs(CLOCK_THREAD_CPUTIME_ID);
}

/// The processor time of all threads of this process so far.
inline double GetProcessMs() {
  return GetClockMs(CLOCK_PROCESS_CPUTIME_ID);
}

/// Whose time is measured. Threads that share the work are measured by the clock on the wall; one thread by its own
/// time, in which nobody who uses the machine besides shows.
enum class Timing { Wall, Thread };

template <typename Work>
double MeasureMs(Timing aTiming, const Work& aWork) {
  const clockid_t clock = aTiming == Timing::Wall ? CLOCK_MONOTONIC : CLOCK_THREAD_CPUTIME_ID;
  const double begin = GetClockMs(clock);
  aWork();
  return GetClockMs(clock) - begin;
}

/// The best time of several runs, in milliseconds: what the machine can do when nothing else disturbs it.
template <typename Work>
double MeasureBestMs(Timing aTiming, int aRuns, const Work& aWork) {
  double best = std::numeric_limits<double>::max();
  for (int i = 0; i < aRuns; ++i)
    best = std::min(best, MeasureMs(aTiming, aWork));
  return best;
}

/// The best times of two pieces of work that take turns, in milliseconds: what disturbs one of them disturbs the other
/// one too. A turn has one run, or several of which the first one does not count, as it meets what the other one left
/// in the caches. Turns are taken for half a second, but at least five times.
template <typename First, typename Second>
std::pair<double, double> MeasureInTurnsMs(Timing aTiming, int aRunsPerTurn, const First& aFirst,
                                           const Second& aSecond) {
  constexpr int kLeastTurns = 5;
  constexpr double kEnoughMs = 500;
  const auto takeTurn = [&](const auto& aWork) {
    if (aRunsPerTurn == 1)
      return MeasureMs(aTiming, aWork);
    aWork();
    return MeasureBestMs(aTiming, aRunsPerTurn - 1, aWork);
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
