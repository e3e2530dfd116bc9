#include "closings.h"

#include "busywindows.h"
#include "figure.h"
#include "heartbeat.h"
#include "scene.h"

#include <algorithm>
#include <chrono>
#include <string>

namespace benchmarks {

namespace {

using Clock = std::chrono::steady_clock;

constexpr double kRegisterTimeoutMs = 1000; // As parameter arrays have it unless they are told otherwise.
constexpr int kClosings = 10;

double MeasureClosing(const krtest::BusyWindowCase& aCase, qint64 aDelayMs) {
  const std::unique_ptr<krtest::BusyWindow> window = aCase.make();
  Clock::time_point begin;
  window->Run([&] {
    RunUntil([] { return false; }, aDelayMs);
    begin = Clock::now();
    scene::Require(window->Close());
  });
  return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

} // namespace

void MeasureClosings() {
  for (const krtest::BusyWindowCase& each : krtest::GetBusyWindows()) {
    double worstMs = 0;
    for (int closing = 0; closing < kClosings; ++closing)
      worstMs = std::max(worstMs, MeasureClosing(each, static_cast<qint64>(kRegisterTimeoutMs) * closing / kClosings));
    PrintFigure({std::string("close_") + each.name + "_worst",
                 worstMs,
                 "ms",
                 {},
                 Limit{"register_timeout", kRegisterTimeoutMs}});
  }
}

} // namespace benchmarks
