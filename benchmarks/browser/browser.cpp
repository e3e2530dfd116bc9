// What does the feature browser cost? Filling it, one pass over the values, a page, scrolling, one key in the search
// field and memory, with the array's events and the browser's thread at work, beside a plain tree view whose model
// reads values when it is asked for data; and for how long the user-interface thread is kept. Run it on a display
// (scripts/bench.sh does).

#include "browserheartbeat.h"
#include "browserpasses.h"
#include "figure.h"

#include <QApplication>

#include <malloc.h>

namespace {

// What four times as many features take, of what four times the time would be.
void PrintGrowth(const benchmarks::BrowserTimes& aFew, const benchmarks::BrowserTimes& aMany) {
  constexpr double kTimesMore = 4;
  benchmarks::PrintFigure("browser_build_growth", aMany.buildMs / aFew.buildMs, "1", "linear", kTimesMore);
  benchmarks::PrintFigure("browser_automatic_pass_growth", aMany.passMs / aFew.passMs, "1", "linear", kTimesMore);
  benchmarks::PrintFigure("browser_search_key_growth", aMany.searchMs / aFew.searchMs, "1", "linear", kTimesMore);
}

} // namespace

int main(int aArgumentCount, char** aArguments) {
  // What other threads hold is counted as well.
  mallopt(M_ARENA_MAX, 1);
  const QApplication application(aArgumentCount, aArguments);
  QApplication::setQuitOnLastWindowClosed(false);
  benchmarks::BrowserTimes few;
  benchmarks::BrowserTimes some;
  benchmarks::BrowserTimes many;
  bool isMeasured = benchmarks::MeasureBrowserPasses(500, few);
  isMeasured = benchmarks::MeasureBrowserPasses(5000, some) && isMeasured;
  isMeasured = benchmarks::MeasureBrowserPasses(20'000, many) && isMeasured;
  if (isMeasured)
    PrintGrowth(some, many);
  return benchmarks::MeasureBrowserHeartbeat() && isMeasured ? 0 : 1;
}
