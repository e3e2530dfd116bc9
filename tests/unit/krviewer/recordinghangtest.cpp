// Recordings on a disk that stops answering: nobody has to wait for it.

#include "await.h"
#include "hangingdisk.h"
#include "recording/recordingtexts.h"
#include "recordings.h"

#include <gmock/gmock.h>

#include <optional>

using namespace krviewer;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class RecordingOnAHangingDisk : public RecorderTest {
protected:
  /// Starts a recording whose thread is on the disk.
  void StartOnDisk(Recorder& aRecorder, const RecordingOptions& aOptions) {
    std::thread([&] {
      ASSERT_TRUE(mDisk.Enter());
      EXPECT_TRUE(aRecorder.Start(aOptions).IsOK());
    }).join();
  }
  bool AwaitHanging() {
    return krtest::Await([this] { return mDisk.CountWaiting() == 1; });
  }
  /// Starts a recording that has written one frame.
  void WriteTheFirstFrame(const RecordingOptions& aOptions) {
    StartOnDisk(mRecorder, aOptions);
    Give(1, 1);
    ASSERT_TRUE(krtest::Await([this] { return mRecorder.GetProgress().counts.written == 1; }));
  }
  /// The same, whose disk hangs with the second of four.
  void HangBehindTheFirstFrame(const RecordingOptions& aOptions) {
    ASSERT_NO_FATAL_FAILURE(WriteTheFirstFrame(aOptions));
    mDisk.Hang();
    Give(2, 4);
    ASSERT_TRUE(AwaitHanging());
  }
  /// Lets the disk answer, and waits for the end of the thread that was left there.
  void RecoverAndAwaitThread() {
    mDisk.Recover();
    EXPECT_TRUE(krtest::Await([this] { return HangingDisk::CountThreads() <= mThreads; }));
  }

  HangingDisk mDisk{mPlace.GetPath().string()};
  const std::size_t mThreads = HangingDisk::CountThreads(); ///< Without a recorder's.
};

} // namespace

TEST_F(RecordingOnAHangingDisk, GivenUp_IsStillBusyAndEndsWhenTheDiskAnswers) {
  const RecordingOptions options = MakeOptions();
  ASSERT_NO_FATAL_FAILURE(HangBehindTheFirstFrame(options));

  mRecorder.GiveUp();
  EXPECT_TRUE(mRecorder.IsBusy());
  EXPECT_EQ(mRecorder.GetProgress().counts.abandoned, 2U);

  mDisk.Recover();
  const RecordingProgress progress = AwaitEnd();
  EXPECT_EQ(progress.end, RecordingEnd::Stopped);
  EXPECT_THAT(ReadColumn(options.folder, "frame_id"), ElementsAre("1", "2"));
}

TEST_F(RecordingOnAHangingDisk, StoppedWhileItWritesTheLastOfItsFrames_IsWhole) {
  RecordingOptions options = MakeOptions();
  options.mostFrames = 3;
  ASSERT_NO_FATAL_FAILURE(HangBehindTheFirstFrame(options));

  mRecorder.Stop();
  mDisk.Recover();

  const RecordingProgress progress = AwaitEnd();
  EXPECT_EQ(progress.counts.written, 3U);
  EXPECT_FALSE(HasFailed(progress)) << DescribeState(progress);
}

TEST_F(RecordingOnAHangingDisk, Left_HasFailedAndWritesNothingMore) {
  const RecordingOptions options = MakeOptions();
  ASSERT_NO_FATAL_FAILURE(HangBehindTheFirstFrame(options));

  mRecorder.Leave();

  EXPECT_FALSE(mRecorder.IsBusy());
  const RecordingProgress progress = AwaitEnd();
  EXPECT_EQ(progress.end, RecordingEnd::Failed);
  EXPECT_TRUE(progress.result == KrResult::Code::TimeLimitExceeded);
  EXPECT_THAT(progress.result.GetDescription().ToUtf8(), HasSubstr(options.folder));
  EXPECT_EQ(progress.counts.abandoned, 3U);
  RecoverAndAwaitThread();
  EXPECT_THAT(ReadColumn(options.folder, "frame_id"), ElementsAre("1"));
  EXPECT_EQ(ReadText(options.folder, "ended_by"), "-");
  EXPECT_EQ(mRecorder.GetProgress().counts.written, 1U);
}

TEST_F(RecordingOnAHangingDisk, LeftBeforeItsFolderIsReady_HasFailed) {
  mDisk.Hang();
  StartOnDisk(mRecorder, MakeOptions());
  Give(1, 2);
  ASSERT_TRUE(AwaitHanging());

  mRecorder.Leave();

  const RecordingProgress progress = AwaitEnd();
  EXPECT_EQ(progress.end, RecordingEnd::Failed);
  EXPECT_EQ(progress.counts.abandoned, 2U);
  RecoverAndAwaitThread();
}

TEST_F(RecordingOnAHangingDisk, LeftWhileItsFilesAreClosed_HasFailed) {
  const RecordingOptions options = MakeOptions();
  ASSERT_NO_FATAL_FAILURE(WriteTheFirstFrame(options));
  mDisk.Hang();
  mRecorder.Stop();
  ASSERT_TRUE(AwaitHanging());

  mRecorder.Leave();

  EXPECT_EQ(AwaitEnd().end, RecordingEnd::Failed);
  RecoverAndAwaitThread();
  EXPECT_EQ(mRecorder.GetProgress().end, RecordingEnd::Failed);
}

TEST_F(RecordingOnAHangingDisk, AfterOneThatWasLeft_AnotherIsMadeElsewhere) {
  mDisk.Hang();
  StartOnDisk(mRecorder, MakeOptions());
  ASSERT_TRUE(AwaitHanging());
  mRecorder.Leave();
  RecordingOptions elsewhere = MakeOptions();
  elsewhere.folder = mPlace.GetFile("elsewhere"); // Its thread is not on the disk.

  ASSERT_TRUE(mRecorder.Start(elsewhere).IsOK());
  Give(1, 2);
  const RecordingProgress progress = StopAndAwaitEnd();

  EXPECT_EQ(progress.end, RecordingEnd::Stopped);
  EXPECT_THAT(ReadColumn(elsewhere.folder, "frame_id"), ElementsAre("1", "2"));
  mRecorder.Abandon();
  RecoverAndAwaitThread();
}

TEST_F(RecordingOnAHangingDisk, RecorderGoneBeforeTheDiskAnswers_IsMissedByNobody) {
  {
    Recorder recorder;
    StartOnDisk(recorder, MakeOptions());
    ASSERT_TRUE(krtest::Await([this] { return !ReadText(MakeOptions().folder, "device_id").empty(); }));
    mDisk.Hang();
    recorder.OnFrame(MakeNumberedFrame(1), 10);
    ASSERT_TRUE(AwaitHanging());
    recorder.Leave();
  }

  RecoverAndAwaitThread();
}
