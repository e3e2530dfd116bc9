// Camera bridges that are saved and loaded again.

#include "camerabridgefixture.h"

#include "krpersistence/krconfigurationreader.h"
#include "krpersistence/krconfigurationwriter.h"
#include "temporaryfolder.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <functional>
#include <utility>
#include <vector>

using testing::HasSubstr;

namespace {

constexpr const char* kName = "Serial1";

class CameraBridgeSavingTest : public testing::Test {
protected:
  /// A reader of what was saved.
  KrConfigurationReader ReadBack(const KrConfigurationWriter& aWriter) {
    const std::string path = mFolder.GetFile("settings.xml");
    EXPECT_TRUE(IsFine(aWriter.Save(path)));
    KrConfigurationReader reader;
    EXPECT_TRUE(IsFine(reader.Load(path)));
    return reader;
  }
  /// A reader of a list of properties.
  KrConfigurationReader ReadBack(const KrPropertyList& aProperties) {
    KrConfigurationWriter writer;
    EXPECT_TRUE(IsFine(writer.Store(kName, aProperties)));
    return ReadBack(writer);
  }
  static std::string Join(const KrStringList& aLines) {
    std::string text;
    for (const KrString& line : aLines)
      text += line.ToUtf8() + "\n";
    return text;
  }

  const TemporaryFolder mFolder;
};

KrPropertyList MakeGoodList() {
  KrPropertyList list;
  list.Add({"Way", "TolvanCameraFile"});
  list.Add({"Path", kTextCameraFile});
  list.Add({"Source", "Source1"});
  list.Add({"ParametersSync", "0"});
  list.Add({"Feature.Width", "320"});
  return list;
}

} // namespace

TEST_F(CameraBridgeSavingTest, CameraFile_SavedInOneProgram_IsAsItWasInTheNext) {
  KrConfigurationWriter writer;
  {
    BridgeLab lab;
    KrCameraBridge bridge(lab.GetDevice(), KrDeviceSerial::Serial1, nullptr);
    ASSERT_TRUE(IsFine(bridge.ConnectTolvanCameraFile(kTextCameraFile)));
    ASSERT_TRUE(IsFine(SetText(*bridge.GetParameters(), "Width", "320")));
    ASSERT_TRUE(IsFine(SetText(*bridge.GetParameters(), "OffsetX", "64")));
    ASSERT_TRUE(IsFine(SetText(*bridge.GetParameters(), "Gain", "12.5")));
    ASSERT_TRUE(IsFine(bridge.SetSource("Source1")));
    ASSERT_TRUE(IsFine(bridge.SetParametersSyncEnabled(true)));
    ASSERT_TRUE(IsFine(bridge.Save(kName, writer)));
  }
  const KrConfigurationReader reader = ReadBack(writer);
  BridgeLab lab;
  KrCameraBridge bridge(lab.GetDevice(), KrDeviceSerial::Serial1, nullptr);
  KrStringList errors;

  ASSERT_TRUE(IsFine(bridge.Load(kName, reader, errors))) << Join(errors);

  EXPECT_TRUE(errors.IsEmpty()) << Join(errors);
  KrString path;
  EXPECT_TRUE(bridge.GetTolvanCameraFilePath(path).IsOK());
  EXPECT_EQ(path, kTextCameraFile);
  EXPECT_EQ(bridge.GetSource(), "Source1");
  EXPECT_TRUE(bridge.GetParametersSyncEnabled());
  EXPECT_EQ(GetText(*bridge.GetParameters(), "Width"), "320");
  EXPECT_EQ(GetText(*bridge.GetParameters(), "OffsetX"), "64");
  EXPECT_EQ(GetText(*bridge.GetParameters(), "Gain"), "12.5");
}

