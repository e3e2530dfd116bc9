#include "panels/frameintervals.h"

#include "panels/intervaltable.h"
#include "temporaryfolder.h"

#include <gmock/gmock.h>

#include <sstream>
#include <string>
#include <vector>

using krviewer::FrameIntervals;
using krviewer::FrameNumbers;
using krviewer::IntervalHistory;
using krviewer::IntervalSpan;
using krviewer::IntervalSummary;
using krviewer::IntervalView;

namespace {

constexpr std::uint64_t kMillisecond = 1'000'000;
constexpr std::uint64_t kSecond = 1000 * kMillisecond;

KrBuffer MakeFrame(std::uint64_t aFrameID, std::uint64_t aTimestampNs = 0,
                   KrBufferStatus aStatus = KrBufferStatus::Complete) {
  KrBuffer frame;
  frame.SetFrameID(aFrameID);
  frame.SetTimestampNs(aTimestampNs);
  frame.SetStatus(aStatus);
  return frame;
}

std::vector<std::string> SplitLines(const std::string& aText) {
  std::vector<std::string> lines;
  std::istringstream stream(aText);
  for (std::string line; std::getline(stream, line);)
    lines.push_back(line);
  return lines;
}

} // namespace

TEST(FrameNumbers, NumbersOneAfterTheOther_MissNothing) {
  FrameNumbers numbers;
  for (std::uint64_t id = 5; id < 100; ++id)
    EXPECT_EQ(numbers.Follow(id), 0u);
}

TEST(FrameNumbers, Gap_IsAsManyAsWereSkipped) {
  FrameNumbers numbers;
  EXPECT_EQ(numbers.Follow(10), 0u);
  EXPECT_EQ(numbers.Follow(14), 3u);
  EXPECT_EQ(numbers.Follow(15), 0u);
}

TEST(FrameNumbers, StepFrom65535To1_MissesNothingButWhatIsBetween) {
  FrameNumbers numbers;
  numbers.Follow(65535);
  EXPECT_EQ(numbers.Follow(1), 0u);

  numbers.Restart();
  numbers.Follow(65533);
  EXPECT_EQ(numbers.Follow(3), 4u); // 65534, 65535, 1 and 2.
}

TEST(FrameNumbers, NumbersOf64Bits_GoOnBeyond65535) {
  FrameNumbers numbers;
  numbers.Follow(65535);
  EXPECT_EQ(numbers.Follow(65536), 0u);
  EXPECT_EQ(numbers.Follow(65540), 3u);
}

TEST(FrameNumbers, NewNumbering_MissesNothing) {
  for (const auto& [last, next] :
       {std::pair<std::uint64_t, std::uint64_t>{1000, 0}, {1000, 1}, {7, 7}, {3, 1u << 30}}) {
    FrameNumbers numbers;
    numbers.Follow(last);
    EXPECT_EQ(numbers.Follow(next), 0u) << last << " to " << next;
  }
}

TEST(IntervalSummary, Intervals_GiveTheirMeanAndDeviation) {
  IntervalSummary summary;
  for (const double interval : {2.0, 4.0, 4.0, 4.0, 5.0, 5.0, 7.0, 9.0})
    summary.Add(interval);

  EXPECT_EQ(summary.count, 8u);
  EXPECT_DOUBLE_EQ(summary.meanNs, 5.0);
  EXPECT_DOUBLE_EQ(summary.GetJitterNs(), 2.0);
  EXPECT_EQ(summary.leastNs, 2.0);
  EXPECT_EQ(summary.greatestNs, 9.0);
}

TEST(IntervalSummary, Parts_JoinToTheWhole) {
  IntervalSummary whole;
  IntervalSummary first;
  IntervalSummary second;
  for (int i = 0; i < 100; ++i) {
    const double interval = 1e12 + i * i % 37; // Large numbers must not swallow the small differences.
    whole.Add(interval);
    (i < 30 ? first : second).Add(interval);
  }

  IntervalSummary joined;
  joined.Add(IntervalSummary());
  joined.Add(first);
  joined.Add(second);

  EXPECT_EQ(joined.count, 100u);
  EXPECT_NEAR(joined.meanNs, whole.meanNs, 1e-3);
  EXPECT_NEAR(joined.GetJitterNs(), whole.GetJitterNs(), 1e-3);
}

TEST(IntervalHistory, TimeThatPassed_IsForgottenAndMemoryStays) {
  IntervalHistory history(100, 10);
  for (std::uint64_t time = 0; time < 1000; time += 5)
    ++history.At(time).losses.frames;

  const auto steps = history.Get(999);

  ASSERT_EQ(steps.size(), 11u);
  EXPECT_EQ(steps.front().index, 89u);
  EXPECT_EQ(steps.back().index, 99u);
  for (const auto& step : steps)
    EXPECT_EQ(step.losses.frames, 2u);
  EXPECT_EQ(history.Get(1049).size(), 6u);
  EXPECT_TRUE(history.Get(5000).empty());
}

