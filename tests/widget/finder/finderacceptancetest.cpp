// Which device the finder gives, by whichever way it is accepted, and what keeps it from being accepted.

#include "finderfixture.h"
#include "krgui/krdevicefinderwnd.h"

#include <QCheckBox>

#include <algorithm>

namespace krgui {

namespace {

constexpr const char* kSubnetText =
    "The device is on a subnet that is not compatible with your computer's network interface card (NIC). Configure "
    "the device to use dynamic addressing (LLA or DHCP) or a static IP address.";

} // namespace

class DeviceAcceptanceTest : public DeviceFinderTest {
protected:
  static constexpr const char* kDevices[] = {"Camera A", "Old device", "USB camera"};

  void SetUp() override {
    mTransport->AddInterface(MakeFinderAdapter());
    mTransport->AddInterface(MakeFinderController());
    mTransport->AddDevice("eth0", MakeFinderCamera());
    mTransport->AddDevice("eth0", MakeOldDevice());
    mTransport->AddDevice("usb1", MakeUSBCamera());
  }

  /// Shows the finder modally; aAction comes when the items of all devices are there.
  KrResult RunModal(std::function<void()> aAction) {
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &mHand, [&] {
      const auto isThere = [this](const char* aName) { return mFinder.FindItem(aName) != nullptr; };
      // A tree without the keyboard has no current item, from which arrows go.
      if (!mFinder.GetWidget() || !mFinder.GetWidget()->isActiveWindow() || !std::ranges::all_of(kDevices, isThere))
        return;
      timer.stop();
      aAction();
      if (mFinder.IsOpen()) {
        ADD_FAILURE() << "The finder is still open.";
        mFinder.EndDialog(kFinderCancelID);
      }
    });
    timer.start(1);
    return mFinder.ShowModal(0);
  }

  /// What the finder says to an attempt to accept a device.
  ShownMessage ReadRefusal(const std::function<void()>& aAccept) {
    ShownMessage message;
    OnNextDialog([&](QWidget& aDialog) {
      message = ReadMessage(aDialog);
      aDialog.close();
    });
    aAccept();
    return message;
  }
};

TEST_F(DeviceAcceptanceTest, OK_GivesTheSelectedDeviceAndEndsWithOK) {
  const KrResult result = RunModal([&] {
    Select("Camera A");
    Click(kFinderOKID);
  });

  EXPECT_TRUE(result.IsOK());
  ASSERT_NE(mFinder.GetSelected(), nullptr);
  EXPECT_EQ(mFinder.GetSelected()->GetDisplayID(), KrString("Camera A"));
  EXPECT_FALSE(mFinder.IsOpen());
}

TEST_F(DeviceAcceptanceTest, Cancel_GivesNoDevice) {
  const KrResult result = RunModal([&] {
    Select("Camera A");
    Click(kFinderCancelID);
  });

  EXPECT_TRUE(result == KrResult::Code::Cancelled);
  EXPECT_EQ(mFinder.GetSelected(), nullptr);
}

TEST_F(DeviceAcceptanceTest, SecondShowing_StartsAnewAndForgetsTheFirstChoice) {
  ASSERT_TRUE(RunModal([&] {
                Select("Camera A");
                Click(kFinderOKID);
              }).IsOK());
  const KrDeviceInfo* first = mFinder.GetSelected();
  ASSERT_NE(first, nullptr);

  bool isSelected = true;
  const KrResult result = RunModal([&] {
    isSelected = !mFinder.GetTree().selectedItems().isEmpty() || mFinder.GetSelected() != nullptr;
    Click(kFinderCancelID);
  });

  EXPECT_TRUE(result == KrResult::Code::Cancelled);
  EXPECT_FALSE(isSelected);
  EXPECT_EQ(mFinder.GetSelected(), nullptr);
  EXPECT_EQ(first->GetDisplayID(), KrString("Camera A"));
}

