// How long does each window take to open on the lab, and to close while its threads are busy? Run it on a display
// (scripts/bench.sh does).
//
//   bench_windows            all of them; each first opening in a process of its own
//   bench_windows NAME       the first opening of one window in this process

#include "closings.h"
#include "krtransport/krtransport.h"
#include "openings.h"

#include <QApplication>
#include <QProcess>

#include <cstdio>

namespace {

bool MeasureFirstOpenings(const char* aProgram) {
  bool isMeasured = true;
  for (const char* const name : benchmarks::GetOpeningNames())
    isMeasured = QProcess::execute(aProgram, {name}) == 0 && isMeasured;
  return isMeasured;
}

} // namespace

int main(int aArgumentCount, char** aArguments) {
  const QApplication application(aArgumentCount, aArguments);
  QApplication::setQuitOnLastWindowClosed(false);
  if (!KrInstallTransports({.gigEVision = false, .usb3Vision = false, .simulation = true}).IsOK())
    return 1;
  try {
    if (aArgumentCount > 1)
      return benchmarks::MeasureFirstOpening(aArguments[1]) ? 0 : 1;
    const bool isMeasured = MeasureFirstOpenings(aArguments[0]);
    benchmarks::MeasureOpenings();
    benchmarks::MeasureClosings();
    return isMeasured ? 0 : 1;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
