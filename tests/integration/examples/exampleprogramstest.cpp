// The examples without windows, and others before they have one, run as a developer who tries them out runs them, and
// what all of them say of their use.

#include "fakecamera.h"
#include "programrun.h"
#include "temporaryfolder.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

namespace {

using testing::HasSubstr;

class SetParametersExample : public testing::Test {
protected:
  /// Runs it in a folder of the test's own, as it leaves its file where it is started.
  int Run(const std::vector<std::string>& aArguments) {
    std::vector<std::string> arguments = {"-C", mFolder.GetPath().string(), SET_PARAMETERS_PATH};
    arguments.insert(arguments.end(), aArguments.begin(), aArguments.end());
    ProgramRun run("/usr/bin/env", arguments);
    const int exitCode = run.Finish();
    mOutput = run.GetOutput();
    mErrors = run.GetErrors();
    return exitCode;
  }
  bool HasSaved() const { return std::filesystem::exists(GetFile()); }
  std::string GetFile() const { return mFolder.GetFile("settings.txt"); }

  std::string mOutput;
  std::string mErrors;

private:
  TemporaryFolder mFolder;
};

/// What an independent look at the camera on loopback says.
std::string ReadExposureTime() {
  ProgramRun run(KRTOOL_PATH, {"get", "127.0.0.1", "ExposureTimeAbs"});
  EXPECT_EQ(run.Finish(), 0) << run.GetErrors();
  return run.GetOutput();
}

struct BridgeRun {
  explicit BridgeRun(const std::vector<std::string>& aArguments) : run(CAMERA_BRIDGE_PATH, aArguments) {
    exitCode = run.Finish();
  }

  ProgramRun run;
  int exitCode;
};

} // namespace

TEST(Examples, AskedForHelp_SayHowTheyAreUsedWithoutADisplay) {
  std::istringstream paths(EXAMPLE_PATHS);
  int count = 0;
  for (std::string path; std::getline(paths, path, ':'); ++count)
    for (const char* option : {"--help", "-h"}) {
      SCOPED_TRACE(path + ' ' + option);
      ProgramRun run("/usr/bin/env", {"-u", "DISPLAY", "-u", "WAYLAND_DISPLAY", "-u", "QT_QPA_PLATFORM", path, option});

      EXPECT_EQ(run.Finish(), 0) << run.GetErrors();
      EXPECT_FALSE(run.GetOutput().empty());
      EXPECT_EQ(run.GetErrors(), "");
    }
  EXPECT_GE(count, 12);
}

TEST(ShowCameraExample, WithoutACamera_SaysWhatCanBeTried) {
  ProgramRun run("/usr/bin/env", {"QT_QPA_PLATFORM=offscreen", SHOW_CAMERA_PATH});

  EXPECT_EQ(run.Finish(), 1);
  EXPECT_THAT(run.GetErrors(), HasSubstr("Try --simulate."));
}

TEST(SerialTerminalExample, PortThatIsNone_IsNamed) {
  ProgramRun run(SERIAL_TERMINAL_PATH, {"--simulate", "nosuch"});

  EXPECT_EQ(run.Finish(), 2);
  EXPECT_THAT(run.GetErrors(), HasSubstr("There is no port nosuch;"));
}

TEST_F(SetParametersExample, CameraThatIsNamed_IsSetToldOfAndSaved) {
  EXPECT_EQ(Run({"--simulate", "sim-mono"}), 0) << mErrors;

  const std::string said = "ExposureTime is now ";
  const std::size_t begin = mOutput.find(said);
  ASSERT_NE(begin, std::string::npos) << mOutput;
  const std::string value = mOutput.substr(begin + said.size(), mOutput.find('\n', begin) - begin - said.size());
  ASSERT_TRUE(HasSaved());
  EXPECT_THAT(TemporaryFolder::ReadFile(GetFile()), HasSubstr("\nExposureTime\t" + value + "\n"));
  EXPECT_NE(value, "1000") << "That is what the camera begins with.";
}

TEST_F(SetParametersExample, NoCameraNamed_ListsThemAndChangesNone) {
  const FakeCamera camera;
  const std::string before = ReadExposureTime();

  EXPECT_EQ(Run({}), 2);
  EXPECT_THAT(mErrors, HasSubstr("GV01"));

  EXPECT_EQ(ReadExposureTime(), before);
  EXPECT_FALSE(HasSaved());
}

TEST(CameraBridgeExample, GenCPCamera_IsSetAndListed) {
  const BridgeRun bridge({"--simulate", "sim-grabber", "Serial0", "Gain", "6"});

  EXPECT_EQ(bridge.exitCode, 0) << bridge.run.GetErrors();
  EXPECT_THAT(bridge.run.GetOutput(), HasSubstr("\nGain: 6"));
}

TEST(CameraBridgeExample, CameraFile_IsConnectedByIt) {
  const BridgeRun bridge({"--simulate", "--file", CAMERA_FILE, "sim-grabber", "Serial1"});

  EXPECT_EQ(bridge.exitCode, 0) << bridge.run.GetErrors();
  EXPECT_THAT(bridge.run.GetOutput(), HasSubstr("Gain: "));
}

TEST(CameraBridgeExample, FeatureThatIsNotThere_FailsWithItsName) {
  const BridgeRun bridge({"--simulate", "sim-grabber", "Serial0", "NoSuchFeature", "6"});

  EXPECT_EQ(bridge.exitCode, 1);
  EXPECT_THAT(bridge.run.GetErrors(), HasSubstr("NoSuchFeature"));
}