TEST_F(CameraBridgeSavingTest, CameraFile_ByARelativePath_IsFoundFromAnotherDirectory) {
  const std::filesystem::path directory = std::filesystem::current_path();
  std::filesystem::current_path(mFolder.GetPath());
  const std::filesystem::path folder = std::filesystem::current_path();
  std::filesystem::create_directory("sub");
  std::filesystem::create_symlink(kTextCameraFile, "camera.yml");
  BridgeLab lab;
  KrCameraBridge bridge(lab.GetDevice(), KrDeviceSerial::Serial1, nullptr);
  const KrResult connected = bridge.ConnectTolvanCameraFile("./sub//../camera.yml");
  std::filesystem::current_path(directory);
  ASSERT_TRUE(IsFine(connected));
  KrConfigurationWriter writer;
  ASSERT_TRUE(IsFine(bridge.Save(kName, writer)));
  KrConfigurationWriter connection;
  ASSERT_TRUE(IsFine(bridge.SaveConnection(kName, connection)));

  for (const KrConfigurationWriter* saved : {&writer, &connection}) {
    KrStringList errors;
    EXPECT_TRUE(IsFine(bridge.Load(kName, ReadBack(*saved), errors))) << Join(errors);
    KrString path;
    EXPECT_TRUE(bridge.GetTolvanCameraFilePath(path).IsOK());
    EXPECT_EQ(path, (folder / "sub/../camera.yml").string());
  }
}

TEST_F(CameraBridgeSavingTest, GenCP_SavedInOneProgram_IsAsItWasInTheNext) {
  KrConfigurationWriter writer;
  KrString saved;
  {
    BridgeLab lab;
    KrCameraBridge bridge(lab.GetDevice(), KrDeviceSerial::Serial0, nullptr);
    ASSERT_TRUE(IsFine(ConnectGenCP(bridge)));
    ASSERT_TRUE(bridge.GetGenCPXMLID(saved).IsOK());
    ASSERT_TRUE(IsFine(SetText(*bridge.GetParameters(), "Height", "200")));
    ASSERT_TRUE(IsFine(SetText(*bridge.GetParameters(), "PixelFormat", "Mono12")));
    ASSERT_TRUE(IsFine(SetText(*bridge.GetParameters(), "ExposureTime", "1234.5")));
    ASSERT_TRUE(IsFine(bridge.Save(kName, writer)));
  }
  const KrConfigurationReader reader = ReadBack(writer);
  BridgeLab lab;
  KrCameraBridge bridge(lab.GetDevice(), KrDeviceSerial::Serial0, nullptr);
  KrStringList errors;

  ASSERT_TRUE(IsFine(bridge.Load(kName, reader, errors))) << Join(errors);

  EXPECT_TRUE(errors.IsEmpty()) << Join(errors);
  KrString id;
  EXPECT_TRUE(bridge.GetGenCPXMLID(id).IsOK());
  EXPECT_EQ(id, saved);
  EXPECT_FALSE(bridge.GetParametersSyncEnabled());
  EXPECT_EQ(GetText(*bridge.GetParameters(), "Height"), "200");
  EXPECT_EQ(GetText(*bridge.GetParameters(), "PixelFormat"), "Mono12");
  EXPECT_EQ(GetText(*bridge.GetParameters(), "ExposureTime"), "1234.5");
}

TEST_F(CameraBridgeSavingTest, Save_OfAnUnconnectedBridge_StoresNothing) {
  BridgeLab lab;
  KrCameraBridge bridge(lab.GetDevice(), KrDeviceSerial::Serial1, nullptr);
  KrConfigurationWriter writer;

  EXPECT_EQ(bridge.Save(kName, writer), KrResult::Code::WrongState);

  EXPECT_FALSE(ReadBack(writer).Contains(kName));
}

TEST_F(CameraBridgeSavingTest, Load_OfANameThatIsNotStored_LeavesTheBridgeAsItIs) {
  BridgeLab lab;
  KrCameraBridge bridge(lab.GetDevice(), KrDeviceSerial::Serial1, nullptr);
  ASSERT_TRUE(IsFine(bridge.ConnectTolvanCameraFile(kTextCameraFile)));
  KrStringList errors;

  EXPECT_EQ(bridge.Load("Serial0", ReadBack(MakeGoodList()), errors), KrResult::Code::NotFound);

  EXPECT_EQ(errors.GetCount(), 1u);
  EXPECT_TRUE(bridge.IsConnected());
}

