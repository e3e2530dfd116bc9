// The bridges of the camera bridge manager, and what an opened window shows first.

#include "camerafixture.h"

#include "duringmodalloop.h"

namespace krgui {

namespace {

class Entries : public CameraTest {};

} // namespace

TEST_F(Entries, NoDevice_HasNoBridgesAndDisablesAll) {
  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());

  EXPECT_EQ(mWindow->GetBridgeCount(), 0);
  EXPECT_EQ(mWindow->GetBridge(0), nullptr);
  EXPECT_THAT(GetEntries(id::kDevicePort), testing::IsEmpty());
  for (const int control :
       {id::kDevicePort, id::kNone, id::kCLProtocol, id::kTemplate, id::kProbe, id::kCLProtocolXML,
        id::kCLProtocolConnect, id::kGenCP, id::kGenCPXML, id::kGenCPConnect, id::kCameraFile, id::kPath, id::kBrowse,
        id::kLoad, id::kSource, id::kSynchronization, id::kReset, id::kPoCL})
    EXPECT_FALSE(IsEnabled(control)) << control;
  EXPECT_FALSE(HasParameters());
}

TEST_F(Entries, DeviceWithoutPorts_HasNoBridges) {
  std::unique_ptr<KrDevice> camera;
  ASSERT_TRUE(LabTest::Open(kRangeMAC, camera).IsOK());

  ASSERT_TRUE(mWindow->SetDevice(camera.get()).IsOK());
  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());

  EXPECT_EQ(mWindow->GetBridgeCount(), 0);
  EXPECT_THAT(GetEntries(id::kDevicePort), testing::IsEmpty());
  EXPECT_FALSE(IsEnabled(id::kGenCP));
  mWindow.reset();
}

TEST_F(Entries, Device_HasABridgeForEachOfItsPortsInTheirOrder) {
  ASSERT_TRUE(mWindow->SetDevice(mDevice.get()).IsOK());

  ASSERT_EQ(mWindow->GetBridgeCount(), 3);
  EXPECT_EQ(mWindow->GetBridgePort(0), KrDeviceSerial::Serial0);
  EXPECT_EQ(mWindow->GetBridgePort(1), KrDeviceSerial::Serial1);
  EXPECT_EQ(mWindow->GetBridgePort(2), KrDeviceSerial::Bulk0);
  for (const int index : {-1, 3, 1000}) {
    EXPECT_EQ(mWindow->GetBridge(index), nullptr) << index;
    EXPECT_EQ(static_cast<int>(mWindow->GetBridgePort(index)), -1) << index;
  }
  EXPECT_NE(mWindow->GetBridge(0), mWindow->GetBridge(1));
}

TEST_F(Entries, SetDeviceAgain_MakesNewBridges) {
  ASSERT_TRUE(mWindow->SetDevice(mDevice.get()).IsOK());
  ASSERT_TRUE(GetBridge(0).SetParametersSyncEnabled(true).IsOK());

  ASSERT_TRUE(mWindow->SetDevice(mDevice.get()).IsOK());

  EXPECT_FALSE(GetBridge(0).GetParametersSyncEnabled());
}

TEST_F(Entries, Recover_IsNotOfferedInAnyState) {
  const KrResult closed = mWindow->Recover();
  EXPECT_EQ(closed.GetCodeNumber(), 1540u);
  EXPECT_EQ(closed.GetDescription(), "The camera bridge manager offers no recovery of its bridges.");

  Open();

  EXPECT_EQ(mWindow->Recover().GetCodeNumber(), 1540u);
}

