#include "recording/recordingtexts.h"

#include <gtest/gtest.h>

using namespace krviewer;

namespace {

RecordingProgress MakeProgress(RecordingState aState, RecordingEnd aEnd = RecordingEnd::None) {
  RecordingProgress progress;
  progress.state = aState;
  progress.end = aEnd;
  progress.elapsedMs = 12'340;
  return progress;
}

} // namespace

TEST(RecordingTexts, Bytes_HaveTheLargestUnitThatFits) {
  EXPECT_EQ(FormatBytes(0), "0 bytes");
  EXPECT_EQ(FormatBytes(999), "999 bytes");
  EXPECT_EQ(FormatBytes(1000), "1.0 kB");
  EXPECT_EQ(FormatBytes(245'800'000), "245.8 MB");
  EXPECT_EQ(FormatBytes(1'500'000'000), "1.5 GB");
  EXPECT_EQ(FormatBytes(2'000'000'000'000), "2.0 TB");
}

TEST(RecordingTexts, State_SaysWhetherTheCameraStreams) {
  RecordingProgress progress = MakeProgress(RecordingState::Recording);
  EXPECT_EQ(DescribeState(progress), "Recording for 12.3 s.");

  progress.isFed = false;

  EXPECT_EQ(DescribeState(progress),
            "Recording for 12.3 s: the camera does not stream, and its next frames are awaited.");
}

TEST(RecordingTexts, State_SaysWhatIsStillToBeWritten) {
  RecordingProgress progress = MakeProgress(RecordingState::Finishing, RecordingEnd::Stopped);
  progress.queuedFrames = 1;

  EXPECT_EQ(DescribeState(progress), "Writing what is in memory: 1 frame.");
}

TEST(RecordingTexts, EachEnd_HasWordsOfItsOwn) {
  EXPECT_EQ(DescribeState(MakeProgress(RecordingState::Idle)), "");
  EXPECT_EQ(DescribeState(MakeProgress(RecordingState::Ended, RecordingEnd::Stopped)), "Stopped.");
  EXPECT_EQ(DescribeState(MakeProgress(RecordingState::Ended, RecordingEnd::TimeLimit)), "Ended: the time was over.");
  RecordingProgress failed = MakeProgress(RecordingState::Ended, RecordingEnd::Failed);
  failed.result = {KrResult::Code::SystemError, "The disk is full."};
  EXPECT_EQ(DescribeState(failed), "Failed: The disk is full.");
}

TEST(RecordingTexts, FullDisk_IsNoReserveWhereNoneWasAskedFor) {
  RecordingProgress progress;
  progress.state = RecordingState::Ended;
  progress.end = RecordingEnd::DiskReserve;
  EXPECT_NE(DescribeState(progress).find("is to stay free"), std::string::npos);

  progress.keepsDiskFree = false;

  EXPECT_EQ(DescribeState(progress), "Ended: the disk is full. Free some of it, or record elsewhere.");
}

TEST(RecordingTexts, FrameLeftInMemory_IsToldOfOneAsOfMany) {
  RecordingProgress progress;
  progress.counts.abandoned = 1;
  EXPECT_EQ(DescribeLosses(progress), "1 frame given up while in memory at the end.");
}

TEST(RecordingTexts, Losses_AreToldEachWithItsReason) {
  RecordingProgress progress = MakeProgress(RecordingState::Recording);
  EXPECT_EQ(DescribeLosses(progress), "No frame was lost.");
  EXPECT_FALSE(HasLosses(progress.counts));
  progress.counts.incomplete = 2;
  progress.counts.failed = 1;
  progress.frameFailure = {KrResult::Code::NotSupported, "It is no image."};

  EXPECT_EQ(DescribeLosses(progress),
            "2 frames left out: a part never came.\n1 frame could not be written: It is no image.");
  EXPECT_TRUE(HasLosses(progress.counts));
}

TEST(RecordingTexts, FramesPassedOverByChoice_AreNoLoss) {
  RecordingProgress progress = MakeProgress(RecordingState::Recording);
  progress.counts.passedOver = 3;

  EXPECT_FALSE(HasLosses(progress.counts));
  EXPECT_EQ(DescribeLosses(progress), "No frame was lost.\n3 frames passed over, as asked.");
}

TEST(RecordingTexts, RecordingThatCouldNotBegin_SaysNothingOfFrames) {
  EXPECT_EQ(DescribeLosses(MakeProgress(RecordingState::Ended, RecordingEnd::Failed)), "");
}

TEST(RecordingTexts, RecordingThatReachedALimit_HasNotFailed) {
  for (const RecordingEnd end :
       {RecordingEnd::Stopped, RecordingEnd::FrameLimit, RecordingEnd::TimeLimit, RecordingEnd::DiskBudget}) {
    RecordingProgress progress = MakeProgress(RecordingState::Ended, end);
    progress.counts.queueFull = progress.counts.abandoned = 1;
    EXPECT_FALSE(HasFailed(progress)) << DescribeState(progress);

    progress.counts.failed = 1;

    EXPECT_TRUE(HasFailed(progress)) << DescribeState(progress);
  }
}

TEST(RecordingTexts, RecordingThatTheDiskHadNoRoomFor_HasFailed) {
  EXPECT_TRUE(HasFailed(MakeProgress(RecordingState::Ended, RecordingEnd::DiskReserve)));
  EXPECT_TRUE(HasFailed(MakeProgress(RecordingState::Ended, RecordingEnd::Failed)));
}
