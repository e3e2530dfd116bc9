#include "deviceselection.h"
#include "executecommand.h"
#include "featurescommand.h"
#include "krdevice/krdevice.h"
#include "labfixture.h"
#include "settingscommands.h"
#include "temporaryfolder.h"
#include "valuecommands.h"
#include "xmlcommand.h"

#include <sstream>

namespace krtool {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

class FeatureCommands : public LabTest {
protected:
  using Command = int (*)(KrSystem&, const CommandLine&, std::ostream&, std::ostream&);

  // What the command wrote; the test fails unless it ended with aExitCode.
  std::string Run(Command aCommand, CommandLine aCommandLine, int aExitCode = 0) {
    aCommandLine.device = aCommandLine.device.empty() ? "sim-mono" : aCommandLine.device;
    std::ostringstream out;
    std::ostringstream errors;
    EXPECT_EQ(aCommand(mSystem, aCommandLine, out, errors), aExitCode) << errors.str();
    mErrors = errors.str();
    return out.str();
  }
  std::string Get(const std::vector<std::string>& aNames) { return Run(RunGet, {.verb = Verb::Get, .names = aNames}); }
  std::string Set(const std::vector<std::string>& aPairs, int aExitCode = 0) {
    return Run(RunSet, {.verb = Verb::Set, .names = aPairs}, aExitCode);
  }