TEST_F(DeviceAcceptanceTest, DoubleClick_OnADeviceAccepts) {
  const KrResult result = RunModal([&] { DoubleClick("Camera A"); });

  EXPECT_TRUE(result.IsOK());
  ASSERT_NE(mFinder.GetSelected(), nullptr);
  EXPECT_EQ(mFinder.GetSelected()->GetDisplayID(), KrString("Camera A"));
}

TEST_F(DeviceAcceptanceTest, DoubleClick_ByAnotherButtonThanTheFirstDoesNothing) {
  Open({"Camera A"});

  DoubleClick("Camera A", Qt::MiddleButton);
  DoubleClick("Camera A", Qt::RightButton);

  EXPECT_TRUE(mFinder.IsOpen());
  EXPECT_EQ(mFinder.GetSelected(), nullptr);
}

TEST_F(DeviceAcceptanceTest, DoubleClick_OnWhatCannotBeSelectedDoesNothing) {
  Open({"Camera A", "Old device"});

  DoubleClick("Old device");
  DoubleClick("eth0 192.168.1.10");

  EXPECT_TRUE(mFinder.IsOpen());
  EXPECT_EQ(mFinder.GetSelected(), nullptr);
}

TEST_F(DeviceAcceptanceTest, Keyboard_SelectsByArrowsAcceptsByEnter) {
  const KrResult result = RunModal([&] {
    QTreeWidget& tree = mFinder.GetTree();
    // Devices stand in the order in which they were found.
    constexpr int kMostKeys = 2;
    for (int i = 0; i < kMostKeys && !mFinder.FindItem("Camera A")->isSelected(); ++i)
      QTest::keyClick(&tree, Qt::Key_Down);
    EXPECT_TRUE(mFinder.FindItem("Camera A")->isSelected());
    QTest::keyClick(&tree, Qt::Key_Return);
  });

  EXPECT_TRUE(result.IsOK());
  ASSERT_NE(mFinder.GetSelected(), nullptr);
  EXPECT_EQ(mFinder.GetSelected()->GetDisplayID(), KrString("Camera A"));
}

TEST_F(DeviceAcceptanceTest, Enter_WithNothingToAcceptDoesNothing) {
  Open({"Camera A"});

  QTest::keyClick(&mFinder.GetTree(), Qt::Key_Return);

  EXPECT_TRUE(mFinder.IsOpen());
}

TEST_F(DeviceAcceptanceTest, Escape_CancelsFromTreeAndLists) {
  for (const int id : {kFinderTreeID, kFinderInterfaceListID, kFinderDeviceListID}) {
    const KrResult result = RunModal([&] { QTest::keyClick(mFinder.GetControl(id), Qt::Key_Escape); });

    EXPECT_TRUE(result == KrResult::Code::Cancelled) << id;
  }
}

TEST_F(DeviceAcceptanceTest, EachKind_EnablesWhatCanBeDoneWithIt) {
  auto usb = MakeFinderDevice<krsystem::USBFields>("usb-7", "USB hub");
  mTransport->AddDevice("usb1", usb);
  Open({"Camera A", "Old device", "USB camera", "USB hub"});
  struct Row {
    const char* item;
    bool accept;
    bool setIP;
  };
  for (const Row& row : {Row{"Camera A", true, true}, Row{"Old device", false, false}, Row{"USB camera", true, false},
                         Row{"USB hub", false, false}, Row{"eth0 192.168.1.10", false, false},
                         Row{"xHCI host controller", false, false}}) {
    Select(row.item);

    EXPECT_EQ(mFinder.IsEnabled(kFinderOKID), row.accept) << row.item;
    EXPECT_EQ(mFinder.IsEnabled(kFinderSetIPID), row.setIP) << row.item;
  }
}

