// Source, synchronisation, Power over Camera Link and statistics in the camera bridge manager.

#include "camerafixture.h"

#include "krbase/krlogger.h"
#include "krdevice/krstream.h"

namespace krgui {

namespace {

class Switches : public CameraTest {
protected:
  bool IsPoCLOn() {
    bool isOn = false;
    EXPECT_TRUE(mDevice->GetParameters()->GetBoolean("PoclEnable")->GetValue(isOn).IsOK());
    return isOn;
  }
};

} // namespace

TEST_F(Switches, Source_IsThePortsOwn) {
  Open();

  Pick(id::kSource, "Source1");
  EXPECT_STREQ(GetBridge(0).GetSource().CStr(), "Source1");
  EXPECT_EQ(GetText(id::kSource), "Source1");

  Pick(id::kDevicePort, "Serial1");
  EXPECT_EQ(Get<QComboBox>(id::kSource).currentIndex(), -1);

  Pick(id::kDevicePort, "Serial0");
  EXPECT_EQ(GetText(id::kSource), "Source1");
}

TEST_F(Switches, Source_IsSelectedByItsExactNameAlone) {
  Open();
  Pick(id::kSource, "Source1");
  auto& list = Get<QComboBox>(id::kSource);
  const int index = list.currentIndex();
  const auto showAgain = [this] {
    Pick(id::kDevicePort, "Serial1");
    Pick(id::kDevicePort, "Serial0");
  };

  for (const char* other : {"source1", "Source10", "Source", " Source1"}) {
    list.setItemData(index, QByteArray(other));
    showAgain();
    EXPECT_EQ(list.currentIndex(), -1) << other;
  }
  list.setItemData(index, QByteArray("Source1"));
  showAgain();
  EXPECT_EQ(list.currentIndex(), index);
  EXPECT_STREQ(GetBridge(0).GetSource().CStr(), "Source1");
}

TEST_F(Switches, Synchronization_IsThePortsOwn) {
  Open();

  Click(id::kSynchronization);
  EXPECT_TRUE(GetBridge(0).GetParametersSyncEnabled());
  EXPECT_TRUE(IsChecked(id::kSynchronization));

  Pick(id::kDevicePort, "Serial1");
  EXPECT_FALSE(IsChecked(id::kSynchronization));

  Pick(id::kDevicePort, "Serial0");
  EXPECT_TRUE(IsChecked(id::kSynchronization));
  Click(id::kSynchronization);
  EXPECT_FALSE(GetBridge(0).GetParametersSyncEnabled());
}

TEST_F(Switches, SynchronizationThatFails_IsToldByTheTooltip) {
  Open();
  ConnectGenCP();
  Pick(id::kSource, "Source0");
  ASSERT_TRUE(mLab->Lose(kGrabberMAC).IsOK());

  Click(id::kSynchronization);

  EXPECT_TRUE(WaitFor([this] { return !Get(id::kSynchronization).toolTip().isEmpty(); }));
}

TEST_F(Switches, Stream_IsThatOfTheBridgesThatAreMadeAfterwards) {
  const KrLogCapture log; // What cannot be carried is logged.
  KrStream stream(*mDevice);
  ASSERT_TRUE(stream.Start().IsOK());
  const auto waitsForTheStream = [this] {
    return GetBridge(0).GetParametersSyncText().ToUtf8().find("when its stream has stopped") != std::string::npos;
  };
  const auto connect = [this] {
    KrStringList ids;
    ASSERT_TRUE(GetBridge(0).SetParametersSyncEnabled(true).IsOK());
    ASSERT_TRUE(GetBridge(0).GetGenCPXMLIDs(ids).IsOK());
    ASSERT_TRUE(GetBridge(0).ConnectGenCP(ids[0]).IsOK());
  };
  ASSERT_TRUE(mWindow->SetDevice(mDevice.get()).IsOK());
  ASSERT_TRUE(mWindow->SetStream(&stream).IsOK());

  // That one was made before: it fails, as the device's size is locked.
  connect();
  EXPECT_TRUE(WaitFor(
      [this] { return GetBridge(0).GetParametersSyncText().ToUtf8().find("could not be set") != std::string::npos; }));
  EXPECT_FALSE(waitsForTheStream());

  ASSERT_TRUE(mWindow->SetDevice(mDevice.get()).IsOK());
  connect();
  EXPECT_TRUE(WaitFor(waitsForTheStream));

  ASSERT_TRUE(mWindow->SetStream(nullptr).IsOK());
  EXPECT_TRUE(waitsForTheStream());
  ASSERT_TRUE(mWindow->SetDevice(nullptr).IsOK());
}

TEST_F(Switches, PoCL_IsTheDevices) {
  Open();
  ASSERT_TRUE(IsPoCLOn());
  EXPECT_TRUE(IsChecked(id::kPoCL));

  Click(id::kPoCL);
  EXPECT_FALSE(IsPoCLOn());
  EXPECT_FALSE(IsChecked(id::kPoCL));
  Pick(id::kDevicePort, "Bulk0");
  EXPECT_FALSE(IsChecked(id::kPoCL));

  Click(id::kPoCL);
  EXPECT_TRUE(IsPoCLOn());
}

TEST_F(Switches, DeviceWithoutPoCL_CannotSwitchIt) {
  std::unique_ptr<KrDevice> camera;
  ASSERT_TRUE(LabTest::Open(kMonoMAC, camera).IsOK());
  Open();
  ASSERT_TRUE(mWindow->SetDevice(camera.get()).IsOK());

  EXPECT_FALSE(IsEnabled(id::kPoCL));
  EXPECT_FALSE(IsChecked(id::kPoCL));
  EXPECT_THAT(GetEntries(id::kSource), testing::IsEmpty());
  EXPECT_FALSE(IsEnabled(id::kSource));
  EXPECT_GT(mWindow->GetBridgeCount(), 0);
  mWindow.reset();
}

TEST_F(Switches, DeviceTakenOut_LeavesNothingChecked) {
  Open();
  Click(id::kSynchronization);
  Pick(id::kSource, "Source1");
  ASSERT_TRUE(IsChecked(id::kPoCL));

  ASSERT_TRUE(mWindow->SetDevice(nullptr).IsOK());

  EXPECT_FALSE(IsChecked(id::kSynchronization));
  EXPECT_FALSE(IsChecked(id::kPoCL));
  EXPECT_FALSE(IsEnabled(id::kPoCL));
  EXPECT_THAT(GetEntries(id::kSource), testing::IsEmpty());
}

TEST_F(Switches, DeviceThatDoesNotAnswer_IsToldOfAndTheBoxTellsTheTruth) {
  Open();
  ASSERT_TRUE(mLab->Lose(kGrabberMAC).IsOK());

  ExpectBoxes(1);
  Click(id::kPoCL);

  ASSERT_EQ(mBoxes.size(), 1u);
  EXPECT_THAT(mBoxes[0], testing::StartsWith("Frame Grabber Camera Bridge: Error switching Power over Camera Link.\n"));
}

TEST_F(Switches, Statistics_FollowTheTrafficAndCanBeReset) {
  Open();
  ConnectGenCP();
  const auto isShown = [this] {
    return GetText(id::kBytesSent) == "Bytes sent: " + std::to_string(GetBridge(0).GetBytesSentToCamera()) &&
           GetText(id::kBytesReceived) ==
               "Bytes received: " + std::to_string(GetBridge(0).GetBytesReceivedFromCamera());
  };
  EXPECT_GT(GetBridge(0).GetBytesSentToCamera(), 0u);
  EXPECT_TRUE(WaitFor(isShown));
  const std::uint64_t before = GetBridge(0).GetBytesReceivedFromCamera();

  Click(id::kReset);

  EXPECT_LT(GetBridge(0).GetBytesReceivedFromCamera(), before);
  EXPECT_TRUE(WaitFor(isShown));

  Pick(id::kDevicePort, "Serial1");
  EXPECT_TRUE(WaitFor([this] { return GetText(id::kBytesSent) == "Bytes sent: 0"; }));
}

} // namespace krgui
