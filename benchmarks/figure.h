#pragma once
// How a benchmark prints what it measured: one line per figure, with its peer measured in the same run.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <limits>

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

} // namespace benchmarks