TEST_F(DeviceAcceptanceTest, KindsMadeSelectable_CanBeAcceptedAndOthersCannot) {
  mFinder.GetKinds().tolvanProtocol.selectable = true;
  mFinder.GetKinds().gev.selectable = false;
  mFinder.GetKinds().u3v.selectable = false;
  Open({"Camera A", "Old device", "USB camera"});

  Select("Old device");
  EXPECT_TRUE(mFinder.IsEnabled(kFinderOKID));
  EXPECT_TRUE(mFinder.IsEnabled(kFinderSetIPID));
  Select("Camera A");
  EXPECT_FALSE(mFinder.IsEnabled(kFinderOKID));
  EXPECT_FALSE(mFinder.IsEnabled(kFinderSetIPID));
  Select("USB camera");
  EXPECT_FALSE(mFinder.IsEnabled(kFinderOKID));
}

TEST_F(DeviceAcceptanceTest, UnreachableCamera_IsRefusedWithTheReasonAndTheFinderGoesOn) {
  mTransport->AddDevice("eth0", MakeForeignCamera());
  Open({"Camera A"});
  Click(kFinderUnreachableID);
  ASSERT_TRUE(AwaitItem("Foreign"));
  Select("Foreign");

  const ShownMessage message = ReadRefusal([this] { Click(kFinderOKID); });

  EXPECT_EQ(message, MakeErrorMessage(kSubnetText));
  EXPECT_TRUE(mFinder.IsOpen());
  EXPECT_EQ(mFinder.GetSelected(), nullptr);
  EXPECT_TRUE(AwaitRounds(0));
}

TEST_F(DeviceAcceptanceTest, DoubleClick_OnAnUnreachableCameraTellsTheReason) {
  mTransport->AddDevice("eth0", MakeForeignCamera());
  Open({"Camera A"});
  Click(kFinderUnreachableID);
  ASSERT_TRUE(AwaitItem("Foreign"));

  const ShownMessage message = ReadRefusal([this] { DoubleClick("Foreign"); });

  EXPECT_EQ(message, MakeErrorMessage(kSubnetText));
  EXPECT_TRUE(mFinder.IsOpen());
}

TEST_F(DeviceAcceptanceTest, UnreachableOlderDevice_IsRefusedForItsSubnetToo) {
  krsystem::TolvanProtocolFields device = MakeOldDevice();
  device.configurationValid = false;
  mTransport->SetDevices({{"eth0", device}});
  mFinder.GetKinds().tolvanProtocol.selectable = true;
  Open({});
  Click(kFinderUnreachableID);
  ASSERT_TRUE(AwaitItem("Old device"));
  Select("Old device");

  const ShownMessage message = ReadRefusal([this] { Click(kFinderOKID); });

  EXPECT_EQ(message, MakeErrorMessage(kSubnetText));
  EXPECT_EQ(mFinder.GetSelected(), nullptr);
}

TEST_F(DeviceAcceptanceTest, USBCameraOnASlowPort_IsRefusedWithItsLeadingBlank) {
  mTransport->SetDevices({{"usb1", MakeUSBCamera(false)}});
  Open({"USB camera"});
  Select("USB camera");

  const ShownMessage message = ReadRefusal([this] { Click(kFinderOKID); });

  EXPECT_EQ(message, MakeErrorMessage(" This device must be connected to a USB 3.0 (SuperSpeed) port."));
  EXPECT_TRUE(mFinder.IsOpen());
}

TEST_F(DeviceAcceptanceTest, RoundThatOKCutsShort_DoesNotHideTheSelectedDevice) {
  Open({"Camera A"});
  Gate gate;
  mTransport->SetScript([&](ScriptedTransport::Point aPoint, const std::stop_token& aStop) {
    if (aPoint == ScriptedTransport::Point::Begin)
      gate.Wait(aStop);
  });
  ASSERT_TRUE(gate.AwaitReached());
  Select("Camera A");

  Click(kFinderOKID);

  ASSERT_NE(mFinder.GetSelected(), nullptr);
  EXPECT_EQ(mFinder.GetSelected()->GetDisplayID(), KrString("Camera A"));
  EXPECT_FALSE(mFinder.IsOpen());
}