  TemporaryFolder mFolder;
  std::string mErrors;
};

TEST_F(FeatureCommands, SimulatedCamera_IsListedWithoutFaultsAndErrors) {
  const std::string table = Run(RunFeatures, {.verb = Verb::Features});

  EXPECT_THAT(table, HasSubstr("\nRoot\\ImageFormatControl\tWidth\tInteger\tBeginner\tRW\t1280\t"));
  EXPECT_THAT(table, HasSubstr("\tPixelFormat\tEnumeration\tBeginner\tRW\tMono8\t"));
  EXPECT_EQ(mErrors, "");
}

TEST_F(FeatureCommands, SimulatedUSB3Camera_IsListedAndReadAsOthersAre) {
  const std::string camera = "4B5200000101";

  EXPECT_THAT(Run(RunFeatures, {.verb = Verb::Features, .device = camera}), HasSubstr("\tWidth\tInteger\t"));
  EXPECT_EQ(mErrors, "");
  EXPECT_THAT(Run(RunGet, {.verb = Verb::Get, .device = camera, .names = {"Width"}}), MatchesRegex("[0-9]+\n"));
  EXPECT_THAT(Run(RunXml, {.verb = Verb::Xml, .device = camera}), HasSubstr("<RegisterDescription"));
}

TEST_F(FeatureCommands, Category_LeavesOutTheOthers) {
  const std::string table = Run(RunFeatures, {.verb = Verb::Features, .category = "AnalogControl"});

  EXPECT_THAT(table, HasSubstr("\tGain\t"));
  EXPECT_THAT(table, testing::Not(HasSubstr("\tWidth\t")));
}

TEST_F(FeatureCommands, ModulesOfThisHost_AreListedAndReadInTheDevicesPlace) {
  const std::string stream = Run(RunFeatures, {.verb = Verb::Features, .module = FeatureModule::Stream});
  const std::string connection = Run(RunFeatures, {.verb = Verb::Features, .module = FeatureModule::Transport});

  EXPECT_THAT(stream, HasSubstr("\tStreamBufferCountManual\tInteger\tBeginner\tRW\t16\t"));
  EXPECT_THAT(connection, HasSubstr("\tDeviceAccessStatus\tEnumeration\tBeginner\tRO\tOpenReadOnly\t"));
  EXPECT_EQ(Run(RunGet, {.verb = Verb::Get, .names = {"StreamIsGrabbing"}, .module = FeatureModule::Stream}), "0\n");
}

TEST_F(FeatureCommands, ModuleOfAFile_IsRefused) {
  EXPECT_EQ(Run(RunFeatures, {.verb = Verb::Features, .device = "camera.xml", .module = FeatureModule::Stream}, 1), "");

  EXPECT_THAT(mErrors, HasSubstr("a device is wanted"));
}

TEST_F(FeatureCommands, UnknownCategoryAndUnknownDevice_FailWithWhatThereIs) {
  EXPECT_EQ(Run(RunFeatures, {.verb = Verb::Features, .category = "Nothing"}, 1), "");
  EXPECT_THAT(mErrors, HasSubstr("AnalogControl"));
  EXPECT_EQ(Run(RunFeatures, {.verb = Verb::Features, .device = "nobody"}, 1), "");
  EXPECT_THAT(mErrors, HasSubstr("\"nobody\""));
}

TEST_F(FeatureCommands, Values_AreSetAndReadAgain) {
  EXPECT_EQ(Set({"Gain", "2.5", "PixelFormat", "Mono16"}), "Gain\t2.5\nPixelFormat\tMono16\n");

  EXPECT_EQ(Get({"PixelFormat"}), "Mono16\n");
  EXPECT_EQ(Get({"Gain"}), "2.5\n");
}

TEST_F(FeatureCommands, EntryThatTheCameraLacks_FailsWithThoseItHas) {
  Set({"PixelFormat", "RGB8"}, 1);

  EXPECT_THAT(mErrors, AllOf(StartsWith("krtool: setting PixelFormat of "), HasSubstr("Mono12p")));
}

TEST_F(FeatureCommands, CameraUnderControl_IsReadAndNotSet) {
  const KrDeviceInfo* info = nullptr;
  ASSERT_TRUE(krapps::SelectDevice(mSystem, "sim-mono", info).IsOK());
  std::unique_ptr<KrDevice> controller;
  ASSERT_TRUE(KrDevice::Open(*info, KrDeviceAccess::Control, controller).IsOK());

  EXPECT_EQ(Get({"Width"}), "1280\n");
  Set({"Width", "640"}, 1);
  EXPECT_THAT(mErrors, StartsWith("krtool: opening "));
}

TEST_F(FeatureCommands, CommandThatTakesItsTime_IsAwaited) {
  EXPECT_EQ(Run(RunExecute, {.verb = Verb::Execute, .names = {"SimulatedCalibration"}}), "");
  Run(RunExecute, {.verb = Verb::Execute, .names = {"SimulatedCalibration"}, .timeoutMs = 1}, 1);

  EXPECT_THAT(mErrors, AllOf(HasSubstr("SimulatedCalibration"), HasSubstr("1 ms")));
}

TEST_F(FeatureCommands, Description_IsWrittenAndReadAsAFile) {
  const std::string path = mFolder.GetFile("camera.xml");

  const std::string text = Run(RunXml, {.verb = Verb::Xml});
  const std::string said = Run(RunXml, {.verb = Verb::Xml, .file = path});

  EXPECT_THAT(text, HasSubstr("<RegisterDescription"));
  EXPECT_EQ(TemporaryFolder::ReadFile(path), text);
  EXPECT_EQ(said, "bytes=" + std::to_string(text.size()) + " file=" + path + "\n");
  EXPECT_THAT(Run(RunFeatures, {.verb = Verb::Features, .device = path}), HasSubstr("\tWidth\tInteger\t"));
}

TEST_F(FeatureCommands, Settings_AreSavedAndLoadedUnderEveryPositionOfTheirSelectors) {
  const std::string path = mFolder.GetFile("settings.txt");
  const std::vector<std::string> names = {"Width", "OffsetX", "ExposureTime", "TriggerSelector", "TriggerDelay"};
  Set({"Width", "640", "OffsetX", "320", "ExposureTime", "2500", "TriggerSelector", "AcquisitionStart", "TriggerDelay",
       "7", "TriggerSelector", "FrameStart", "TriggerDelay", "5"});
  const std::string before = Get(names);

  EXPECT_THAT(Run(RunSave, {.verb = Verb::Save, .file = path}), MatchesRegex("settings=[0-9]+ problems=0 file=.*\n"));
  Set({"TriggerDelay", "1", "TriggerSelector", "AcquisitionStart", "TriggerDelay", "2", "OffsetX", "0", "Width", "1280",
       "ExposureTime", "1000"});
  EXPECT_THAT(Run(RunLoad, {.verb = Verb::Load, .file = path}), MatchesRegex("settings=[0-9]+ problems=0\n"));

  EXPECT_EQ(mErrors, "");
  EXPECT_EQ(Get(names), before);
  EXPECT_THAT(Set({"TriggerSelector", "AcquisitionStart"}), HasSubstr("AcquisitionStart"));
  EXPECT_EQ(Get({"TriggerDelay"}), "7\n");
}

TEST_F(FeatureCommands, SettingsThatDoNotFit_AreNamedEachWithTheRestSet) {
  const std::string path = mFolder.GetFile("settings.txt");
  TemporaryFolder::WriteFile(path, "# {05D8C294-F295-4dfb-9D01-096BD04049F4}\nGain\t1000000\nNobody\t1\nWidth\t640\n");

  EXPECT_EQ(Run(RunLoad, {.verb = Verb::Load, .file = path}, 1), "settings=3 problems=2\n");

  EXPECT_THAT(mErrors, AllOf(HasSubstr("krtool: Gain: 1000000 is wanted"), HasSubstr("krtool: Nobody: ")));
  EXPECT_EQ(Get({"Width"}), "640\n");
}

} // namespace
} // namespace krtool
