#include "fakecamera.h"
#include "programrun.h"
#include "temporaryfolder.h"
#include "tifffile.h"

#include <gmock/gmock.h>

#include <csignal>
#include <map>
#include <sstream>

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

// The lines of "key=value" of a text.
std::map<std::string, std::string> ReadLines(const std::string& aText) {
  std::map<std::string, std::string> values;
  std::istringstream lines(aText);
  for (std::string line; std::getline(lines, line);)
    values[line.substr(0, line.find('='))] = line.substr(line.find('=') + 1);
  return values;
}

class SaveFrameProgram : public testing::Test {
protected:
  TemporaryFolder mFolder;
};

// The camera shows a diagonal ramp that repeats itself every 255 pixels and moves by one pixel with each frame, so that
// two frames of it are the same but for the place.
TEST_F(SaveFrameProgram, IndependentCamera_GivesTheSamePictureAsRawAndAsTiff) {
  const FakeCamera camera("SAVE1");
  ASSERT_TRUE(camera.IsAnswering());
  const std::string rawPath = mFolder.GetFile("frame.raw");
  const std::string tiffPath = mFolder.GetFile("frame.tif");

  ProgramRun raw(KRTOOL_PATH, {"save-frame", "127.0.0.1", rawPath});
  ASSERT_EQ(raw.Finish(), 0) << raw.GetErrors();
  ProgramRun tiff(KRTOOL_PATH, {"save-frame", "127.0.0.1", tiffPath});
  ASSERT_EQ(tiff.Finish(), 0) << tiff.GetErrors();

  const std::string bytes = TemporaryFolder::ReadFile(rawPath);
  auto rawValues = ReadLines(TemporaryFolder::ReadFile(rawPath + ".txt"));
  const TiffFile file(tiffPath);
  auto tiffValues = ReadLines(file.description);
  EXPECT_EQ(rawValues["pixel_format"], "Mono8");
  EXPECT_EQ(tiffValues["pixel_format"], "Mono8");
  EXPECT_EQ(rawValues["width"], std::to_string(file.width));
  EXPECT_EQ(rawValues["height"], std::to_string(file.height));
  EXPECT_EQ(rawValues["bytes"], std::to_string(bytes.size()));
  EXPECT_EQ(rawValues["device_id"], tiffValues["device_id"]);
  ASSERT_EQ(bytes.size(), file.bytes.size());
  ASSERT_EQ(file.bitsPerSample, 8);
  const std::size_t moved =
      (std::stoull(tiffValues["frame_id"]) + 255 - std::stoull(rawValues["frame_id"]) % 255) % 255;
  ASSERT_LT(moved, file.width);
  for (std::size_t y = 0; y < file.height; ++y)
    for (std::size_t x = 0; x + moved < file.width; ++x)
      ASSERT_EQ(file.bytes[y * file.width + x], static_cast<std::uint8_t>(bytes[y * file.width + x + moved]))
          << x << " " << y << ", moved by " << moved;
}

// What the camera shows in 16 bits: the ramp in steps of 256.
std::uint16_t GetRamp16(std::size_t aX, std::size_t aY, std::uint64_t aFrameID) {
  return static_cast<std::uint16_t>(256 * (aX + aY + aFrameID) % 65535);
}

TEST_F(SaveFrameProgram, PixelFormat_IsSetOnAnIndependentCameraAndEverySampleKeptAsRawAndAsTiff) {
  const FakeCamera camera("SAVE2");
  ASSERT_TRUE(camera.IsAnswering());
  const std::string rawPath = mFolder.GetFile("frame.raw");
  const std::string tiffPath = mFolder.GetFile("frame.tif");

  ProgramRun raw(KRTOOL_PATH, {"save-frame", "127.0.0.1", rawPath, "--pixel-format", "Mono16"});
  ASSERT_EQ(raw.Finish(), 0) << raw.GetErrors();
  ProgramRun tiff(KRTOOL_PATH, {"save-frame", "127.0.0.1", tiffPath, "--pixel-format", "Mono16"});
  ASSERT_EQ(tiff.Finish(), 0) << tiff.GetErrors();

  EXPECT_THAT(tiff.GetOutput(), HasSubstr("pixel_format=Mono16 "));
  const TiffFile file(tiffPath);
  const std::string bytes = TemporaryFolder::ReadFile(rawPath);
  const std::uint64_t rawFrame = std::stoull(ReadLines(TemporaryFolder::ReadFile(rawPath + ".txt"))["frame_id"]);
  const std::uint64_t tiffFrame = std::stoull(ReadLines(file.description)["frame_id"]);
  ASSERT_EQ(file.bitsPerSample, 16);
  ASSERT_EQ(bytes.size(), std::size_t{2} * file.width * file.height);
  for (std::uint32_t y = 0; y < file.height; ++y)
    for (std::uint32_t x = 0; x < file.width; ++x) {
      const std::size_t place = (std::size_t{y} * file.width + x) * 2;
      const auto sample = static_cast<std::uint8_t>(bytes[place]) | static_cast<std::uint8_t>(bytes[place + 1]) << 8;
      ASSERT_EQ(sample, GetRamp16(x, y, rawFrame)) << x << " " << y;
      ASSERT_EQ(file.GetSample(x, y, 0), GetRamp16(x, y, tiffFrame)) << x << " " << y;
    }
}