TEST_F(DeviceAcceptanceTest, EmbeddedFinder_GivesTheDeviceAndGoesOn) {
  QWidget host;
  host.resize(820, 640);
  host.show();
  ASSERT_TRUE(mFinder.CreateIn(&host).IsOK());
  ASSERT_TRUE(AwaitItem("Camera A"));
  Select("Camera A");

  Click(kFinderOKID);

  ASSERT_NE(mFinder.GetSelected(), nullptr);
  EXPECT_EQ(mFinder.GetSelected()->GetDisplayID(), KrString("Camera A"));
  EXPECT_TRUE(mFinder.IsOpen());
  EXPECT_TRUE(mFinder.GetWidget()->isVisible());
  EXPECT_TRUE(AwaitRounds(0));
  EXPECT_TRUE(mFinder.Close().IsOK());
  EXPECT_NE(mFinder.GetSelected(), nullptr);
}

namespace {

/// Does something when a device was accepted.
class HearingFinder : public KrDeviceFinderWnd {
public:
  ~HearingFinder() override { DeleteWnd(); }
  void OnAccepted() override {
    ++acceptedCount;
    acceptedName = GetSelected() ? GetSelected()->GetDisplayID() : KrString();
    if (onAccepted)
      onAccepted();
  }
  int acceptedCount = 0;
  KrString acceptedName;
  std::function<void()> onAccepted;
};

} // namespace

class AcceptanceHeardTest : public DeviceFinderTest {
protected:
  void SetUp() override {
    mTransport->AddInterface(MakeFinderAdapter());
    mTransport->AddDevice("eth0", MakeFinderCamera());
  }
  void EmbedAndAcceptCameraA() {
    mHost.resize(820, 640);
    mHost.show();
    ASSERT_TRUE(mHearing->CreateIn(&mHost).IsOK());
    auto* tree = mHearing->GetWidget()->findChild<QTreeWidget*>("control1049");
    auto* ok = mHearing->GetWidget()->findChild<QAbstractButton*>("control1");
    const auto find = [tree] { return tree->findItems("Camera A", Qt::MatchExactly | Qt::MatchRecursive); };
    ASSERT_TRUE(WaitFor([&] { return find().size() == 1; }));
    tree->setCurrentItem(find().front());
    QTest::mouseClick(ok, Qt::LeftButton);
  }

  QWidget mHost;
  std::unique_ptr<HearingFinder> mHearing = std::make_unique<HearingFinder>();
};

TEST_F(AcceptanceHeardTest, EmbeddedFinder_TellsOfOKAndGoesOn) {
  EmbedAndAcceptCameraA();

  EXPECT_EQ(mHearing->acceptedCount, 1);
  EXPECT_EQ(mHearing->acceptedName, KrString("Camera A"));
  EXPECT_NE(mHearing->GetWidget(), nullptr);
}

TEST_F(AcceptanceHeardTest, ApplicationThatClosesTheFinderThen_KeepsTheDevice) {
  mHearing->onAccepted = [&] { EXPECT_TRUE(mHearing->Close().IsOK()); };

  EmbedAndAcceptCameraA();

  EXPECT_EQ(mHearing->GetWidget(), nullptr);
  ASSERT_NE(mHearing->GetSelected(), nullptr);
}

TEST_F(AcceptanceHeardTest, ApplicationThatDeletesTheFinderThen_IsLeftAlone) {
  mHearing->onAccepted = [&] { mHearing.reset(); };

  EmbedAndAcceptCameraA();

  EXPECT_EQ(mHearing, nullptr);
}

