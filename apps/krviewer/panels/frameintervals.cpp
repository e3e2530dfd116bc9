#include "panels/frameintervals.h"

#include <algorithm>
#include <utility>

namespace krviewer {

namespace {

constexpr std::uint64_t kSecondNs = 1'000'000'000;
/// As many as a plot has pixels or so.
constexpr std::uint64_t kStepsOfSpan = 600;

IntervalHistory MakeHistory(std::uint64_t aSeconds) {
  return {aSeconds * kSecondNs, aSeconds * kSecondNs / kStepsOfSpan};
}

} // namespace

FrameIntervals::FrameIntervals() : mHistories{MakeHistory(10), MakeHistory(60), MakeHistory(600)} {}

void FrameIntervals::OnFrame(const KrBuffer& aFrame, std::uint64_t aArrivalNs) {
  const std::lock_guard lock(mMutex);
  mIsRunning = true;
  mHasStarted = true;
  const LastFrame frame{aArrivalNs, aFrame.GetTimestampNs()};
  const std::optional<LastFrame> last = std::exchange(mLast, frame);
  mLastNs = std::max(mLastNs, aArrivalNs);
  const LossCounts losses{.frames = 1,
                          .incomplete = aFrame.GetStatus() == KrBufferStatus::Complete ? 0u : 1u,
                          .missing = mNumbers.Follow(aFrame.GetFrameID())};
  for (IntervalHistory& history : mHistories) {
    IntervalStep& step = history.At(aArrivalNs);
    step.losses += losses;
    if (last && frame.arrivalNs >= last->arrivalNs)
      step.arrivals.Add(static_cast<double>(frame.arrivalNs - last->arrivalNs));
    if (last && last->timestampNs > 0 && frame.timestampNs > last->timestampNs)
      step.camera.Add(static_cast<double>(frame.timestampNs - last->timestampNs));
  }
}

void FrameIntervals::OnAcquisitionStarted() {
  const std::lock_guard lock(mMutex);
  mIsRunning = true;
  mHasStarted = true;
  mReason = {};
  mLast.reset();
  mNumbers.Restart();
}

void FrameIntervals::OnAcquisitionEnded(const KrResult& aReason) {
  const std::lock_guard lock(mMutex);
  mIsRunning = false;
  mReason = aReason;
  mLast.reset();
  mNumbers.Restart();
}

void FrameIntervals::AddDiscarded(const KrStreamStatistics& aStatistics, std::uint64_t aNowNs) {
  const std::lock_guard lock(mMutex);
  if (mIsRunning)
    mLastNs = std::max(mLastNs, aNowNs);
  const std::uint64_t before = std::exchange(mDiscarded, aStatistics.discarded).value_or(aStatistics.discarded);
  if (aStatistics.discarded <= before)
    return;
  mLastNs = std::max(mLastNs, aNowNs);
  mHasStarted = true;
  for (IntervalHistory& history : mHistories)
    history.At(aNowNs).losses.discarded += aStatistics.discarded - before;
}

void FrameIntervals::Reset() {
  const std::lock_guard lock(mMutex);
  for (IntervalHistory& history : mHistories)
    history.Clear();
}

IntervalView FrameIntervals::GetView(IntervalSpan aSpan, std::uint64_t aNowNs) const {
  IntervalView view;
  const std::lock_guard lock(mMutex);
  const IntervalHistory& history = mHistories[static_cast<std::size_t>(aSpan)];
  view.spanNs = history.GetSpanNs();
  view.stepNs = history.GetStepNs();
  // What has stopped stands still rather than moving out of sight.
  view.endNs = mIsRunning ? std::max(aNowNs, mLastNs) : mLastNs;
  view.steps = history.Get(view.endNs);
  for (const IntervalStep& step : view.steps) {
    view.arrivals.Add(step.arrivals);
    view.camera.Add(step.camera);
    view.losses += step.losses;
  }
  view.isRunning = mIsRunning;
  view.hasStarted = mHasStarted;
  view.reason = mReason;
  return view;
}

} // namespace krviewer