TEST(IntervalHistory, StepsWithoutAnything_AreNotThere) {
  IntervalHistory history(100, 10);
  history.At(0);
  history.At(57);

  const auto steps = history.Get(60);

  ASSERT_EQ(steps.size(), 2u);
  EXPECT_EQ(steps[1].index, 5u);
}

TEST(IntervalHistory, TimeThatGoesBack_CountsAsTheLastOne) {
  IntervalHistory history(100, 10);
  history.At(500).losses.frames = 1;

  EXPECT_EQ(history.At(20).losses.frames, 1u);
}

TEST(FrameIntervals, BothClocks_AreMeasuredApart) {
  FrameIntervals intervals;
  intervals.OnFrame(MakeFrame(1, 1000 * kMillisecond), 10 * kSecond);
  intervals.OnFrame(MakeFrame(2, 1020 * kMillisecond), 10 * kSecond + 25 * kMillisecond);
  intervals.OnFrame(MakeFrame(3, 1040 * kMillisecond), 10 * kSecond + 40 * kMillisecond);

  const IntervalView view = intervals.GetView(IntervalSpan::TenSeconds, 10 * kSecond + 50 * kMillisecond);

  EXPECT_EQ(view.losses.frames, 3u);
  EXPECT_EQ(view.arrivals.count, 2u);
  EXPECT_DOUBLE_EQ(view.arrivals.leastNs, 15.0 * kMillisecond);
  EXPECT_DOUBLE_EQ(view.arrivals.greatestNs, 25.0 * kMillisecond);
  EXPECT_DOUBLE_EQ(view.arrivals.meanNs, 20.0 * kMillisecond);
  EXPECT_DOUBLE_EQ(view.arrivals.GetJitterNs(), 5.0 * kMillisecond);
  EXPECT_EQ(view.camera.count, 2u);
  EXPECT_DOUBLE_EQ(view.camera.GetJitterNs(), 0.0);
  EXPECT_FALSE(view.losses.HasLosses());
}

TEST(FrameIntervals, CameraWithoutTimeStamps_HasNoIntervalsByThem) {
  FrameIntervals intervals;
  intervals.OnFrame(MakeFrame(1), kSecond);
  intervals.OnFrame(MakeFrame(2), 2 * kSecond);

  EXPECT_EQ(intervals.GetView(IntervalSpan::Minute, 2 * kSecond).camera.count, 0u);
}

TEST(FrameIntervals, Losses_StandWhereTheyWereFound) {
  FrameIntervals intervals;
  intervals.OnFrame(MakeFrame(1), kSecond);
  intervals.OnFrame(MakeFrame(5), 3 * kSecond);
  intervals.OnFrame(MakeFrame(6, 0, KrBufferStatus::Incomplete), 5 * kSecond);
  intervals.AddDiscarded({.discarded = 10}, 5 * kSecond); // What was before is not of this time.
  intervals.AddDiscarded({.discarded = 12}, 7 * kSecond);

  const IntervalView view = intervals.GetView(IntervalSpan::TenSeconds, 8 * kSecond);

  EXPECT_EQ(view.losses.missing, 3u);
  EXPECT_EQ(view.losses.incomplete, 1u);
  EXPECT_EQ(view.losses.discarded, 2u);
  ASSERT_EQ(view.steps.size(), 4u);
  EXPECT_EQ(view.steps[1].losses.missing, 3u);
  EXPECT_EQ(view.steps[1].index * view.stepNs / kMillisecond / 100, 29u); // A step has a little less than 17 ms.
  EXPECT_EQ(view.steps[2].losses.incomplete, 1u);
  EXPECT_EQ(view.steps[3].losses.discarded, 2u);
}

TEST(FrameIntervals, CountersOfAnotherStream_AreNoLosses) {
  FrameIntervals intervals;
  intervals.AddDiscarded({.discarded = 12}, kSecond);
  intervals.AddDiscarded({.discarded = 0}, 2 * kSecond);
  intervals.AddDiscarded({.discarded = 1}, 3 * kSecond);

  EXPECT_EQ(intervals.GetView(IntervalSpan::Minute, 3 * kSecond).losses.discarded, 1u);
}

TEST(FrameIntervals, PauseBetweenAcquisitions_IsNoInterval) {
  FrameIntervals intervals;
  intervals.OnAcquisitionStarted();
  intervals.OnFrame(MakeFrame(100, kSecond), kSecond);
  intervals.OnAcquisitionEnded({});
  intervals.OnAcquisitionStarted();
  intervals.OnFrame(MakeFrame(300, 9 * kSecond), 9 * kSecond);

  const IntervalView view = intervals.GetView(IntervalSpan::TenSeconds, 9 * kSecond);

  EXPECT_EQ(view.arrivals.count, 0u);
  EXPECT_EQ(view.camera.count, 0u);
  EXPECT_EQ(view.losses.missing, 0u);
  EXPECT_EQ(view.losses.frames, 2u);
}