TEST_F(AcceptanceHeardTest, OnAcceptedThatThrows_IsLogged) {
  const KrLogCapture log;
  mHearing->onAccepted = [] { throw std::runtime_error("a fault of the application"); };

  EmbedAndAcceptCameraA();

  EXPECT_TRUE(log.Contains(KrLogLevel::Error, "OnAccepted threw an exception: a fault of the application"));
  EXPECT_NE(mHearing->GetSelected(), nullptr);
}

TEST(KrDeviceFinderWnd, Kinds_AreReadAsTheyWereSet) {
  KrDeviceFinderWnd finder;
  bool isSelectable = false;
  bool isListed = false;

  finder.GetGEVEnabled(isSelectable, isListed);
  EXPECT_TRUE(isSelectable && isListed);
  finder.GetU3VEnabled(isSelectable, isListed);
  EXPECT_TRUE(isSelectable && isListed);
  finder.GetTolvanProtocolEnabled(isSelectable, isListed);
  EXPECT_TRUE(!isSelectable && isListed);

  finder.SetGEVEnabled(false, true);
  finder.SetU3VEnabled(true, false);
  finder.SetTolvanProtocolEnabled(true, false);
  finder.GetGEVEnabled(isSelectable, isListed);
  EXPECT_TRUE(!isSelectable && isListed);
  finder.GetU3VEnabled(isSelectable, isListed);
  EXPECT_TRUE(isSelectable && !isListed);
  finder.GetTolvanProtocolEnabled(isSelectable, isListed);
  EXPECT_TRUE(isSelectable && !isListed);
}

TEST(KrDeviceFinderWnd, NotShownYet_HasNoDevice) {
  const KrDeviceFinderWnd finder;

  EXPECT_EQ(finder.GetSelected(), nullptr);
}

TEST_F(DeviceFinderTest, NetworkKindsThatTheApplicationDoesNotList_LeaveNeitherAdaptersNorTheirControls) {
  mTransport->AddInterface(MakeFinderAdapter());
  mTransport->AddInterface(MakeFinderController());
  KrDeviceFinderWnd finder;
  finder.SetGEVEnabled(true, false);
  finder.SetTolvanProtocolEnabled(true, false);

  ASSERT_TRUE(finder.ShowModeless(0).IsOK());

  const QWidget& window = *finder.GetWidget();
  const auto* tree = window.findChild<QTreeWidget*>("control1049");
  ASSERT_TRUE(WaitFor([&] { return tree->topLevelItemCount() == 1; }));
  EXPECT_EQ(tree->topLevelItem(0)->text(0), "xHCI host controller");
  EXPECT_FALSE(window.findChild<QWidget*>("control1002")->isVisible());
  EXPECT_FALSE(window.findChild<QWidget*>("control1040")->isVisible());
  EXPECT_TRUE(window.findChild<QWidget*>("control1011")->isVisible());
}

TEST_F(DeviceFinderTest, DerivedOnFound_IsAskedBeforeADeviceIsShown) {
  class CameraBFinder : public KrDeviceFinderWnd {
  public:
    ~CameraBFinder() override { DeleteWnd(); }
    bool OnFound(const KrDeviceInfo* aDevice) override { return aDevice->GetDisplayID() == KrString("Camera B"); }
  };
  mTransport->AddInterface(MakeFinderAdapter());
  mTransport->AddDevice("eth0", MakeFinderCamera());
  mTransport->AddDevice("eth0", MakeFinderCamera("00:11:22:33:44:a2", "Camera B"));
  CameraBFinder finder;

  ASSERT_TRUE(finder.ShowModeless(0).IsOK());

  const auto* tree = finder.GetWidget()->findChild<QTreeWidget*>("control1049");
  const auto find = [tree](const char* aText) {
    return tree->findItems(aText, Qt::MatchExactly | Qt::MatchRecursive).size();
  };
  ASSERT_TRUE(WaitFor([&] { return find("Camera B") == 1; }));
  EXPECT_EQ(find("Camera A"), 0);
}

} // namespace krgui
