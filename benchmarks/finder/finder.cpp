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
  bool isMeasured = true;
  for (const std::size_t devices : {10, 100, 1000})
    isMeasured = benchmarks::MeasureFinderPasses(devices) && isMeasured;
  isMeasured = benchmarks::MeasureHeartbeat() && isMeasured;
  isMeasured = benchmarks::MeasureClosing() && isMeasured;
  isMeasured = benchmarks::MeasureFirstDevice() && isMeasured;
  return isMeasured ? 0 : 1;
}
