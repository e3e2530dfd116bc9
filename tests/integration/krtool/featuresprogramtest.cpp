#include "fakecamera.h"
#include "programrun.h"
#include "temporaryfolder.h"

#include <gmock/gmock.h>

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr const char* kCamera = "127.0.0.1";

// What a run wrote; the test fails unless it ended with 0.
std::string RunTool(const std::vector<std::string>& aArguments) {
  ProgramRun run(KRTOOL_PATH, aArguments);
  EXPECT_EQ(run.Finish(), 0) << run.GetErrors();
  return run.GetOutput();
}

// The program's own description says of no feature that it is streamable.
std::string MarkStreamable(std::string aDescription, const std::vector<std::string>& aNames) {
  for (const std::string& name : aNames) {
    const std::size_t node = aDescription.find(" Name=\"" + name + "\"");
    const std::size_t value = aDescription.find("<pValue>", node);
    EXPECT_NE(value, std::string::npos) << name;
    if (value != std::string::npos)
      aDescription.insert(value, "<Streamable>Yes</Streamable>");
  }
  return aDescription;
}

class FeaturesProgram : public testing::Test {
protected:
  TemporaryFolder mFolder;
};

TEST_F(FeaturesProgram, IndependentCamera_IsListedFeatureByFeature) {
  const FakeCamera camera("FEAT1");
  ASSERT_TRUE(camera.IsAnswering());

  const std::string table = RunTool({"features", kCamera});

  EXPECT_THAT(table, StartsWith("path\tname\ttype\tvisibility\taccess\tvalue\tunit\tmin\tmax\tincrement\terror\n"));
  EXPECT_THAT(table, HasSubstr("\nRoot\\DeviceControl\tDeviceID\tString\tBeginner\tRO\tFEAT1\t\t\t\t\t\n"));
  EXPECT_THAT(table, HasSubstr("\nRoot\\ImageFormatControl\tWidth\tInteger\tBeginner\tRW\t512\t\t1\t2048\t1\t\n"));
  EXPECT_THAT(table, HasSubstr("\tPixelFormat\tEnumeration\tBeginner\tRW\tMono8\t"));
}

TEST_F(FeaturesProgram, CameraThatAnotherControls_CanBeReadAndNotBeSet) {
  const FakeCamera camera("FEAT2");
  ASSERT_TRUE(camera.IsAnswering());
  ProgramRun stream(KRTOOL_PATH, {"stream", kCamera, "--frames", "1000000"});
  ASSERT_TRUE(stream.AwaitError("Streaming from")) << stream.GetErrors();

  EXPECT_EQ(RunTool({"get", kCamera, "Width"}), "512\n");
  EXPECT_THAT(RunTool({"features", kCamera, "--category", "ImageFormatControl"}), HasSubstr("\tHeight\t"));
  EXPECT_THAT(RunTool({"xml", kCamera}), HasSubstr("<RegisterDescription"));
  ProgramRun set(KRTOOL_PATH, {"set", kCamera, "Width", "64"});
  EXPECT_EQ(set.Finish(), 1);
  EXPECT_THAT(set.GetErrors(), StartsWith("krtool: opening "));
}

TEST_F(FeaturesProgram, ValueThatIsSet_IsSeenByTheNextProcess) {
  const FakeCamera camera("FEAT3");
  ASSERT_TRUE(camera.IsAnswering());

  EXPECT_EQ(RunTool({"set", kCamera, "Width", "320", "PixelFormat", "Mono16"}), "Width\t320\nPixelFormat\tMono16\n");
  EXPECT_EQ(RunTool({"get", kCamera, "PixelFormat", "Width"}), "PixelFormat\tMono16\nWidth\t320\n");
}

TEST_F(FeaturesProgram, ValueOutOfRange_IsToldWithTheRange) {
  const FakeCamera camera("FEAT4");
  ASSERT_TRUE(camera.IsAnswering());

  ProgramRun set(KRTOOL_PATH, {"set", kCamera, "Width", "4096"});

  EXPECT_EQ(set.Finish(), 1);
  EXPECT_EQ(set.GetOutput(), "");
  EXPECT_THAT(set.GetErrors(), AllOf(HasSubstr("4096"), HasSubstr("1 to 2048")));
  EXPECT_EQ(RunTool({"get", kCamera, "Width"}), "512\n");
}