// So many packets are lost that no frame comes whole.
TEST_F(SaveFrameProgram, TerminatedWhileItWaitsForAWholeFrame_LeavesNoFileAndTheCameraFree) {
  FakeCameraOptions options;
  options.serialNumber = "SAVE4";
  options.lostPacketsPerMille = 500;
  const FakeCamera camera(options);
  ASSERT_TRUE(camera.IsAnswering());
  ProgramRun run(KRTOOL_PATH, {"save-frame", "127.0.0.1", mFolder.GetFile("frame.png"), "--timeout", "50000"});
  ASSERT_TRUE(run.AwaitError("did not come whole")) << run.GetErrors();

  run.Signal(SIGTERM);

  EXPECT_EQ(run.Finish(), 128 + SIGTERM);
  EXPECT_THAT(run.GetErrors(), HasSubstr("It was stopped before a whole frame came."));
  EXPECT_THAT(mFolder.GetNames(), IsEmpty());
  ProgramRun next(KRTOOL_PATH, {"stream", "127.0.0.1", "--frames", "1"});
  EXPECT_EQ(next.Finish(), 0) << next.GetErrors();
}

TEST_F(SaveFrameProgram, FormatThatIsNone_ExitsWith2AndListsThem) {
  ProgramRun run(KRTOOL_PATH, {"save-frame", "sim-mono", mFolder.GetFile("frame.jpg"), "--simulate"});

  EXPECT_EQ(run.Finish(), 2);
  EXPECT_THAT(run.GetErrors(), AllOf(HasSubstr("png"), HasSubstr("tiff"), HasSubstr("raw")));
  EXPECT_THAT(mFolder.GetNames(), IsEmpty());
}

TEST_F(SaveFrameProgram, FileThatIsThere_StaysAndExitsWith1) {
  const std::string path = mFolder.GetFile("frame.png");
  TemporaryFolder::WriteFile(path, "old");

  ProgramRun run(KRTOOL_PATH, {"save-frame", "sim-mono", path, "--simulate"});

  EXPECT_EQ(run.Finish(), 1);
  EXPECT_THAT(run.GetErrors(), AllOf(HasSubstr(path), HasSubstr("--force")));
  EXPECT_EQ(TemporaryFolder::ReadFile(path), "old");
}

// A disk of the test's own: the program runs where a small file system is mounted over the folder.
TEST_F(SaveFrameProgram, FullDisk_IsSaidInOneLineAndLeavesNothing) {
  constexpr const char* kScript = "mount -t tmpfs -o size=64k none \"$1\" || exit 77\n"
                                  "\"$0\" save-frame sim-mono \"$1/frame.$2\" --simulate\n"
                                  "code=$?\n"
                                  "ls -A \"$1\"\n"
                                  "exit $code\n";
  for (const char* extension : {"raw", "tif"}) {
    ProgramRun run("/usr/bin/unshare", {"--mount", "sh", "-c", kScript, KRTOOL_PATH, mFolder.GetPath(), extension});

    EXPECT_EQ(run.Finish(), 1) << run.GetErrors();
    EXPECT_EQ(run.GetOutput(), "") << extension;
    EXPECT_EQ(run.GetErrors(), "krtool: The file \"" + mFolder.GetFile("frame." + std::string(extension)) +
                                   "\" cannot be written: No space left on device.\n");
  }
}

// A file that another one is mounted on can be written, yet not exchanged: the very last step fails.
TEST_F(SaveFrameProgram, RawFileThatCannotBeExchanged_KeepsItsBytesAndItsText) {
  constexpr const char* kScript = "mount --bind \"$1\" \"$1\" || exit 77\n"
                                  "\"$0\" save-frame sim-mono \"$1\" --simulate --force\n";
  const std::string path = mFolder.GetFile("frame.raw");
  TemporaryFolder::WriteFile(path, "old bytes");
  TemporaryFolder::WriteFile(path + ".txt", "old text");

  ProgramRun run("/usr/bin/unshare", {"--mount", "sh", "-c", kScript, KRTOOL_PATH, path});

  EXPECT_EQ(run.Finish(), 1);
  EXPECT_THAT(run.GetErrors(), AllOf(HasSubstr(path), HasSubstr("busy")));
  EXPECT_EQ(TemporaryFolder::ReadFile(path), "old bytes");
  EXPECT_EQ(TemporaryFolder::ReadFile(path + ".txt"), "old text");
  EXPECT_THAT(mFolder.GetNames(), UnorderedElementsAre("frame.raw", "frame.raw.txt"));
}

TEST_F(SaveFrameProgram, SimulatedCamera_SavesEveryFormat) {
  for (const char* name : {"frame.png", "frame.tiff", "frame.raw"}) {
    ProgramRun run(KRTOOL_PATH, {"save-frame", "sim-colour", mFolder.GetFile(name), "--simulate"});

    EXPECT_EQ(run.Finish(), 0) << run.GetErrors();
    EXPECT_THAT(run.GetOutput(), HasSubstr("pixel_format=BayerRG8 "));
  }
  EXPECT_THAT(mFolder.GetNames(), UnorderedElementsAre("frame.png", "frame.tiff", "frame.raw", "frame.raw.txt"));
}

} // namespace
