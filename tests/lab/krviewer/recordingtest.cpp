// Recordings of simulated cameras, read back and compared with what the cameras drew.

#include "acquisition/acquisition.h"
#include "labfixture.h"
#include "recordings.h"
#include "region/regionaccess.h"
#include "simulation/testpattern.h"

using namespace krviewer;

namespace {

class RecordingTest : public LabTest {
protected:
  void Open(const char* aMACAddress) {
    FindAll();
    mAcquisition.emplace(mWindow, krviewer::BorrowCamera(*FindInfo(aMACAddress)));
    ASSERT_TRUE(mAcquisition->GetFrames().Register(&mRecorder).IsOK());
  }
  ~RecordingTest() override {
    mAcquisition.reset();
    mRecorder.Abandon();
  }
  void Start(std::uint64_t aMostFrames) {
    RecordingOptions options;
    options.folder = mFolder;
    options.mostFrames = aMostFrames;
    options.freeDiskBytes = 0;
    ASSERT_TRUE(mRecorder.Start(options).IsOK());
  }
  bool AwaitWritten(std::uint64_t aFrames) {
    return WaitUntil([&] { return mRecorder.GetProgress().counts.written >= aFrames; });
  }
  bool AwaitEnd() {
    return WaitUntil([this] { return mRecorder.GetProgress().state == RecordingState::Ended; });
  }
  // Each frame's file holds what the camera drew for its number.
  void ExpectPatterns(KrPixelType aType, std::size_t aFrames) {
    IndexLines lines = ReadIndex(mFolder);
    ASSERT_EQ(lines.size(), aFrames);
    for (auto& line : lines) {
      const auto width = static_cast<std::uint32_t>(std::stoul(line["width"]));
      const auto height = static_cast<std::uint32_t>(std::stoul(line["height"]));
      std::vector<std::uint8_t> pattern(std::stoull(line["bytes"]));
      ASSERT_TRUE(krtransport::FillPattern(aType, width, height, std::stoull(line["frame_id"]), pattern.data()));
      EXPECT_EQ(TemporaryFolder::ReadFile(mFolder + "/" + line["file"]), std::string(pattern.begin(), pattern.end()))
          << line["file"];
    }
  }

  TemporaryFolder mPlace;
  const std::string mFolder = mPlace.GetFile("recording");
  KrDisplayWnd mWindow;
  Recorder mRecorder;
  std::optional<Acquisition> mAcquisition;
};

} // namespace

TEST_F(RecordingTest, FramesReadBack_AreWhatTheCameraDrew) {
  Open(kMonoMAC);
  Start(5);

  ASSERT_TRUE(AwaitEnd());

  EXPECT_EQ(mRecorder.GetProgress().counts.written, 5U);
  ExpectPatterns(KrPixel::Mono8, 5);
}

TEST_F(RecordingTest, CameraLostAndBack_IsRecordedOn) {
  Open(kMonoMAC);
  Start(0);
  ASSERT_TRUE(AwaitWritten(2));

  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  ASSERT_TRUE(WaitUntil([this] { return !mRecorder.GetProgress().isFed; }));
  EXPECT_EQ(mRecorder.GetProgress().state, RecordingState::Recording);
  ASSERT_TRUE(mLab->Restore(kMonoMAC).IsOK());
  ASSERT_TRUE(WaitUntil([this] { return mRecorder.GetProgress().isFed; }));
  ASSERT_TRUE(AwaitWritten(mRecorder.GetProgress().counts.written + 3));
  mRecorder.Stop();
  ASSERT_TRUE(AwaitEnd());

  IndexLines lines = ReadIndex(mFolder);
  ASSERT_FALSE(lines.empty());
  EXPECT_EQ(lines.front()["run"], "1");
  EXPECT_EQ(lines.back()["run"], "2");
  EXPECT_EQ(ReadText(mFolder, "ended_by"), "stopped");
}

TEST_F(RecordingTest, RegionSetMeanwhile_IsRecordedFromItsFirstFrameOn) {
  Open(kMonoMAC);
  Start(0);
  ASSERT_TRUE(AwaitWritten(2));

  mAcquisition->Do({.run =
                        [](KrGenParameterArray& aParameters) {
                          return WriteRegion(aParameters, {{320, 640}, {240, 480}});
                        },
                    .isStreamStopped = true});
  ASSERT_TRUE(WaitUntil([this] {
    const auto widths = ReadColumn(mFolder, "width");
    return !widths.empty() && widths.back() == "640";
  }));
  mRecorder.Stop();
  ASSERT_TRUE(AwaitEnd());

  for (auto& line : ReadIndex(mFolder)) {
    const bool isRegion = line["width"] == "640";
    EXPECT_EQ(line["height"], isRegion ? "480" : "960");
    EXPECT_EQ(line["bytes"], isRegion ? "307200" : "1228800");
    EXPECT_EQ(std::filesystem::file_size(mFolder + "/" + line["file"]), isRegion ? 307200U : 1228800U);
  }
}