TEST_F(FeaturesProgram, Description_IsTheSameInAFileAndReadFromIt) {
  const FakeCamera camera("FEAT5");
  ASSERT_TRUE(camera.IsAnswering());
  const std::string path = mFolder.GetFile("camera.xml");

  const std::string text = RunTool({"xml", kCamera});
  EXPECT_EQ(RunTool({"xml", kCamera, path}), "bytes=" + std::to_string(text.size()) + " file=" + path + "\n");

  EXPECT_EQ(TemporaryFolder::ReadFile(path), text);
  EXPECT_EQ(RunTool({"xml", path}), text);
  EXPECT_THAT(RunTool({"features", path}), HasSubstr("\tWidth\tInteger\t"));
}

TEST_F(FeaturesProgram, ListingThatNobodyReadsOn_EndsSilently) {
  const FakeCamera camera("FEAT10");
  ASSERT_TRUE(camera.IsAnswering());

  for (const char* command : {"xml", "features"}) {
    ProgramRun run(KRTOOL_PATH, {command, kCamera});
    run.CloseOutput();

    EXPECT_NE(run.Finish(), 0) << command;
    EXPECT_EQ(run.GetErrors(), "") << command;
  }
}

TEST_F(FeaturesProgram, Entries_AreListedOfACameraAndOfAFile) {
  const FakeCamera camera("FEAT11");
  ASSERT_TRUE(camera.IsAnswering());
  const std::string path = mFolder.GetFile("camera.xml");
  RunTool({"xml", kCamera, path});

  const std::string entries = RunTool({"entries", kCamera, "PixelFormat"});

  EXPECT_THAT(entries, AllOf(StartsWith("entry\tvalue\taccess\t"), HasSubstr("\nMono8\t17301505\t")));
  EXPECT_EQ(RunTool({"entries", path, "PixelFormat"}), entries);
}

TEST_F(FeaturesProgram, Command_IsExecuted) {
  const FakeCamera camera("FEAT6");
  ASSERT_TRUE(camera.IsAnswering());

  EXPECT_EQ(RunTool({"execute", kCamera, "TriggerSoftware"}), "");
  ProgramRun wrong(KRTOOL_PATH, {"execute", kCamera, "Width"});
  EXPECT_EQ(wrong.Finish(), 1);
  EXPECT_THAT(wrong.GetErrors(), HasSubstr("is no command"));
}

TEST_F(FeaturesProgram, SettingsThatAreSaved_AreThereAgainWhenTheyAreLoaded) {
  const std::string descriptionPath = mFolder.GetFile("camera.xml");
  {
    const FakeCamera plain("FEAT7");
    ASSERT_TRUE(plain.IsAnswering());
    TemporaryFolder::WriteFile(
        descriptionPath,
        MarkStreamable(RunTool({"xml", kCamera}), {"Width", "Height", "OffsetX", "PixelFormat", "ExposureTimeAbs"}));
  }
  FakeCameraOptions options;
  options.serialNumber = "FEAT8";
  options.descriptionFile = descriptionPath;
  const FakeCamera camera(options);
  ASSERT_TRUE(camera.IsAnswering());
  const std::string path = mFolder.GetFile("settings.txt");
  const std::vector<std::string> names = {"get",     kCamera,       "Width",          "Height",
                                          "OffsetX", "PixelFormat", "ExposureTimeAbs"};
  RunTool({"set", kCamera, "Width", "320", "OffsetX", "16", "PixelFormat", "Mono16", "ExposureTimeAbs", "1234.5"});
  const std::string before = RunTool(names);

  EXPECT_EQ(RunTool({"save", kCamera, path}), "settings=5 problems=0 file=" + path + "\n");
  RunTool(
      {"set", kCamera, "Width", "64", "Height", "48", "OffsetX", "0", "PixelFormat", "Mono8", "ExposureTimeAbs", "99"});
  EXPECT_EQ(RunTool({"load", kCamera, path}), "settings=5 problems=0\n");

  EXPECT_EQ(RunTool(names), before);
  EXPECT_THAT(TemporaryFolder::ReadFile(path),
              AllOf(StartsWith("# {05D8C294-F295-4dfb-9D01-096BD04049F4}\n"), HasSubstr("\nWidth\t320\n"),
                    HasSubstr("\nPixelFormat\tMono16\n")));
}

