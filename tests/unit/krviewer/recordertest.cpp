// Recordings as they are asked for: what is recorded, when it ends, and what is on the disk then.

#include "recordings.h"

#include "await.h"

#include <gmock/gmock.h>

#include <atomic>

using namespace krviewer;
using testing::ElementsAre;

using Column = std::vector<std::string>;

TEST_F(RecorderTest, Frames_AreOnTheDiskAsTheyCame) {
  const RecordingOptions options = MakeOptions();
  ASSERT_TRUE(mRecorder.Start(options).IsOK());

  Give(5, 7);
  const RecordingProgress progress = StopAndAwaitEnd();

  EXPECT_EQ(progress.end, RecordingEnd::Stopped);
  EXPECT_EQ(progress.counts.written, 3U);
  EXPECT_EQ(progress.counts.bytes, 3 * kFrameBytes);
  EXPECT_EQ(mRecorder.GetBytesDone(), 3 * kFrameBytes);
  IndexLines lines = ReadIndex(options.folder);
  ASSERT_EQ(lines.size(), 3U);
  for (std::uint64_t index = 0; index < 3; ++index) {
    const std::uint64_t frameID = 5 + index;
    EXPECT_EQ(lines[index]["number"], std::to_string(index + 1));
    EXPECT_EQ(lines[index]["frame_id"], std::to_string(frameID));
    EXPECT_EQ(TemporaryFolder::ReadFile(options.folder + "/" + lines[index]["file"]),
              std::string(kFrameBytes, static_cast<char>(frameID)));
  }
}

TEST_F(RecorderTest, Index_SaysAllThatAReaderOfTheBytesMustKnow) {
  const RecordingOptions options = MakeOptions();
  ASSERT_TRUE(mRecorder.Start(options).IsOK());

  KrBuffer frame;
  ASSERT_TRUE(frame.GetImage()->Alloc(6, 4, KrPixel::Mono12p, 3, 5).IsOK());
  frame.SetStatus(KrBufferStatus::Complete);
  frame.SetFrameID(77);
  frame.SetTimestampNs(123);
  frame.SetHostTimestampNs(456);
  mRecorder.OnFrame(frame, 789);
  StopAndAwaitEnd();

  // Four lines of 6 x 12 bits and three bytes behind each, and five bytes behind the last.
  EXPECT_EQ(TemporaryFolder::ReadFile(options.folder + "/index.csv"),
            "number,file,bytes,frame_id,timestamp_ns,host_timestamp_ns,arrival_ns,run,complete,incomplete_before,"
            "queue_full_before,pixel_format,pixel_format_code,width,height,padding_x_bytes,padding_y_bytes\n"
            "1,frame-00000001.raw,53,77,123,456,789,1,yes,0,0,Mono12p,0x010C0047,6,4,3,5\n");
}

TEST_F(RecorderTest, Text_SaysWhatTheRecordingIsAndWhatBecameOfIt) {
  const RecordingOptions options = MakeOptions();
  ASSERT_TRUE(mRecorder.Start(options).IsOK());
  ASSERT_TRUE(krtest::Await([&] { return ReadText(options.folder, "device_id") == "camera 7"; }));
  EXPECT_EQ(ReadText(options.folder, "ended_by"), "-");

  Give(1, 2);
  StopAndAwaitEnd();

  EXPECT_EQ(ReadText(options.folder, "recording_version"), "1");
  EXPECT_EQ(ReadText(options.folder, "file_format"), "raw");
  EXPECT_EQ(ReadText(options.folder, "ended_by"), "stopped");
  EXPECT_EQ(ReadText(options.folder, "received"), "2");
  EXPECT_EQ(ReadText(options.folder, "written"), "2");
  EXPECT_EQ(ReadText(options.folder, "bytes"), "256");
}

TEST_F(RecorderTest, NumberOfFramesAskedFor_EndsByItself) {
  RecordingOptions options = MakeOptions();
  options.mostFrames = 3;
  ASSERT_TRUE(mRecorder.Start(options).IsOK());

  Give(1, 10);
  const RecordingProgress progress = AwaitEnd();

  EXPECT_EQ(progress.end, RecordingEnd::FrameLimit);
  EXPECT_EQ(progress.counts.received, 3U);
  EXPECT_THAT(ReadColumn(options.folder, "frame_id"), ElementsAre("1", "2", "3"));
}

TEST_F(RecorderTest, EveryNthFrame_IsRecordedAndTheOthersCount) {
  RecordingOptions options = MakeOptions();
  options.everyNth = 3;
  ASSERT_TRUE(mRecorder.Start(options).IsOK());

  Give(1, 8);
  const RecordingProgress progress = StopAndAwaitEnd();

  EXPECT_EQ(progress.counts.passedOver, 5U);
  EXPECT_THAT(ReadColumn(options.folder, "frame_id"), ElementsAre("1", "4", "7"));
}

TEST_F(RecorderTest, IncompleteFrame_IsLeftOutAndToldWithTheNextOne) {
  const RecordingOptions options = MakeOptions();
  ASSERT_TRUE(mRecorder.Start(options).IsOK());
  KrBuffer torn = MakeNumberedFrame(2);
  torn.SetStatus(KrBufferStatus::Incomplete);

  Give(1, 1);
  mRecorder.OnFrame(torn, 20);
  Give(3, 3);
  const RecordingProgress progress = StopAndAwaitEnd();

  EXPECT_EQ(progress.counts.incomplete, 1U);
  EXPECT_THAT(ReadColumn(options.folder, "frame_id"), ElementsAre("1", "3"));
  EXPECT_THAT(ReadColumn(options.folder, "incomplete_before"), ElementsAre("0", "1"));
}