TEST_F(Entries, OpenedWindow_ShowsTheFirstPortWithNothingSetUp) {
  Open();

  EXPECT_EQ(mWindow->GetWidget()->windowTitle(), "Frame Grabber Camera Bridge");
  EXPECT_STREQ(mWindow->GetTitle().CStr(), "Frame Grabber Camera Bridge");
  EXPECT_THAT(GetEntries(id::kDevicePort), testing::ElementsAre("Serial0", "Serial1", "Bulk0"));
  EXPECT_EQ(GetText(id::kDevicePort), "Serial0");
  EXPECT_TRUE(IsChecked(id::kNone));
  EXPECT_EQ(GetText(id::kProbeStatus), "Not found");
  for (const int status : {id::kCLProtocolStatus, id::kGenCPStatus, id::kCameraFileStatus})
    EXPECT_EQ(GetText(status), "Not initialized") << status;
  EXPECT_EQ(GetText(id::kPath), "");
  EXPECT_EQ(GetText(id::kBytesSent), "Bytes sent: 0");
  EXPECT_EQ(GetText(id::kBytesReceived), "Bytes received: 0");
  EXPECT_FALSE(HasParameters());
}

TEST_F(Entries, TitleOfTheApplication_IsReplaced) {
  mWindow->SetTitle("Mine");

  Open();

  EXPECT_STREQ(mWindow->GetTitle().CStr(), "Frame Grabber Camera Bridge");
}

TEST_F(Entries, Sources_AreThoseOfTheDevice) {
  Open();

  EXPECT_TRUE(WaitFor([this] { return IsEnabled(id::kSource); }));
  EXPECT_THAT(GetEntries(id::kSource), testing::ElementsAre("Source0", "Source1", "Source2"));
  EXPECT_TRUE(IsEnabled(id::kSource));
  // The bridge has none yet.
  EXPECT_EQ(Get<QComboBox>(id::kSource).currentIndex(), -1);
}

TEST_F(Entries, DeviceSetWhileOpen_IsShown) {
  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());

  ASSERT_TRUE(mWindow->SetDevice(mDevice.get()).IsOK());
  EXPECT_THAT(GetEntries(id::kDevicePort), testing::ElementsAre("Serial0", "Serial1", "Bulk0"));
  EXPECT_EQ(GetEntries(id::kSource).size(), 3u);
  EXPECT_TRUE(IsEnabled(id::kGenCP));

  ASSERT_TRUE(mWindow->SetDevice(nullptr).IsOK());
  EXPECT_THAT(GetEntries(id::kDevicePort), testing::IsEmpty());
  EXPECT_THAT(GetEntries(id::kSource), testing::IsEmpty());
  EXPECT_FALSE(IsEnabled(id::kGenCP));
}

TEST_F(Entries, EnterAndEscape_DoWhatTheFrameSays) {
  Open();

  QTest::keyClick(mWindow->GetWidget(), Qt::Key_Return);
  EXPECT_NE(mWindow->GetWidget(), nullptr);

  QTest::keyClick(mWindow->GetWidget(), Qt::Key_Escape);
  EXPECT_EQ(mWindow->GetWidget(), nullptr);
}

TEST_F(Entries, ModalWindow_HasAnotherTemplateAndCopesWithIt) {
  ASSERT_TRUE(mWindow->SetDevice(mDevice.get()).IsOK());
  DuringNextModalLoop([this](QWidget& aDialog) {
    EXPECT_EQ(aDialog.windowTitle(), "Frame Grabber Camera Bridge");
    EXPECT_EQ(aDialog.findChild<QWidget*>(QStringLiteral("control%1").arg(id::kGenCP)), nullptr);
    EXPECT_GE(aDialog.width(), 775);
    EXPECT_GE(aDialog.height(), 582);
    mWindow->HidePCF();
    mWindow->ShowPCF();
    EXPECT_TRUE(mWindow->SetDevice(nullptr).IsOK());
    EXPECT_TRUE(mWindow->SetDevice(mDevice.get()).IsOK());
    QTest::keyClick(&aDialog, Qt::Key_Escape);
  });

  EXPECT_EQ(mWindow->ShowModal(0), KrResult::Code::Cancelled);
  EXPECT_EQ(mWindow->GetBridgeCount(), 3);
}