TEST(FrameIntervals, StoppedAcquisition_StandsStillAndSaysWhy) {
  FrameIntervals intervals;
  EXPECT_FALSE(intervals.GetView(IntervalSpan::TenSeconds, kSecond).hasStarted);
  intervals.OnAcquisitionStarted();
  intervals.OnFrame(MakeFrame(1), 2 * kSecond);
  EXPECT_TRUE(intervals.GetView(IntervalSpan::TenSeconds, 3 * kSecond).isRunning);

  intervals.OnAcquisitionEnded({KrResult::Code::ConnectionLost, "The cable was pulled."});

  const IntervalView view = intervals.GetView(IntervalSpan::TenSeconds, 500 * kSecond);
  EXPECT_TRUE(view.hasStarted);
  EXPECT_FALSE(view.isRunning);
  EXPECT_EQ(view.reason.GetDescription(), KrString("The cable was pulled."));
  EXPECT_EQ(view.endNs, 2 * kSecond);
  EXPECT_EQ(view.losses.frames, 1u);
}

TEST(FrameIntervals, RunningAcquisitionWithoutFrames_MovesOutOfSight) {
  FrameIntervals intervals;
  intervals.OnFrame(MakeFrame(1), 2 * kSecond);

  EXPECT_EQ(intervals.GetView(IntervalSpan::TenSeconds, 30 * kSecond).losses.frames, 0u);
  EXPECT_EQ(intervals.GetView(IntervalSpan::Minute, 30 * kSecond).losses.frames, 1u);
}

TEST(FrameIntervals, Reset_ForgetsThePastAndGoesOn) {
  FrameIntervals intervals;
  intervals.OnFrame(MakeFrame(1), kSecond);
  intervals.OnFrame(MakeFrame(5), 2 * kSecond);

  intervals.Reset();

  EXPECT_TRUE(intervals.GetView(IntervalSpan::TenMinutes, 2 * kSecond).steps.empty());
  intervals.OnFrame(MakeFrame(6), 3 * kSecond);
  const IntervalView view = intervals.GetView(IntervalSpan::TenMinutes, 3 * kSecond);
  EXPECT_EQ(view.losses.frames, 1u);
  EXPECT_EQ(view.losses.missing, 0u);
  EXPECT_EQ(view.arrivals.count, 1u);
}

TEST(FrameIntervals, TenMinutesOfFastFrames_StayWithinTheSteps) {
  FrameIntervals intervals;
  for (std::uint64_t i = 0; i < 20'000; ++i)
    intervals.OnFrame(MakeFrame(i), i * 40 * kMillisecond);

  const IntervalView view = intervals.GetView(IntervalSpan::TenMinutes, 19'999 * 40 * kMillisecond);

  EXPECT_LE(view.steps.size(), 601u);
  EXPECT_GE(view.losses.frames, 15'000u);
  EXPECT_DOUBLE_EQ(view.arrivals.meanNs, 40.0 * kMillisecond);
}

TEST(IntervalTable, Steps_AreLinesUnderTheirNames) {
  FrameIntervals intervals;
  intervals.OnFrame(MakeFrame(1, kSecond), 600 * kSecond);
  intervals.OnFrame(MakeFrame(4, 2 * kSecond), 601 * kSecond + kMillisecond);
  const IntervalView view = intervals.GetView(IntervalSpan::Minute, 603 * kSecond);

  const std::vector<std::string> lines = SplitLines(FormatIntervalTable(view));

  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[0], "seconds,frames,arrival_min_ms,arrival_mean_ms,arrival_max_ms,camera_min_ms,camera_mean_ms,"
                      "camera_max_ms,incomplete,missing,discarded");
  EXPECT_EQ(lines[1], "-3.000000,1,,,,,,,0,0,0");
  EXPECT_EQ(lines[2], "-2.000000,1,1001.000000,1001.000000,1001.000000,1000.000000,1000.000000,1000.000000,0,2,0");
}

TEST(IntervalTable, File_HoldsTheTable) {
  const TemporaryFolder folder;
  FrameIntervals intervals;
  intervals.OnFrame(MakeFrame(1), kSecond);
  const IntervalView view = intervals.GetView(IntervalSpan::Minute, kSecond);

  ASSERT_TRUE(SaveIntervalTable(folder.GetFile("table.csv"), view).IsOK());

  EXPECT_EQ(TemporaryFolder::ReadFile(folder.GetFile("table.csv")), FormatIntervalTable(view));
}

TEST(IntervalTable, FolderThatIsNotThere_IsSaid) {
  const TemporaryFolder folder;

  const KrResult result = SaveIntervalTable(folder.GetFile("none/table.csv"), IntervalView());

  EXPECT_EQ(result.GetCode(), KrResult::Code::NotFound);
}

TEST(FrameIntervals, StoppedLongAfterTheLastFrame_EndsWhenItWasStopped) {
  FrameIntervals intervals;
  intervals.OnAcquisitionStarted();
  intervals.OnFrame(MakeFrame(1), kSecond);
  intervals.AddDiscarded({}, 6 * kSecond);

  intervals.OnAcquisitionEnded({});
  intervals.AddDiscarded({}, 9 * kSecond);

  EXPECT_EQ(intervals.GetView(krviewer::IntervalSpan::TenSeconds, 9 * kSecond).endNs, 6 * kSecond);
}
