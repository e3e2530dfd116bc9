// Recordings that cannot go on as asked: what is told, and that nothing damaged is left.

#include "await.h"
#include "filesizelimit.h"
#include "recordings.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <vector>

using namespace krviewer;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

std::vector<std::string> ListNames(const std::string& aFolder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(aFolder))
    names.push_back(entry.path().filename().string());
  return names;
}

} // namespace

TEST_F(RecorderTest, FolderThatExists_IsNotTouched) {
  const RecordingOptions options = MakeOptions();
  std::filesystem::create_directory(options.folder);

  ASSERT_TRUE(mRecorder.Start(options).IsOK());
  const RecordingProgress progress = AwaitEnd();

  EXPECT_EQ(progress.end, RecordingEnd::Failed);
  EXPECT_TRUE(progress.result == KrResult::Code::WrongState);
  EXPECT_THAT(progress.result.GetDescription().ToUtf8(), HasSubstr(options.folder));
  EXPECT_THAT(ListNames(options.folder), IsEmpty());
}

TEST_F(RecorderTest, FolderWithoutAPlace_IsNotFound) {
  RecordingOptions options = MakeOptions();
  options.folder = mPlace.GetFile("none/recording");

  ASSERT_TRUE(mRecorder.Start(options).IsOK());
  const RecordingProgress progress = AwaitEnd();

  EXPECT_TRUE(progress.result == KrResult::Code::NotFound);
}

TEST_F(RecorderTest, EachThatHasEnded_IsTakenOnceAlsoWhenAnotherRuns) {
  RecordingOptions failing = MakeOptions();
  failing.folder = mPlace.GetFile("none/recording");
  EXPECT_FALSE(mRecorder.HasUntaken());
  ASSERT_TRUE(mRecorder.Start(failing).IsOK());
  AwaitEnd();
  ASSERT_TRUE(mRecorder.Start(MakeOptions()).IsOK());

  const std::vector<RecordingProgress> first = mRecorder.TakeEnded();
  ASSERT_EQ(first.size(), 1U);
  EXPECT_EQ(first[0].end, RecordingEnd::Failed);
  EXPECT_THAT(mRecorder.TakeEnded(), IsEmpty());
  EXPECT_TRUE(mRecorder.HasUntaken());
  mRecorder.Stop();
  AwaitEnd();

  const std::vector<RecordingProgress> second = mRecorder.TakeEnded();
  ASSERT_EQ(second.size(), 1U);
  EXPECT_EQ(second[0].end, RecordingEnd::Stopped);
  EXPECT_THAT(mRecorder.TakeEnded(), IsEmpty());
  EXPECT_FALSE(mRecorder.HasUntaken());
}

TEST_F(RecorderTest, StartWhileOneRuns_IsRefused) {
  RecordingOptions options = MakeOptions();
  ASSERT_TRUE(mRecorder.Start(options).IsOK());
  options.folder = mPlace.GetFile("second");

  EXPECT_TRUE(mRecorder.Start(options) == KrResult::Code::WrongState);

  EXPECT_TRUE(mRecorder.IsBusy());
  EXPECT_FALSE(std::filesystem::exists(options.folder));
}

TEST_F(RecorderTest, OptionsThatCanNeverBeMet_AreRefused) {
  RecordingOptions noFolder = MakeOptions();
  noFolder.folder.clear();
  RecordingOptions noFrames = MakeOptions();
  noFrames.everyNth = 0;
  RecordingOptions noRoom = MakeOptions();
  noRoom.mostQueuedFrames = 0;

  EXPECT_TRUE(mRecorder.Start(noFolder) == KrResult::Code::InvalidInput);
  EXPECT_TRUE(mRecorder.Start(noFrames) == KrResult::Code::InvalidInput);
  EXPECT_TRUE(mRecorder.Start(noRoom) == KrResult::Code::InvalidInput);
  EXPECT_EQ(mRecorder.GetProgress().state, RecordingState::Idle);
}

TEST_F(RecorderTest, DiskThatTakesNoMore_EndsWithWholeFramesAlone) {
  const RecordingOptions options = MakeOptions();
  ASSERT_TRUE(mRecorder.Start(options).IsOK());
  Give(1, 2);
  ASSERT_TRUE(krtest::Await([this] { return mRecorder.GetProgress().counts.written == 2; }));

  RecordingProgress progress;
  {
    const FileSizeLimit limit(kFrameBytes / 2);
    Give(3, 3);
    progress = AwaitEnd();
  }

  EXPECT_EQ(progress.end, RecordingEnd::Failed);
  EXPECT_TRUE(progress.result == KrResult::Code::SystemError);
  EXPECT_THAT(progress.result.GetDescription().ToUtf8(), HasSubstr("frame-00000003.raw"));
  EXPECT_EQ(progress.counts.failed, 1U);
  EXPECT_THAT(ReadColumn(options.folder, "frame_id"), ElementsAre("1", "2"));
  EXPECT_THAT(ListNames(options.folder),
              UnorderedElementsAre("index.csv", "recording.txt", "frame-00000001.raw", "frame-00000002.raw"));
}

TEST_F(RecorderTest, IndexThatTakesNoMore_LeavesNoFrameThatItDoesNotName) {
  const RecordingOptions options = MakeOptions();
  ASSERT_TRUE(mRecorder.Start(options).IsOK());
  Give(1, 1);
  ASSERT_TRUE(krtest::Await([this] { return mRecorder.GetProgress().counts.written == 1; }));
  const std::string index = TemporaryFolder::ReadFile(options.folder + "/index.csv");

  {
    const FileSizeLimit limit(index.size() + 20); // The frames' files are smaller.
    Give(2, 2);
    AwaitEnd();
  }

  EXPECT_EQ(TemporaryFolder::ReadFile(options.folder + "/index.csv"), index);
  EXPECT_FALSE(std::filesystem::exists(options.folder + "/frame-00000002.raw"));
}

