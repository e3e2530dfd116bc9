// Saving and loading of camera bridges, with and without a window.

#include "camerafixture.h"

#include "krpersistence/krconfigurationreader.h"
#include "krpersistence/krconfigurationwriter.h"
#include "temporaryfolder.h"

namespace krgui {

namespace {

class Saving : public CameraTest {
protected:
  void Write(KrConfigurationWriter& aWriter, KrConfigurationReader& aReader) {
    ASSERT_TRUE(aWriter.Save(mFile).IsOK());
    ASSERT_TRUE(aReader.Load(mFile).IsOK());
  }
  std::vector<std::string> GetIndex(const KrConfigurationReader& aReader) {
    KrPropertyList index;
    EXPECT_TRUE(aReader.Restore("CameraBridgeIndex", index).IsOK());
    std::vector<std::string> values;
    for (const KrProperty& property : index)
      values.push_back(property.GetValue().ToUtf8());
    return values;
  }
  KrResult Load(const KrConfigurationReader& aReader) {
    KrConfigurationReader reader = aReader;
    return mWindow->Load(reader, mErrors);
  }
  std::string GetGain() {
    KrString text;
    KrGenParameter* const gain = GetBridge(0).GetParameters()->Get("Gain");
    EXPECT_TRUE(gain->ToString(text).IsOK());
    return text.ToUtf8();
  }

