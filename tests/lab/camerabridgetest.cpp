// Camera bridges end to end, each way with a camera of the built-in lab.

#include "camerabridgefixture.h"

#include "krdevice/krdeviceadapter.h"
#include "krserial/krdeviceserialspeed.h"
#include "temporaryfolder.h"

#include <gmock/gmock.h>

namespace {

class CameraBridgeTest : public testing::Test {
protected:
  BridgeLab mLab;
  KrCameraBridge mGenCP{mLab.GetDevice(), KrDeviceSerial::Serial0, nullptr};
  KrCameraBridge mText{mLab.GetDevice(), KrDeviceSerial::Serial1, nullptr};
};

} // namespace

TEST_F(CameraBridgeTest, UnconnectedBridge_HasNoParametersAndIsConnectedInNoWay) {
  KrString text = "as it was";

  EXPECT_FALSE(mGenCP.IsConnected());
  EXPECT_EQ(mGenCP.GetParameters(), nullptr);
  EXPECT_EQ(mGenCP.GetGenCPXMLID(text), KrResult::Code::WrongState);
  EXPECT_EQ(mGenCP.GetTolvanCameraFilePath(text), KrResult::Code::WrongState);
  EXPECT_EQ(mGenCP.GetCLProtocolCameraID(text), KrResult::Code::WrongState);
  EXPECT_EQ(mGenCP.GetCLProtocolTemplate(text), KrResult::Code::WrongState);
  EXPECT_EQ(mGenCP.GetCLProtocolXMLID(text), KrResult::Code::WrongState);
  EXPECT_EQ(text, "as it was");
  EXPECT_TRUE(mGenCP.GetSource().IsEmpty());
  EXPECT_FALSE(mGenCP.GetParametersSyncEnabled());
}

TEST_F(CameraBridgeTest, GenCP_Connected_ReadsAndSetsTheCamera) {
  KrStringList ids;
  ASSERT_TRUE(IsFine(mGenCP.GetGenCPXMLIDs(ids)));
  ASSERT_GT(ids.GetCount(), 0u);
  ASSERT_TRUE(IsFine(mGenCP.ConnectGenCP(ids[0])));
  KrString id;
  EXPECT_TRUE(mGenCP.GetGenCPXMLID(id).IsOK());
  EXPECT_EQ(id, ids[0]);
  EXPECT_TRUE(mGenCP.IsConnected());
  EXPECT_EQ(GetText(*mGenCP.GetParameters(), "DeviceModelName"), "Simulated GenCP Camera");

  ASSERT_TRUE(IsFine(SetText(*mGenCP.GetParameters(), "Gain", "7.5")));

  mGenCP.Disconnect();
  EXPECT_FALSE(mGenCP.IsConnected());
  EXPECT_EQ(mGenCP.GetParameters(), nullptr);
  KrCameraBridge another(mLab.GetDevice(), KrDeviceSerial::Serial0, nullptr);
  ASSERT_TRUE(IsFine(ConnectGenCP(another)));
  EXPECT_EQ(GetText(*another.GetParameters(), "Gain"), "7.5");
}

TEST_F(CameraBridgeTest, CameraFile_Connected_ReadsAndSetsTheCamera) {
  ASSERT_TRUE(IsFine(mText.ConnectTolvanCameraFile(kTextCameraFile)));
  KrString path;
  EXPECT_TRUE(mText.GetTolvanCameraFilePath(path).IsOK());
  EXPECT_EQ(path, kTextCameraFile);
  EXPECT_TRUE(mText.GetTolvanCameraFileParserErrors().IsEmpty());
  EXPECT_EQ(GetText(*mText.GetParameters(), "DeviceID"), "KrGUI,Simulated Text Camera,SIM-CL-02");
  EXPECT_EQ(GetText(*mText.GetParameters(), "Width"), "640");

  ASSERT_TRUE(IsFine(SetText(*mText.GetParameters(), "Width", "512")));

  mText.Disconnect();
  ASSERT_TRUE(IsFine(mText.ConnectTolvanCameraFile(kTextCameraFile)));
  EXPECT_EQ(GetText(*mText.GetParameters(), "Width"), "512");
}

TEST_F(CameraBridgeTest, CameraFile_HasItsSpeedForAsLongAsItIsConnected) {
  KrDeviceAdapter adapter(*mLab.GetDevice());
  const KrDeviceSerialSpeed speed(adapter, KrDeviceSerial::Serial1);
  const auto getSpeed = [&] {
    std::uint32_t baudRate = 0;
    EXPECT_TRUE(IsFine(speed.Get(baudRate)));
    return baudRate;
  };
  ASSERT_TRUE(IsFine(speed.Set(57600)));

  ASSERT_TRUE(IsFine(mText.ConnectTolvanCameraFile(kTextCameraFile)));
  EXPECT_EQ(getSpeed(), 9600u);
  mText.Disconnect();
  EXPECT_EQ(getSpeed(), 57600u);

  ASSERT_TRUE(IsFine(KrCameraBridge::SetPoCLEnabled(mLab.GetDevice(), false))); // The camera is silent.
  EXPECT_EQ(mText.ConnectTolvanCameraFile(kTextCameraFile), KrResult::Code::TimeLimitExceeded);
  EXPECT_EQ(getSpeed(), 57600u);
}

