// What does the device finder cost? The passes over its tree, with devices that only answer, beside a tree that is
// filled plainly; what it keeps the user-interface thread from; how fast it opens, shows a device and closes. Run it on
// a display and in a network namespace (scripts/bench.sh does).

#include "finderpasses.h"
#include "finderwindow.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int aArgumentCount, char** aArguments) {
  testing::InitGoogleTest(&aArgumentCount, aArguments); // The network and the camera report their failures by it.
  const QApplication application(aArgumentCount, aArguments);
  QApplication::setQuitOnLastWindowClosed(false);
  benchmarks::MeasureFinderPasses(10);
  const benchmarks::FinderCosts few = benchmarks::MeasureFinderPasses(100);
  const benchmarks::FinderCosts many = benchmarks::MeasureFinderPasses(1000);
  benchmarks::PrintFinderGrowth(few, many);
  benchmarks::MeasureHeartbeat();
  benchmarks::MeasureClosing();
  benchmarks::MeasureFirstDevice();
  return 0;
}
