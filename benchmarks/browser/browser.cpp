// What does the feature browser cost? Filling it, one pass over the values, a page, scrolling, one key in the search
// field and memory, with the array's events and the browser's thread at work, beside a plain tree view whose model
// reads values when it is asked for data; and for how long the user-interface thread is kept. Both take turns. Run it
// on a display (scripts/bench.sh does).

#include "browserheartbeat.h"
#include "browserpasses.h"

#include <QApplication>

#include <malloc.h>

int main(int aArgumentCount, char** aArguments) {
  // What other threads hold is counted as well.
  mallopt(M_ARENA_MAX, 1);
  const QApplication application(aArgumentCount, aArguments);
  QApplication::setQuitOnLastWindowClosed(false);
  benchmarks::MeasureBrowserPasses(500);
  const benchmarks::BrowserCosts few = benchmarks::MeasureBrowserPasses(5000);
  const benchmarks::BrowserCosts many = benchmarks::MeasureBrowserPasses(20'000);
  benchmarks::PrintBrowserGrowth(few, many);
  benchmarks::MeasureBrowserHeartbeat();
  return 0;
}