TEST_F(CameraBridgeTest, CameraFile_SaysTheGainThatTheCameraTakes) {
  ASSERT_TRUE(IsFine(mText.ConnectTolvanCameraFile(kTextCameraFile)));
  KrGenFloat& gain = *mText.GetParameters()->GetFloat("Gain");
  double most = 0;
  ASSERT_TRUE(IsFine(gain.GetMax(most)));

  EXPECT_TRUE(IsFine(gain.SetValue(most)));
}

TEST_F(CameraBridgeTest, ConnectedBridge_ThatIsAskedForCameras_StaysConnected) {
  ASSERT_TRUE(IsFine(ConnectGenCP(mGenCP)));
  KrStringList ids;
  KrString id;

  EXPECT_EQ(mGenCP.GetGenCPXMLIDs(ids), KrResult::Code::WrongState);
  EXPECT_EQ(mGenCP.ProbeCLProtocol("A#B", id, ids), KrResult::Code::WrongState);

  EXPECT_TRUE(mGenCP.IsConnected());
}

TEST_F(CameraBridgeTest, Port_IsTheBridgesAloneWhileItIsConnected) {
  ASSERT_TRUE(IsFine(ConnectGenCP(mGenCP)));
  KrCameraBridge another(mLab.GetDevice(), KrDeviceSerial::Serial0, nullptr);
  KrStringList ids;

  EXPECT_EQ(another.GetGenCPXMLIDs(ids), KrResult::Code::Busy);

  mGenCP.Disconnect();
  EXPECT_TRUE(IsFine(another.GetGenCPXMLIDs(ids)));
}

TEST_F(CameraBridgeTest, FailedConnection_LeavesTheBridgeDisconnectedAndThePortFree) {
  ASSERT_TRUE(IsFine(ConnectGenCP(mGenCP)));

  EXPECT_EQ(mGenCP.ConnectGenCP("no description"), KrResult::Code::NotFound);

  EXPECT_FALSE(mGenCP.IsConnected());
  EXPECT_EQ(mGenCP.GetParameters(), nullptr);
  EXPECT_TRUE(IsFine(ConnectGenCP(mGenCP)));
}

TEST_F(CameraBridgeTest, CameraFile_WithMistakes_TellsAllOfThem) {
  const TemporaryFolder folder;
  const std::string path = folder.GetFile("bad.yml");
  TemporaryFolder::WriteFile(path, "cameraFile: 1\ncamera: {vendor: V}\nprotocol: {baudRate: x}\n");

  EXPECT_EQ(mText.ConnectTolvanCameraFile(path), KrResult::Code::BadData);

  EXPECT_GT(mText.GetTolvanCameraFileParserErrors().GetCount(), 1u);
  EXPECT_FALSE(mText.IsConnected());
  ASSERT_TRUE(IsFine(mText.ConnectTolvanCameraFile(kTextCameraFile)));
  EXPECT_TRUE(mText.GetTolvanCameraFileParserErrors().IsEmpty());
}

TEST_F(CameraBridgeTest, CameraFile_ThatIsNotThere_IsNotFound) {
  EXPECT_EQ(mText.ConnectTolvanCameraFile("/nowhere/camera.yml"), KrResult::Code::NotFound);
  EXPECT_EQ(mText.ConnectTolvanCameraFile(""), KrResult::Code::InvalidInput);
  EXPECT_TRUE(mText.GetTolvanCameraFileParserErrors().IsEmpty());
}

TEST_F(CameraBridgeTest, Port_ThatTheDeviceLacks_IsNotSupported) {
  KrCameraBridge bridge(mLab.GetDevice(), KrDeviceSerial::Bulk5, nullptr);
  KrStringList ids;

  EXPECT_EQ(bridge.GetGenCPXMLIDs(ids), KrResult::Code::NotSupported);
  EXPECT_EQ(bridge.ConnectTolvanCameraFile(kTextCameraFile), KrResult::Code::NotSupported);
}

TEST_F(CameraBridgeTest, Bridge_WithoutADevice_RefusesEverythingThatNeedsOne) {
  KrCameraBridge bridge(nullptr, KrDeviceSerial::Serial0, nullptr);
  KrStringList ids;

  EXPECT_EQ(bridge.GetGenCPXMLIDs(ids), KrResult::Code::InvalidInput);
  EXPECT_EQ(bridge.SetSource("Source0"), KrResult::Code::InvalidInput);
  EXPECT_FALSE(KrCameraBridge::IsPoCLSupported(nullptr));
  EXPECT_FALSE(KrCameraBridge::IsPoCLEnabled(nullptr));
  EXPECT_EQ(KrCameraBridge::SetPoCLEnabled(nullptr, true), KrResult::Code::InvalidInput);
}