TEST_F(RecorderTest, IncompleteFrame_IsRecordedWhereThatIsWanted) {
  RecordingOptions options = MakeOptions();
  options.takesIncomplete = true;
  ASSERT_TRUE(mRecorder.Start(options).IsOK());
  KrBuffer torn = MakeNumberedFrame(2);
  torn.SetStatus(KrBufferStatus::Incomplete);

  Give(1, 1);
  mRecorder.OnFrame(torn, 20);
  StopAndAwaitEnd();

  EXPECT_THAT(ReadColumn(options.folder, "complete"), ElementsAre("yes", "no"));
}

TEST_F(RecorderTest, FramesOfAnotherSizeOrFormat_AreRecordedAsTheyCome) {
  const RecordingOptions options = MakeOptions();
  ASSERT_TRUE(mRecorder.Start(options).IsOK());

  mRecorder.OnFrame(MakeNumberedFrame(1), 10);
  mRecorder.OnFrame(MakeNumberedFrame(2, 32), 20);
  mRecorder.OnFrame(MakeNumberedFrame(3, 32, KrPixel::RGB8), 30);
  StopAndAwaitEnd();

  EXPECT_THAT(ReadColumn(options.folder, "width"), ElementsAre("16", "32", "32"));
  EXPECT_THAT(ReadColumn(options.folder, "pixel_format"), ElementsAre("Mono8", "Mono8", "RGB8"));
  EXPECT_THAT(ReadColumn(options.folder, "bytes"), ElementsAre("128", "256", "768"));
  EXPECT_EQ(TemporaryFolder::ReadFile(options.folder + "/frame-00000003.raw"), std::string(768, 3));
}

TEST_F(RecorderTest, CameraLostAndBack_GoesOnAsARunOfItsOwn) {
  const RecordingOptions options = MakeOptions();
  mRecorder.OnAcquisitionStarted();
  ASSERT_TRUE(mRecorder.Start(options).IsOK());
  Give(8, 9);

  mRecorder.OnAcquisitionEnded({KrResult::Code::ConnectionLost, "It is gone."});
  EXPECT_FALSE(mRecorder.GetProgress().isFed);
  EXPECT_EQ(mRecorder.GetProgress().state, RecordingState::Recording);
  mRecorder.OnAcquisitionStarted();
  EXPECT_TRUE(mRecorder.GetProgress().isFed);
  Give(1, 2);
  StopAndAwaitEnd();

  EXPECT_THAT(ReadColumn(options.folder, "frame_id"), ElementsAre("8", "9", "1", "2"));
  EXPECT_THAT(ReadColumn(options.folder, "run"), ElementsAre("1", "1", "2", "2"));
}

TEST_F(RecorderTest, FramesBeforeTheStartAndAfterTheStop_AreNotRecorded) {
  const RecordingOptions options = MakeOptions();

  Give(1, 1);
  ASSERT_TRUE(mRecorder.Start(options).IsOK());
  Give(2, 2);
  StopAndAwaitEnd();
  Give(3, 3);

  EXPECT_EQ(mRecorder.GetProgress().counts.received, 1U);
  EXPECT_THAT(ReadColumn(options.folder, "frame_id"), ElementsAre("2"));
}

TEST_F(RecorderTest, SecondRecording_BeginsWithCountsOfItsOwn) {
  RecordingOptions options = MakeOptions();
  ASSERT_TRUE(mRecorder.Start(options).IsOK());
  Give(1, 4);
  StopAndAwaitEnd();
  options.folder = mPlace.GetFile("second");

  ASSERT_TRUE(mRecorder.Start(options).IsOK());
  Give(9, 9);
  const RecordingProgress progress = StopAndAwaitEnd();

  EXPECT_EQ(progress.counts.written, 1U);
  EXPECT_THAT(ReadColumn(options.folder, "frame_id"), ElementsAre("9"));
}

namespace {

// A recorder whose clock the test has.
class RecorderTimeTest : public testing::Test {
protected:
  void Start() {
    RecordingOptions options;
    options.folder = mPlace.GetFile("recording");
    options.mostSeconds = 2;
    options.freeDiskBytes = 0;
    ASSERT_TRUE(mRecorder.Start(options).IsOK());
  }
  RecordingProgress AwaitEnd() {
    EXPECT_TRUE(krtest::Await([&] { return !mRecorder.IsBusy(); }));
    return mRecorder.GetProgress();
  }

  const TemporaryFolder mPlace;
  std::atomic<std::uint64_t> mNowNs = 0;
  Recorder mRecorder{[this] { return mNowNs.load(); }};
};

} // namespace

TEST_F(RecorderTimeTest, LimitThatPassesWithoutAFrame_EndsTheRecording) {
  Start();
  mNowNs = 1'999'999'999;
  EXPECT_EQ(mRecorder.GetProgress().elapsedMs, 1999U);
  EXPECT_TRUE(mRecorder.IsBusy());

  mNowNs = 2'000'000'000;
  const RecordingProgress progress = AwaitEnd();

  EXPECT_EQ(progress.end, RecordingEnd::TimeLimit);
  EXPECT_EQ(progress.elapsedMs, 2000U);
}

TEST_F(RecorderTimeTest, FrameAfterTheLimit_IsNotTaken) {
  Start();
  mRecorder.OnFrame(MakeNumberedFrame(1), 0);

  mNowNs = 2'000'000'000;
  mRecorder.OnFrame(MakeNumberedFrame(2), 0);
  const RecordingProgress progress = AwaitEnd();

  EXPECT_EQ(progress.counts.received, 1U);
  EXPECT_EQ(progress.counts.written, 1U);
}