  TemporaryFolder mFolder;
  const std::string mFile = mFolder.GetFile("bridges.xml");
  KrStringList mErrors;
};

} // namespace

TEST_F(Saving, NothingConnected_SavesAnEmptyIndex) {
  ASSERT_TRUE(mWindow->SetDevice(mDevice.get()).IsOK());
  KrConfigurationWriter writer;
  KrConfigurationReader reader;

  EXPECT_TRUE(mWindow->Save(writer).IsOK());

  Write(writer, reader);
  EXPECT_THAT(GetIndex(reader), testing::IsEmpty());
  EXPECT_THAT(reader.GetNames().GetCount(), 1u);
}

TEST_F(Saving, ConnectedBridges_ComeBackInAnOpenWindow) {
  Open();
  ConnectGenCP();
  ASSERT_TRUE(GetBridge(0).GetParameters()->Get("Gain")->FromString("7").IsOK());
  Pick(id::kSource, "Source2");
  Click(id::kSynchronization);
  ConnectCameraFile();
  KrConfigurationWriter writer;
  KrConfigurationReader reader;
  ASSERT_TRUE(mWindow->Save(writer).IsOK());
  Write(writer, reader);
  EXPECT_THAT(GetIndex(reader), testing::ElementsAre("Serial0", "Serial1"));
  ASSERT_TRUE(GetBridge(0).GetParameters()->Get("Gain")->FromString("1").IsOK());
  ASSERT_TRUE(mWindow->SetDevice(mDevice.get()).IsOK());
  ASSERT_FALSE(HasParameters());

  const KrResult loaded = Load(reader);

  ASSERT_TRUE(loaded.IsOK()) << loaded.GetDescription().CStr();
  EXPECT_TRUE(mErrors.IsEmpty());
  EXPECT_EQ(GetText(id::kDevicePort), "Serial0");
  EXPECT_TRUE(IsChecked(id::kGenCP));
  EXPECT_EQ(GetText(id::kGenCPStatus), MakeStatus(0));
  EXPECT_EQ(GetText(id::kSource), "Source2");
  EXPECT_TRUE(IsChecked(id::kSynchronization));
  EXPECT_TRUE(HasParameters());
  EXPECT_EQ(GetGain(), "7");
  Pick(id::kDevicePort, "Serial1");
  EXPECT_TRUE(IsChecked(id::kCameraFile));
  EXPECT_EQ(GetText(id::kPath), kTextCameraFile);
  EXPECT_EQ(GetText(id::kCameraFileStatus), MakeStatus(1));
  Pick(id::kDevicePort, "Bulk0");
  EXPECT_TRUE(IsChecked(id::kNone));
}

TEST_F(Saving, LoadedOverConnectedBridges_ReplacesThem) {
  Open();
  ConnectGenCP();
  KrConfigurationWriter writer;
  KrConfigurationReader reader;
  ASSERT_TRUE(mWindow->Save(writer).IsOK());
  Write(writer, reader);

  const KrResult loaded = Load(reader);

  ASSERT_TRUE(loaded.IsOK()) << loaded.GetDescription().CStr();
  EXPECT_TRUE(GetBridge(0).IsConnected());
  EXPECT_TRUE(HasParameters());
}

TEST_F(Saving, WithoutAWindow_LoadsTheSame) {
  ASSERT_TRUE(mWindow->SetDevice(mDevice.get()).IsOK());
  KrStringList ids;
  ASSERT_TRUE(GetBridge(0).GetGenCPXMLIDs(ids).IsOK());
  ASSERT_TRUE(GetBridge(0).ConnectGenCP(ids[0]).IsOK());
  KrConfigurationWriter writer;
  KrConfigurationReader reader;
  ASSERT_TRUE(mWindow->Save(writer).IsOK());
  Write(writer, reader);
  ASSERT_TRUE(mWindow->SetDevice(mDevice.get()).IsOK());

  EXPECT_TRUE(Load(reader).IsOK());

  EXPECT_TRUE(GetBridge(0).IsConnected());
}

TEST_F(Saving, PortThatTheDeviceLacks_IsToldOfAndSkipped) {
  Open();
  KrPropertyList index;
  index.Add({"any name", "Bulk3"});
  index.Add({"another", "Nonsense"});
  KrConfigurationWriter writer;
  ASSERT_TRUE(writer.Store("CameraBridgeIndex", index).IsOK());
  KrConfigurationReader reader;
  Write(writer, reader);

  EXPECT_EQ(Load(reader), KrResult::Code::NotFound);

  ASSERT_EQ(mErrors.GetCount(), 2u);
  EXPECT_STREQ(mErrors[0].CStr(),
               "Could not load camera bridge for port Bulk3 as the serial port does not exist for the device.");
  EXPECT_STREQ(mErrors[1].CStr(),
               "Could not load camera bridge for port Nonsense as the serial port does not exist for the device.");
}

TEST_F(Saving, NoIndex_IsNotFoundAndChangesNothing) {
  Open();
  ConnectGenCP();

  EXPECT_EQ(Load({}), KrResult::Code::NotFound);

  EXPECT_TRUE(mErrors.IsEmpty());
  EXPECT_TRUE(GetBridge(0).IsConnected());
  EXPECT_TRUE(HasParameters());
  EXPECT_EQ(GetText(id::kGenCPStatus), MakeStatus(0));
}

TEST_F(Saving, PortThatIsNamedAgainAndAgain_IsLoadedOnce) {
  Open();
  KrPropertyList index;
  for (int i = 0; i < 1000; ++i)
    index.Add({"", "Serial0"});
  KrConfigurationWriter writer;
  ASSERT_TRUE(writer.Store("CameraBridgeIndex", index).IsOK());
  KrConfigurationReader reader;
  Write(writer, reader);

  EXPECT_FALSE(Load(reader).IsOK());

  // As nothing is stored for it, each loading leaves a line.
  EXPECT_EQ(mErrors.GetCount(), 1u);
}

TEST_F(Saving, BridgeWithoutSettings_IsToldOfByItself) {
  Open();
  KrPropertyList index;
  index.Add({"", "Serial0"});
  KrConfigurationWriter writer;
  ASSERT_TRUE(writer.Store("CameraBridgeIndex", index).IsOK());
  KrConfigurationReader reader;
  Write(writer, reader);

  EXPECT_FALSE(Load(reader).IsOK());

  EXPECT_FALSE(mErrors.IsEmpty());
  EXPECT_TRUE(IsChecked(id::kNone));
}

} // namespace krgui