TEST_F(FeaturesProgram, SettingsThatTheCameraRefuses_AreNamedEachAndTheOthersSet) {
  const FakeCamera camera("FEAT9");
  ASSERT_TRUE(camera.IsAnswering());
  const std::string path = mFolder.GetFile("settings.txt");
  TemporaryFolder::WriteFile(path, "# {05D8C294-F295-4dfb-9D01-096BD04049F4}\r\nWidth\t9999\r\nNobody\t1\r\n"
                                   "Height\t240\r\n");

  ProgramRun load(KRTOOL_PATH, {"load", kCamera, path});

  EXPECT_EQ(load.Finish(), 1);
  EXPECT_EQ(load.GetOutput(), "settings=3 problems=2\n");
  EXPECT_THAT(load.GetErrors(), AllOf(HasSubstr("krtool: Width: 9999 is wanted"), HasSubstr("krtool: Nobody: ")));
  EXPECT_EQ(RunTool({"get", kCamera, "Height"}), "240\n");
}

TEST_F(FeaturesProgram, FileThatHoldsNoSettings_IsRefusedBeforeTheCameraIsLookedFor) {
  const std::string path = mFolder.GetFile("settings.txt");
  TemporaryFolder::WriteFile(path, "Width\t1\n");

  ProgramRun load(KRTOOL_PATH, {"load", "nobody", path});

  EXPECT_EQ(load.Finish(), 1);
  EXPECT_THAT(load.GetErrors(), AllOf(HasSubstr(path), HasSubstr("Line 1 ")));
}

TEST_F(FeaturesProgram, FileThatIsThere_StaysWithoutForce) {
  const std::string path = mFolder.GetFile("settings.txt");
  TemporaryFolder::WriteFile(path, "old");

  for (const char* command : {"save", "xml"}) {
    ProgramRun run(KRTOOL_PATH, {command, "nobody", path});

    EXPECT_EQ(run.Finish(), 1) << command;
    EXPECT_THAT(run.GetErrors(), HasSubstr("--force replaces it.")) << command;
  }
  EXPECT_EQ(TemporaryFolder::ReadFile(path), "old");
}

TEST_F(FeaturesProgram, FileThatIsNoDescription_IsRefusedWithLineAndColumn) {
  const std::string path = mFolder.GetFile("broken.xml");
  TemporaryFolder::WriteFile(path, "<RegisterDescription>\n<Integer></Float>\n</RegisterDescription>\n");

  ProgramRun features(KRTOOL_PATH, {"features", path});
  ProgramRun missing(KRTOOL_PATH, {"features", mFolder.GetFile("missing.xml")});

  EXPECT_EQ(features.Finish(), 1);
  EXPECT_THAT(features.GetErrors(), AllOf(HasSubstr("line 2"), HasSubstr("column")));
  EXPECT_EQ(features.GetOutput(), "");
  EXPECT_EQ(missing.Finish(), 1);
  EXPECT_THAT(missing.GetErrors(), HasSubstr("No such file"));
}

TEST_F(FeaturesProgram, FaultsOfADescription_AreCountedAndListedOnDemand) {
  const std::string path = mFolder.GetFile("faults.xml");
  TemporaryFolder::WriteFile(
      path, R"(<RegisterDescription ModelName="M" VendorName="V" StandardNameSpace="None" SchemaMajorVersion="1"
SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0" SubMinorVersion="0"
xmlns="http://www.genicam.org/GenApi/Version_1_1"><Category Name="Root"><pFeature>Gain</pFeature></Category>
<Integer Name="Gain"><Visibility>Everybody</Visibility><Value>1</Value></Integer></RegisterDescription>)");

  ProgramRun counted(KRTOOL_PATH, {"features", path});
  ProgramRun listed(KRTOOL_PATH, {"features", path, "--faults"});

  EXPECT_EQ(counted.Finish(), 0);
  EXPECT_EQ(listed.Finish(), 0);
  EXPECT_EQ(counted.GetErrors(), "krtool: the description has 1 fault; --faults lists them.\n");
  EXPECT_THAT(listed.GetErrors(), AllOf(StartsWith("krtool: the description has 1 fault:\nkrtool: "), HasSubstr("Gain"),
                                        HasSubstr("Everybody")));
  EXPECT_EQ(counted.GetOutput(), listed.GetOutput());
}

TEST_F(FeaturesProgram, FileWhereADeviceIsWanted_IsRefused) {
  const std::string path = mFolder.GetFile("camera.xml");

  ProgramRun set(KRTOOL_PATH, {"set", path, "Width", "1"});

  EXPECT_EQ(set.Finish(), 1);
  EXPECT_THAT(set.GetErrors(), HasSubstr("is a file"));
  EXPECT_THAT(mFolder.GetNames(), IsEmpty());
}

} // namespace
