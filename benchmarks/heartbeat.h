#pragma once
// For how long the user-interface thread is kept: the largest gap of a heartbeat of a millisecond while its loop runs.

#include "timing.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <functional>

namespace benchmarks {

/// Runs the loop until a condition holds; false after the limit.
inline bool RunUntil(const std::function<bool()>& aCondition, qint64 aLimitMs) {
  QElapsedTimer passed;
  passed.start();
  QTimer wake; // The loop must not wait for events beyond the limit.
  wake.start(1);
  while (!aCondition() && passed.elapsed() < aLimitMs)
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  return aCondition();
}

/// The largest difference between two readings.
class LargestStep {
public:
  explicit LargestStep(double aFirst) : mLast(aFirst) {}
  void Take(double aReading) {
    mLargest = std::max(mLargest, aReading - mLast);
    mLast = aReading;
  }
  double Get() const { return mLargest; }

private:
  double mLast;
  double mLargest = 0;
};

struct Gaps {
  double wallMs = 0; ///< On the clock, where others who use the machine show too.
  double busyMs = 0; ///< In processor time of the thread.
};

/// Until a condition holds, which is asked after each pass of the loop.
inline Gaps MeasureLargestGaps(const std::function<bool()>& aIsOver) {
  QElapsedTimer clock;
  clock.start();
  LargestStep wall(0);
  LargestStep busy(GetThreadMs());
  QTimer heartbeat;
  heartbeat.setTimerType(Qt::PreciseTimer);
  QObject::connect(&heartbeat, &QTimer::timeout, [&] {
    wall.Take(static_cast<double>(clock.nsecsElapsed()) / 1e6);
    busy.Take(GetThreadMs());
  });
  heartbeat.start(1);
  while (!aIsOver())
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  return {wall.Get(), busy.Get()};
}

inline Gaps MeasureLargestGaps(qint64 aDurationMs) {
  QElapsedTimer clock;
  clock.start();
  return MeasureLargestGaps([&] { return clock.elapsed() >= aDurationMs; });
}

} // namespace benchmarks
