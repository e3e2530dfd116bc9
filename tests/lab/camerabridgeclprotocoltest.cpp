// Camera bridges by CL Protocol: the driver that comes with the library, and the lab's camera on a bulk port.

#include "camerabridgeclfixture.h"

#include "krpersistence/krconfigurationreader.h"
#include "krpersistence/krconfigurationwriter.h"
#include "temporaryfolder.h"

using testing::HasSubstr;

TEST_F(CameraBridgeCLProtocolTest, Connected_ReadsAndSetsTheCameraAndSaysWhatWith) {
  BridgeLab lab;
  KrCameraBridge bridge(lab.GetDevice(), KrDeviceSerial::Bulk0, nullptr);

  ASSERT_TRUE(IsFine(Connect(bridge)));

  EXPECT_THAT(mCameraID.ToUtf8(), HasSubstr("SIM_CL_03"));
  KrString text;
  EXPECT_TRUE(bridge.GetCLProtocolCameraID(text).IsOK());
  EXPECT_EQ(text, mCameraID);
  EXPECT_TRUE(bridge.GetCLProtocolTemplate(text).IsOK());
  EXPECT_EQ(text, mTemplate);
  EXPECT_TRUE(bridge.GetCLProtocolXMLID(text).IsOK());
  EXPECT_EQ(text, mXMLID);
  EXPECT_EQ(bridge.GetGenCPXMLID(text), KrResult::Code::WrongState);
  EXPECT_EQ(GetText(*bridge.GetParameters(), "DeviceModelName"), "Simulated CLProtocol Camera");
  ASSERT_TRUE(IsFine(SetText(*bridge.GetParameters(), "Gain", "4.5")));
  bridge.Disconnect();
  ASSERT_TRUE(IsFine(bridge.ConnectCLProtocol(mTemplate, mXMLID)));
  EXPECT_EQ(GetText(*bridge.GetParameters(), "Gain"), "4.5");
}

TEST_F(CameraBridgeCLProtocolTest, SavedInOneProgram_IsAsItWasInTheNext) {
  const TemporaryFolder folder;
  const std::string path = folder.GetFile("settings.xml");
  {
    BridgeLab lab;
    KrCameraBridge bridge(lab.GetDevice(), KrDeviceSerial::Bulk0, nullptr);
    ASSERT_TRUE(IsFine(Connect(bridge)));
    ASSERT_TRUE(IsFine(SetText(*bridge.GetParameters(), "Width", "320")));
    KrConfigurationWriter writer;
    ASSERT_TRUE(IsFine(bridge.Save("Bulk0", writer)));
    ASSERT_TRUE(IsFine(writer.Save(path)));
  }
  BridgeLab lab;
  KrCameraBridge bridge(lab.GetDevice(), KrDeviceSerial::Bulk0, nullptr);
  KrConfigurationReader reader;
  ASSERT_TRUE(IsFine(reader.Load(path)));
  KrStringList errors;

  ASSERT_TRUE(IsFine(bridge.Load("Bulk0", reader, errors)));

  EXPECT_TRUE(errors.IsEmpty());
  KrString id;
  EXPECT_TRUE(bridge.GetCLProtocolXMLID(id).IsOK());
  EXPECT_EQ(id, mXMLID);
  EXPECT_EQ(GetText(*bridge.GetParameters(), "Width"), "320");
}

TEST_F(CameraBridgeCLProtocolTest, Synchronisation_SetsTheDevice) {
  BridgeLab lab;
  KrCameraBridge bridge(lab.GetDevice(), KrDeviceSerial::Bulk0, nullptr);
  ASSERT_TRUE(IsFine(bridge.SetParametersSyncEnabled(true)));
  ASSERT_TRUE(IsFine(Connect(bridge)));

  ASSERT_TRUE(IsFine(SetText(*bridge.GetParameters(), "Height", "512")));

  EXPECT_TRUE(WaitUntil(
      [&] { return GetText(lab.GetArray(), "Height") == "512" && GetText(lab.GetArray(), "Width") == "1280"; }));
}

TEST_F(CameraBridgeCLProtocolTest, Directories_AreThoseThatTheProgramNames) {
  KrStringList nowhere;
  nowhere.Add("/nowhere");
  KrStringList drivers;
  drivers.Add("/nowhere");
  drivers.Add(KR_TEST_DRIVERS);
  KrStringList templates;

  KrCameraBridge::SetCLProtocolDirectories(nowhere);
  EXPECT_TRUE(IsFine(KrCameraBridge::GetCLProtocolTemplates(templates)));
  EXPECT_TRUE(templates.IsEmpty());

  KrCameraBridge::SetCLProtocolDirectories(drivers);
  EXPECT_TRUE(IsFine(KrCameraBridge::GetCLProtocolTemplates(templates)));
  ASSERT_EQ(templates.GetCount(), 1u);
  EXPECT_EQ(templates[0], mTemplate);
}

TEST_F(CameraBridgeCLProtocolTest, Template_ThatNoDriverHas_IsInvalidInput) {
  BridgeLab lab;
  KrCameraBridge bridge(lab.GetDevice(), KrDeviceSerial::Bulk0, nullptr);
  KrString id;
  KrStringList ids;

  EXPECT_EQ(bridge.ProbeCLProtocol("Nowhere#driver#Maker", id, ids), KrResult::Code::InvalidInput);
  EXPECT_EQ(bridge.ConnectCLProtocol("Nowhere#driver#Maker", "any"), KrResult::Code::InvalidInput);
  EXPECT_FALSE(bridge.IsConnected());
}

TEST_F(CameraBridgeCLProtocolTest, CameraOfAnotherProtocol_IsNotFound) {
  BridgeLab lab;
  KrCameraBridge bridge(lab.GetDevice(), KrDeviceSerial::Serial1, nullptr);

  EXPECT_EQ(Connect(bridge), KrResult::Code::NotFound);
}

TEST_F(CameraBridgeCLProtocolTest, LostDevice_IsConnectionLostUntilItIsDisconnected) {
  BridgeLab lab;
  KrCameraBridge bridge(lab.GetDevice(), KrDeviceSerial::Bulk0, nullptr);
  ASSERT_TRUE(IsFine(Connect(bridge)));
  ASSERT_TRUE(lab.Lose().IsOK());

  EXPECT_EQ(GetText(*bridge.GetParameters(), "Width"), "ConnectionLost");

  EXPECT_TRUE(bridge.IsConnected());
  bridge.Disconnect();
  EXPECT_EQ(Connect(bridge), KrResult::Code::ConnectionLost);
}