TEST_F(Entries, ModalWindow_ShowsPortsAndStatisticsAndGreysTheRest) {
  ASSERT_TRUE(mWindow->SetDevice(mDevice.get()).IsOK());
  KrStringList ids;
  ASSERT_TRUE(GetBridge(0).GetGenCPXMLIDs(ids).IsOK());
  ASSERT_TRUE(GetBridge(0).ConnectGenCP(ids[0]).IsOK());
  DuringNextModalLoop([this](QWidget& aDialog) {
    EXPECT_THAT(GetEntries(id::kDevicePort), testing::ElementsAre("Serial0", "Serial1", "Bulk0"));
    EXPECT_TRUE(IsEnabled(id::kDevicePort));
    EXPECT_TRUE(WaitFor([this] {
      return GetText(id::kBytesSent) == "Bytes sent: " + std::to_string(GetBridge(0).GetBytesSentToCamera());
    }));
    EXPECT_NE(GetText(id::kBytesSent), "Bytes sent: 0");
    for (const char* const dead : {"control1071", "control1073", "control1075", "control1017", "control1049"})
      EXPECT_FALSE(aDialog.findChild<QWidget*>(dead)->isEnabled()) << dead;
    EXPECT_TRUE(aDialog.findChild<QWidget*>("control1087")->isEnabled());
    const std::uint64_t before = GetBridge(0).GetBytesReceivedFromCamera();
    Click(id::kReset);
    EXPECT_LT(GetBridge(0).GetBytesReceivedFromCamera(), before);
    Pick(id::kDevicePort, "Serial1");
    EXPECT_TRUE(WaitFor([this] { return GetText(id::kBytesSent) == "Bytes sent: 0"; }));
    QTest::keyClick(&aDialog, Qt::Key_Escape);
  });

  EXPECT_EQ(mWindow->ShowModal(0), KrResult::Code::Cancelled);
  EXPECT_TRUE(GetBridge(0).IsConnected());
}

TEST_F(Entries, WindowInALayout_ShowsTheSame) {
  QWidget parent;
  parent.resize(800, 600);
  ASSERT_TRUE(mWindow->SetDevice(mDevice.get()).IsOK());
  ASSERT_TRUE(mWindow->CreateIn(&parent).IsOK());
  parent.show();

  EXPECT_THAT(GetEntries(id::kDevicePort), testing::SizeIs(3));
  QTest::keyClick(mWindow->GetWidget(), Qt::Key_Escape);
  EXPECT_NE(mWindow->GetWidget(), nullptr);
  ASSERT_TRUE(mWindow->Close().IsOK());
}

TEST_F(Entries, OpenedAgain_HasTheBridgesAsTheyWere) {
  Open();
  ConnectGenCP();
  const std::string status = MakeStatus(0);
  ASSERT_TRUE(mWindow->Close().IsOK());

  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());

  EXPECT_TRUE(IsChecked(id::kGenCP));
  EXPECT_THAT(GetEntries(id::kGenCPXML), testing::SizeIs(1));
  EXPECT_EQ(GetText(id::kGenCPStatus), status);
  EXPECT_TRUE(WaitFor([this] { return HasParameters(); }));
}

TEST_F(Entries, BridgeThatTheApplicationConnected_IsReadBack) {
  ASSERT_TRUE(mWindow->SetDevice(mDevice.get()).IsOK());
  KrStringList ids;
  ASSERT_TRUE(GetBridge(0).GetGenCPXMLIDs(ids).IsOK());
  ASSERT_TRUE(GetBridge(0).ConnectGenCP(ids[0]).IsOK());

  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());

  EXPECT_TRUE(IsChecked(id::kGenCP));
  EXPECT_THAT(GetEntries(id::kGenCPXML), testing::ElementsAre(ids[0].ToUtf8()));
  EXPECT_EQ(GetText(id::kGenCPStatus), MakeStatus(0));
  EXPECT_TRUE(WaitFor([this] { return HasParameters(); }));
}

} // namespace krgui