TEST_F(CameraBridgeTest, Counters_GoOnThroughConnectionsUntilTheyAreReset) {
  ASSERT_TRUE(IsFine(ConnectGenCP(mGenCP)));
  mGenCP.Disconnect();
  const std::uint64_t sent = mGenCP.GetBytesSentToCamera();
  const std::uint64_t received = mGenCP.GetBytesReceivedFromCamera();
  EXPECT_GT(sent, 0u);
  EXPECT_GT(received, sent);

  ASSERT_TRUE(IsFine(ConnectGenCP(mGenCP)));
  EXPECT_GT(mGenCP.GetBytesSentToCamera(), sent);
  EXPECT_GT(mGenCP.GetBytesReceivedFromCamera(), received);

  mGenCP.Disconnect();
  mGenCP.ResetStatistics();
  EXPECT_EQ(mGenCP.GetBytesSentToCamera(), 0u);
  EXPECT_EQ(mGenCP.GetBytesReceivedFromCamera(), 0u);
}

TEST_F(CameraBridgeTest, Source_IsOneThatTheDeviceHas) {
  EXPECT_TRUE(IsFine(mGenCP.SetSource("Source2")));
  EXPECT_EQ(mGenCP.SetSource("Source7"), KrResult::Code::InvalidInput);
  EXPECT_EQ(mGenCP.GetSource(), "Source2");
  EXPECT_TRUE(IsFine(mGenCP.SetSource("")));
  EXPECT_TRUE(mGenCP.GetSource().IsEmpty());
}

TEST_F(CameraBridgeTest, FiftyConnectionsInARow_AllWork) {
  for (int i = 0; i < 50; ++i) {
    ASSERT_TRUE(IsFine(mText.ConnectTolvanCameraFile(kTextCameraFile))) << i;
    ASSERT_EQ(GetText(*mText.GetParameters(), "Width"), "640") << i;
    ASSERT_TRUE(IsFine(ConnectGenCP(mGenCP))) << i;
    ASSERT_EQ(GetText(*mGenCP.GetParameters(), "Width"), "1024") << i;
    if (i % 2 == 0) {
      mText.Disconnect();
      mGenCP.Disconnect();
    }
    mGenCP.Disconnect();
  }
}

TEST_F(CameraBridgeTest, PoCL_SwitchedOff_SilencesTheCameraThatLivesOnIt) {
  EXPECT_TRUE(KrCameraBridge::IsPoCLSupported(mLab.GetDevice()));
  EXPECT_TRUE(KrCameraBridge::IsPoCLEnabled(mLab.GetDevice()));
  ASSERT_TRUE(IsFine(mText.ConnectTolvanCameraFile(kTextCameraFile)));

  ASSERT_TRUE(IsFine(KrCameraBridge::SetPoCLEnabled(mLab.GetDevice(), false)));

  EXPECT_FALSE(KrCameraBridge::IsPoCLEnabled(mLab.GetDevice()));
  EXPECT_EQ(GetText(*mText.GetParameters(), "Width"), "TimeLimitExceeded");
  EXPECT_TRUE(mText.IsConnected());
  const KrResult silent = mText.ConnectTolvanCameraFile(kTextCameraFile);
  EXPECT_EQ(silent, KrResult::Code::TimeLimitExceeded);
  EXPECT_THAT(silent.GetDescription().ToUtf8(), testing::EndsWith(" Power over Camera Link is off; the camera may need it."));
  EXPECT_FALSE(mText.IsConnected());
  const KrResult missing = mText.ConnectTolvanCameraFile("/nowhere/camera.yml");
  EXPECT_THAT(missing.GetDescription().ToUtf8(), testing::Not(testing::HasSubstr("Power")));
  ASSERT_TRUE(IsFine(KrCameraBridge::SetPoCLEnabled(mLab.GetDevice(), true)));
  EXPECT_TRUE(IsFine(mText.ConnectTolvanCameraFile(kTextCameraFile)));
}

TEST(CameraBridgePowerTest, Device_WithoutPoCL_DoesNotSupportIt) {
  BridgeLab lab(krtransport::GetBuiltInLab(), kMonoMAC);

  EXPECT_FALSE(KrCameraBridge::IsPoCLSupported(lab.GetDevice()));
  EXPECT_FALSE(KrCameraBridge::IsPoCLEnabled(lab.GetDevice()));
  EXPECT_EQ(KrCameraBridge::SetPoCLEnabled(lab.GetDevice(), true), KrResult::Code::NotSupported);
  EXPECT_EQ(KrCameraBridge(lab.GetDevice(), KrDeviceSerial::Serial0, nullptr).SetSource("Source0"),
            KrResult::Code::InvalidInput);
}