TEST_F(RecorderTest, FolderThatVanishes_EndsWithItsName) {
  const RecordingOptions options = MakeOptions();
  ASSERT_TRUE(mRecorder.Start(options).IsOK());
  Give(1, 1);
  ASSERT_TRUE(krtest::Await([this] { return mRecorder.GetProgress().counts.written == 1; }));

  std::filesystem::remove_all(options.folder);
  Give(2, 2);
  const RecordingProgress progress = AwaitEnd();

  EXPECT_TRUE(progress.result == KrResult::Code::NotFound);
  EXPECT_THAT(progress.result.GetDescription().ToUtf8(), HasSubstr(options.folder));
}

TEST_F(RecorderTest, DiskBudget_EndsBeforeItIsExceeded) {
  RecordingOptions options = MakeOptions();
  options.mostDiskBytes = 2 * kFrameBytes + kFrameBytes / 2;
  ASSERT_TRUE(mRecorder.Start(options).IsOK());

  Give(1, 3);
  const RecordingProgress progress = AwaitEnd();

  EXPECT_EQ(progress.end, RecordingEnd::DiskBudget);
  EXPECT_EQ(progress.counts.bytes, 2 * kFrameBytes);
  EXPECT_EQ(progress.counts.abandoned, 1U);
  EXPECT_EQ(ReadText(options.folder, "ended_by"), "disk_budget");
}

TEST_F(RecorderTest, RoomThatIsToStayFree_IsNotTaken) {
  RecordingOptions options = MakeOptions();
  options.freeDiskBytes = std::uint64_t{1} << 62U; // More than any disk has.
  ASSERT_TRUE(mRecorder.Start(options).IsOK());

  Give(1, 1);
  const RecordingProgress progress = AwaitEnd();

  EXPECT_EQ(progress.end, RecordingEnd::DiskReserve);
  EXPECT_EQ(progress.counts.written, 0U);
  EXPECT_GT(progress.freeDiskBytes, 0U);
}

TEST_F(RecorderTest, MemoryThatIsFull_LeavesFramesOutAndTellsWithTheNextOne) {
  RecordingOptions options = MakeOptions();
  options.mostQueuedFrames = 1;
  ASSERT_TRUE(mRecorder.Start(options).IsOK());

  std::uint64_t frameID = 0;
  ASSERT_TRUE(krtest::Await([&] {
    ++frameID;
    Give(frameID, frameID);
    return mRecorder.GetProgress().counts.queueFull > 0;
  }));
  ASSERT_TRUE(krtest::Await([this] { return mRecorder.GetProgress().queuedFrames == 0; }));
  Give(frameID + 1, frameID + 1);
  const RecordingProgress progress = StopAndAwaitEnd();

  EXPECT_EQ(progress.counts.written, frameID + 1 - progress.counts.queueFull);
  std::uint64_t toldMissing = 0;
  std::uint64_t expectedID = 1;
  for (auto& line : ReadIndex(options.folder)) {
    const std::uint64_t missing = std::stoull(line["queue_full_before"]);
    EXPECT_EQ(std::stoull(line["frame_id"]), expectedID + missing);
    expectedID = std::stoull(line["frame_id"]) + 1;
    toldMissing += missing;
  }
  EXPECT_EQ(toldMissing, progress.counts.queueFull);
}

TEST_F(RecorderTest, FrameThatIsNoImage_IsCountedAndTheOthersGoOn) {
  const RecordingOptions options = MakeOptions();
  ASSERT_TRUE(mRecorder.Start(options).IsOK());
  KrBuffer bytes(KrPayloadType::RawData);
  ASSERT_TRUE(bytes.Alloc(100).IsOK());
  bytes.SetStatus(KrBufferStatus::Complete);

  mRecorder.OnFrame(bytes, 1);
  Give(2, 2);
  const RecordingProgress progress = StopAndAwaitEnd();

  EXPECT_EQ(progress.end, RecordingEnd::Stopped);
  EXPECT_EQ(progress.counts.failed, 1U);
  EXPECT_TRUE(progress.frameFailure == KrResult::Code::NotSupported);
  EXPECT_THAT(ReadColumn(options.folder, "frame_id"), ElementsAre("2"));
}

TEST_F(RecorderTest, FrameThatTheFormatCannotHold_IsCountedAndTheOthersGoOn) {
  RecordingOptions options = MakeOptions();
  options.format = krapps::FrameFileFormat::PNG;
  ASSERT_TRUE(mRecorder.Start(options).IsOK());
  KrBuffer unknown = MakeNumberedFrame(1);
  ASSERT_TRUE(unknown.DescribeImage(4, 4, 0x81080001U).IsOK()); // A format of some maker's own.

  mRecorder.OnFrame(unknown, 1);
  Give(2, 2);
  const RecordingProgress progress = StopAndAwaitEnd();

  EXPECT_EQ(progress.counts.failed, 1U);
  EXPECT_TRUE(progress.frameFailure == KrResult::Code::NotSupported) << progress.frameFailure.GetDescription().CStr();
  EXPECT_THAT(ReadColumn(options.folder, "file"), ElementsAre("frame-00000001.png"));
  EXPECT_THAT(ListNames(options.folder), UnorderedElementsAre("index.csv", "recording.txt", "frame-00000001.png"));
}