TEST_F(CameraBridgeSavingTest, Load_OfDamagedLists_TellsEachDamageAndUsesTheRest) {
  struct Row {
    const char* name;
    std::function<void(KrPropertyList&)> damage;
    const char* line;
    bool isConnected;
  };
  const auto set = [](const char* aName, const char* aValue) {
    return [=](KrPropertyList& aList) { aList.GetProperty(aName)->SetValue(aValue); };
  };
  const auto drop = [](const char* aName) {
    return [=](KrPropertyList& aList) { aList.GetProperty(aName)->SetName("Gone"); };
  };
  const std::vector<Row> rows = {
      {"unknown way", set("Way", "Telepathy"), "The way \"Telepathy\" to the camera is not known.", false},
      {"missing way", drop("Way"), "The property \"Way\" is missing.", false},
      {"missing path", drop("Path"), "The property \"Path\" is missing.", false},
      {"empty path", set("Path", ""), "The property \"Path\" is empty.", false},
      {"path to nothing", set("Path", "/nowhere/x.yml"), "Connecting by a Tolvan camera file: ", false},
      {"no identifier", set("Way", "GenCP"), "The property \"XMLID\" is missing.", false},
      {"no template", set("Way", "CLProtocol"), "The property \"Template\" is missing.", false},
      {"missing source", drop("Source"), "The property \"Source\" is missing.", true},
      {"unknown source", set("Source", "Source9"), "Choosing the source \"Source9\": ", true},
      {"missing synchronisation", drop("ParametersSync"), "The property \"ParametersSync\" is missing.", true},
      {"wrong boolean", set("ParametersSync", "maybe"), "\"ParametersSync\" is neither 0 nor 1, but \"maybe\"", true},
      {"wrong value", set("Feature.Width", "wide"), "Width", true},
      {"value out of range", set("Feature.Width", "100000"), "Width", true},
      {"unknown feature", [](KrPropertyList& aList) { aList.GetProperty("Feature.Width")->SetName("Feature.Warp"); },
       "Warp", true},
      {"feature without a name",
       [](KrPropertyList& aList) {
         aList.Add({"Feature.", "5"});
       },
       "The value \"5\" is that of no feature.", true},
  };
  BridgeLab lab;
  KrCameraBridge bridge(lab.GetDevice(), KrDeviceSerial::Serial1, nullptr);
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    KrPropertyList list = MakeGoodList();
    row.damage(list);
    KrStringList errors;
    errors.Add("of another bridge");

    const KrResult result = bridge.Load(kName, ReadBack(list), errors);

    EXPECT_FALSE(result.IsOK());
    EXPECT_FALSE(result.GetDescription().IsEmpty());
    ASSERT_EQ(errors.GetCount(), 2u) << Join(errors);
    EXPECT_THAT(errors[1].ToUtf8(), HasSubstr("Camera bridge Serial1: "));
    EXPECT_THAT(errors[1].ToUtf8(), HasSubstr(row.line));
    EXPECT_EQ(bridge.IsConnected(), row.isConnected);
  }
}

TEST_F(CameraBridgeSavingTest, Load_OfASourceThatTheDeviceLacks_LeavesTheFormerOneAlone) {
  BridgeLab lab;
  KrCameraBridge bridge(lab.GetDevice(), KrDeviceSerial::Serial1, nullptr);
  ASSERT_TRUE(IsFine(bridge.SetSource("Source1")));
  KrPropertyList list = MakeGoodList();
  list.GetProperty("Source")->SetValue("Source9");
  list.GetProperty("ParametersSync")->SetValue("1");
  KrStringList errors;

  EXPECT_EQ(bridge.Load(kName, ReadBack(list), errors), KrResult::Code::InvalidInput);

  EXPECT_EQ(bridge.GetSource(), "");
  EXPECT_FALSE(bridge.GetParametersSyncEnabled());
  EXPECT_TRUE(bridge.IsConnected());
}

TEST_F(CameraBridgeSavingTest, Load_OfSeveralDamages_TellsThemAll) {
  BridgeLab lab;
  KrCameraBridge bridge(lab.GetDevice(), KrDeviceSerial::Serial1, nullptr);
  KrPropertyList list = MakeGoodList();
  list.GetProperty("ParametersSync")->SetValue("");
  list.GetProperty("Source")->SetValue("Nowhere");
  list.Add({"Feature.Height", "-1"});
  list.Add({"Feature.Gain", "3"});
  KrStringList errors;

  EXPECT_EQ(bridge.Load(kName, ReadBack(list), errors), KrResult::Code::BadData);

  EXPECT_EQ(errors.GetCount(), 3u) << Join(errors);
  ASSERT_TRUE(bridge.IsConnected());
  EXPECT_EQ(GetText(*bridge.GetParameters(), "Width"), "320");
  EXPECT_EQ(GetText(*bridge.GetParameters(), "Gain"), "3");
}
