// Each kind of camera behind the grabber, with the mouse: chosen, connected, browsed, set, and left for another kind.

#include "camerabridgeuser.h"

#include "krdevice/krdeviceadapter.h"
#include "krserial/krdeviceserialport.h"

namespace {

using browseruser::kGrid;
using testing::HasSubstr;

/// Asks the text camera itself, by its own protocol; gives the answer without its end.
std::string AskTextCamera(const KrDeviceInfo& aGrabber, const std::string& aCommand) {
  std::unique_ptr<KrDevice> device;
  EXPECT_TRUE(KrDevice::Open(aGrabber, KrDeviceAccess::Control, device).IsOK());
  KrDeviceAdapter adapter(*device);
  KrDeviceSerialPort port;
  EXPECT_TRUE(port.Open(&adapter, KrDeviceSerial::Serial1).IsOK());
  std::uint32_t count = 0;
  EXPECT_TRUE(port.Write(reinterpret_cast<const std::uint8_t*>(aCommand.data()),
                         static_cast<std::uint32_t>(aCommand.size()), count)
                  .IsOK());
  std::string answer;
  std::uint8_t byte = 0;
  while (port.Read(&byte, 1, count, UserHands::kLimitMs).IsOK() && byte != '\r')
    answer += static_cast<char>(byte);
  EXPECT_TRUE(port.Close().IsOK());
  return answer;
}

} // namespace

TEST_F(CameraBridgeUser, GenCPCamera_IsConnectedBrowsedAndSet) {
  int count = 0;
  Run([&](UserHands& aUser, const CameraHands& aHands) {
    aHands.PickPort("Serial0");
    count = aHands.ConnectGenCP();

    ASSERT_TRUE(aUser.AwaitRow(kManager, kGrid, "DeviceModelName | Simulated GenCP Camera"));
    aUser.ClickRow(kManager, kGrid, "ExposureTime");
    EXPECT_TRUE(browseruser::SetNumber(aUser, kManager, "ExposureTime", "2100"));

    aHands.ChooseKind(bridge::kNone);
    EXPECT_TRUE(aHands.AwaitText(bridge::kGenCPStatus, "Not initialized"));
    EXPECT_TRUE(aHands.AwaitNoFeatures());
  });

  ExpectCamera(ConnectGenCP(), "ExposureTime", 2100, count);
}

TEST_F(CameraBridgeUser, CLProtocolCamera_IsProbedConnectedBrowsedAndSet) {
  int count = 0;
  Run([&](UserHands& aUser, const CameraHands& aHands) {
    aHands.PickPort("Bulk0");
    aHands.ChooseKind(bridge::kCLProtocol);
    ASSERT_TRUE(aHands.AwaitReady(bridge::kProbe));
    aUser.Click(kManager, bridge::kProbe);
    ASSERT_TRUE(aHands.AwaitTextWith(bridge::kProbeStatus, "SIM_CL_03"));
    ASSERT_TRUE(aHands.AwaitReady(bridge::kCLProtocolConnect));
    EXPECT_FALSE(aUser.IsEnabled(kManager, bridge::kProbe));
    aUser.Click(kManager, bridge::kCLProtocolConnect);
    count = aHands.AwaitConnected(bridge::kCLProtocolStatus);

    ASSERT_TRUE(aUser.AwaitRow(kManager, kGrid, "DeviceModelName | Simulated CLProtocol Camera"));
    aUser.ClickRow(kManager, kGrid, "ExposureTime");
    EXPECT_TRUE(browseruser::SetNumber(aUser, kManager, "ExposureTime", "2200"));

    aHands.ChooseKind(bridge::kNone);
    EXPECT_TRUE(aHands.AwaitText(bridge::kCLProtocolStatus, "Not initialized"));
    EXPECT_TRUE(aHands.AwaitText(bridge::kProbeStatus, "Not found"));
    EXPECT_TRUE(aHands.AwaitNoFeatures());
  });

  ExpectCamera(ConnectCLProtocol(), "ExposureTime", 2200, count);
}

TEST_F(CameraBridgeUser, CameraFile_IsChosenLoadedBrowsedAndSet) {
  Run([&](UserHands& aUser, const CameraHands& aHands) {
    aHands.PickPort("Serial1");
    ASSERT_GT(aHands.ConnectTextCamera(), 0);

    ASSERT_TRUE(aUser.AwaitRow(kManager, kGrid, "DeviceID | KrGUI,Simulated Text Camera,SIM-CL-02"));
    aUser.ClickRow(kManager, kGrid, "Gain |");
    EXPECT_TRUE(browseruser::SetNumber(aUser, kManager, "Gain", "23"));

    aHands.ChooseKind(bridge::kNone);
    EXPECT_TRUE(aHands.AwaitText(bridge::kCameraFileStatus, "Not initialized"));
    EXPECT_TRUE(aHands.AwaitText(bridge::kPath, ""));
    EXPECT_TRUE(aHands.AwaitNoFeatures());
  });

  EXPECT_EQ(AskTextCamera(*mInfo, "gain?*DE\r"), "23");
}

TEST_F(CameraBridgeUser, CamerasOfTwoPorts_StayConnectedSideBySide) {
  Run([&](UserHands& aUser, const CameraHands& aHands) {
    aHands.PickPort("Serial0");
    const int count = aHands.ConnectGenCP();
    aHands.PickPort("Serial1");
    EXPECT_TRUE(AwaitChecked(aUser, kManager, bridge::kNone));
    ASSERT_GT(aHands.ConnectTextCamera(), 0);
    ASSERT_TRUE(aUser.AwaitRow(kManager, kGrid, "DeviceID | KrGUI,Simulated Text Camera,SIM-CL-02"));

    aUser.Press("Escape");
    ASSERT_TRUE(aUser.AwaitNoWindow(kManager) && aHands.Open());

    EXPECT_TRUE(AwaitChecked(aUser, kManager, bridge::kGenCP));
    EXPECT_EQ(aHands.AwaitConnected(bridge::kGenCPStatus), count);
    EXPECT_TRUE(aUser.AwaitRow(kManager, kGrid, "DeviceModelName | Simulated GenCP Camera"));
    aHands.PickPort("Serial1");
    EXPECT_TRUE(AwaitChecked(aUser, kManager, bridge::kCameraFile));
    EXPECT_TRUE(aHands.AwaitText(bridge::kPath, kTextCameraFile));
    EXPECT_TRUE(aUser.AwaitRow(kManager, kGrid, "DeviceID | KrGUI,Simulated Text Camera,SIM-CL-02"));
  });
}
