// What the finder's tree shows, while devices come, change, and fall silent.

#include "finderfixture.h"

#include "logic/finder/findericon.h"

#include <QCheckBox>

namespace krgui {

namespace {

int GetIcon(const QTreeWidgetItem& aItem) {
  return aItem.data(0, Qt::UserRole + 1).toInt();
}

} // namespace

TEST_F(DeviceFinderTest, Devices_StandUnderTheirInterfacesInTheirOrder) {
  mTransport->AddInterface(MakeFinderAdapter());
  mTransport->AddInterface(MakeFinderController());
  mTransport->AddDevice("eth0", MakeFinderCamera());
  mTransport->AddDevice("usb1", MakeUSBCamera());

  Open({"Camera A", "USB camera"});

  QTreeWidget& tree = mFinder.GetTree();
  ASSERT_EQ(tree.topLevelItemCount(), 2);
  EXPECT_EQ(tree.topLevelItem(0)->text(0), "eth0 192.168.1.10");
  EXPECT_EQ(tree.topLevelItem(1)->text(0), "xHCI host controller");
  EXPECT_EQ(mFinder.FindItem("Camera A")->parent(), tree.topLevelItem(0));
  EXPECT_EQ(mFinder.FindItem("USB camera")->parent(), tree.topLevelItem(1));
  EXPECT_TRUE(tree.topLevelItem(0)->isExpanded());
  EXPECT_TRUE(tree.topLevelItem(1)->isExpanded());
}

TEST_F(DeviceFinderTest, Items_HaveTheirPictures) {
  mTransport->AddInterface(MakeFinderAdapter());
  mTransport->AddDevice("eth0", MakeFinderCamera());
  mTransport->AddDevice("eth0", MakeOldDevice());

  Open({"Camera A", "Old device"});

  EXPECT_EQ(GetIcon(*mFinder.FindItem("eth0 192.168.1.10")), static_cast<int>(FinderIcon::Adapter));
  EXPECT_EQ(GetIcon(*mFinder.FindItem("Camera A")), static_cast<int>(FinderIcon::GEV));
  EXPECT_EQ(GetIcon(*mFinder.FindItem("Old device")), static_cast<int>(FinderIcon::TolvanProtocolDisabled));
  EXPECT_FALSE(mFinder.FindItem("Camera A")->icon(0).isNull());
}

TEST_F(DeviceFinderTest, UnreachableDevice_IsShownOnlyWhileItIsAskedFor) {
  mTransport->AddInterface(MakeFinderAdapter());
  mTransport->AddDevice("eth0", MakeFinderCamera());
  mTransport->AddDevice("eth0", MakeForeignCamera());
  Open({"Camera A"});
  ASSERT_EQ(mFinder.FindItem("Foreign"), nullptr);

  Click(kFinderUnreachableID);

  ASSERT_TRUE(AwaitItem("Foreign"));
  EXPECT_EQ(GetIcon(*mFinder.FindItem("Foreign")), static_cast<int>(FinderIcon::GEVInvalid));
  Select("Foreign");
  EXPECT_EQ(TestFinderWnd::FindValue(mFinder.GetDeviceList(), "IP Configuration"), "Invalid on this interface");

  Click(kFinderUnreachableID);

  EXPECT_TRUE(AwaitNoItem("Foreign"));
  EXPECT_NE(mFinder.FindItem("Camera A"), nullptr);
}

TEST_F(DeviceFinderTest, SilentDevice_StaysForTwoSecondsAndThenVanishes) {
  mTransport->AddInterface(MakeFinderAdapter());
  mTransport->AddDevice("eth0", MakeFinderCamera());
  Open({"Camera A"});
  mTransport->SetDevices({});
  ASSERT_TRUE(AwaitRounds(1));
  // Rounds in which nothing is reported leave a device as old as it is.
  mNowMs += 2000;
  mFinder.PostRefresh();
  ASSERT_TRUE(mFinder.DoEvents().IsOK());
  ASSERT_NE(mFinder.FindItem("Camera A"), nullptr);

  mNowMs += 1;
  mFinder.PostRefresh();

  EXPECT_TRUE(AwaitNoItem("Camera A"));
}

TEST_F(DeviceFinderTest, VanishedDevice_ComesBackWhenItAnswersAgain) {
  mTransport->AddInterface(MakeFinderAdapter());
  mTransport->AddDevice("eth0", MakeFinderCamera());
  Open({"Camera A"});
  mTransport->SetDevices({});
  ASSERT_TRUE(AwaitRounds(1));
  mNowMs += 2001;
  ASSERT_TRUE(AwaitNoItem("Camera A"));

  mTransport->AddDevice("eth0", MakeFinderCamera());

  EXPECT_TRUE(AwaitItem("Camera A"));
}

TEST_F(DeviceFinderTest, SelectedDeviceThatVanishes_LeavesNothingSelectedInsteadOfAnotherCamera) {
  mTransport->AddInterface(MakeFinderAdapter());
  mTransport->AddDevice("eth0", MakeFinderCamera());
  mTransport->AddDevice("eth0", MakeFinderCamera("00:11:22:33:44:a2", "Camera B"));
  Open({"Camera A", "Camera B"});
  Select("Camera A");
  mTransport->SetDevices({{"eth0", MakeFinderCamera("00:11:22:33:44:a2", "Camera B")}});
  ASSERT_TRUE(AwaitRounds(1));
  mNowMs += 2001;

  ASSERT_TRUE(AwaitNoItem("Camera A"));

  EXPECT_TRUE(mFinder.GetTree().selectedItems().isEmpty());
  EXPECT_FALSE(mFinder.IsEnabled(kFinderOKID));
  EXPECT_EQ(mFinder.GetDeviceList().topLevelItemCount(), 0);
}

TEST_F(DeviceFinderTest, DeviceUnderAnotherName_IsTheSameItemWithAnotherText) {
  mTransport->AddInterface(MakeFinderAdapter());
  mTransport->AddDevice("eth0", MakeFinderCamera());
  Open({"Camera A"});
  const QTreeWidgetItem* item = mFinder.FindItem("Camera A");
  Select("Camera A");

  mTransport->SetDevices({{"eth0", MakeFinderCamera("00:11:22:33:44:a1", "Renamed")}});

  ASSERT_TRUE(AwaitItem("Renamed"));
  EXPECT_EQ(mFinder.FindItem("Renamed"), item);
  EXPECT_TRUE(mFinder.FindItem("Renamed")->isSelected());
  EXPECT_EQ(TestFinderWnd::FindValue(mFinder.GetDeviceList(), "Model"), "Renamed");
}

TEST_F(DeviceFinderTest, DeviceThatTheApplicationRefuses_IsNeverShown) {
  mFilter = [](const KrDeviceInfo* aDevice) { return aDevice->GetDisplayID() != KrString("Camera A"); };
  mTransport->AddInterface(MakeFinderAdapter());
  mTransport->AddDevice("eth0", MakeFinderCamera());
  mTransport->AddDevice("eth0", MakeFinderCamera("00:11:22:33:44:a2", "Camera B"));

  Open({"Camera B"});

  ASSERT_TRUE(AwaitRounds(0));
  ASSERT_TRUE(mFinder.DoEvents().IsOK());
  EXPECT_EQ(mFinder.FindItem("Camera A"), nullptr);
}

TEST_F(DeviceFinderTest, OnFoundThatThrows_CountsAsAllowed) {
  const KrLogCapture log;
  mFilter = [](const KrDeviceInfo*) -> bool { throw std::runtime_error("a fault of the application"); };
  mTransport->AddInterface(MakeFinderAdapter());
  mTransport->AddDevice("eth0", MakeFinderCamera());

  Open({"Camera A"});

  EXPECT_TRUE(
      log.Contains(KrLogLevel::Error, "OnFound threw an exception; the device is shown: a fault of the application"));
}

TEST_F(DeviceFinderTest, NewAdapter_RebuildsTheTreeWithEveryDeviceThatIsKnown) {
  mTransport->AddInterface(MakeFinderAdapter());
  mTransport->AddDevice("eth0", MakeFinderCamera());
  Open({"Camera A"});

  mTransport->AddInterface(MakeFinderAdapter("eth1", "192.168.2.10", "00:11:22:33:44:02"));

  ASSERT_TRUE(AwaitItem("eth1 192.168.2.10"));
  EXPECT_TRUE(AwaitItem("Camera A"));
}

TEST_F(DeviceFinderTest, LostAdapter_GoesWithItsDevices) {
  mTransport->AddInterface(MakeFinderAdapter());
  mTransport->AddInterface(MakeFinderAdapter("eth1", "192.168.2.10", "00:11:22:33:44:02"));
  mTransport->AddDevice("eth0", MakeFinderCamera());
  mTransport->AddDevice("eth1", MakeFinderCamera("00:11:22:33:44:a2", "Camera B"));
  Open({"Camera A", "Camera B"});

  mTransport->SetInterfaces({MakeFinderAdapter()});

  ASSERT_TRUE(AwaitNoItem("eth1 192.168.2.10"));
  EXPECT_TRUE(AwaitItem("Camera A"));
  EXPECT_EQ(mFinder.FindItem("Camera B"), nullptr);
}

TEST_F(DeviceFinderTest, Rebuild_AsksTheApplicationAboutEveryDeviceAgainOnTheWindowsThread) {
  std::atomic<int> asked = 0;
  const auto windowThread = std::this_thread::get_id();
  mTransport->AddInterface(MakeFinderAdapter());
  mTransport->AddDevice("eth0", MakeFinderCamera());
  Open({"Camera A"});
  {
    const std::lock_guard lock(mFilterMutex);
    mFilter = [&](const KrDeviceInfo*) {
      asked += std::this_thread::get_id() == windowThread;
      return true;
    };
  }

  mTransport->AddInterface(MakeFinderAdapter("eth1", "192.168.2.10", "00:11:22:33:44:02"));

  ASSERT_TRUE(AwaitItem("eth1 192.168.2.10"));
  EXPECT_GE(asked, 1);
}

TEST_F(DeviceFinderTest, NameFromADevice_IsOneLineOfPlainText) {
  mTransport->AddInterface(MakeFinderAdapter());
  mTransport->AddDevice("eth0", MakeFinderCamera("00:11:22:33:44:a1", "<b>A</b>\n\x07 \xF0\x9F\x93\xB7 \xE2\x80\xAE!"));

  Open({"eth0 192.168.1.10"});

  ASSERT_TRUE(WaitFor([&] { return mFinder.GetTree().topLevelItem(0)->childCount() == 1; }));
  EXPECT_EQ(mFinder.GetTree().topLevelItem(0)->child(0)->text(0), QString::fromUtf8("<b>A</b>   \xF0\x9F\x93\xB7  !"));
}

TEST_F(DeviceFinderTest, BeforeAnyDevice_TheTreeSaysThatItIsLooking) {
  Gate gate;
  mTransport->SetScript([&](ScriptedTransport::Point, const std::stop_token& aStop) { gate.Wait(aStop); });
  mTransport->AddInterface(MakeFinderAdapter());

  Open({"eth0 192.168.1.10"});

  ASSERT_TRUE(gate.AwaitReached());
  EXPECT_EQ(mFinder.GetHint(), QString::fromUtf8("Looking for devices…"));
  EXPECT_EQ(mFinder.GetTree().topLevelItemCount(), 1);
  gate.Open();
  EXPECT_TRUE(WaitFor([&] { return mFinder.GetHint().startsWith("No device has answered yet."); }));
}

TEST_F(DeviceFinderTest, FirstDevice_TakesTheHintAway) {
  mTransport->AddInterface(MakeFinderAdapter());
  Open({"eth0 192.168.1.10"});
  ASSERT_FALSE(mFinder.GetHint().isEmpty());

  mTransport->AddDevice("eth0", MakeFinderCamera());

  ASSERT_TRUE(AwaitItem("Camera A"));
  EXPECT_TRUE(mFinder.GetHint().isEmpty());
}

TEST_F(DeviceFinderTest, UnreachableDevicesAlone_AreHintedAt) {
  mTransport->AddInterface(MakeFinderAdapter());
  mTransport->AddDevice("eth0", MakeForeignCamera());
  Open({"eth0 192.168.1.10"});

  EXPECT_TRUE(WaitFor([&] { return mFinder.GetHint().contains("cannot reach"); }));
}

TEST_F(DeviceFinderTest, NoTransports_AreToldOf) {
  krsystem::UnregisterTransport(mTransport);

  Open({});

  EXPECT_TRUE(mFinder.GetHint().startsWith("No transports are installed")) << mFinder.GetHint().toStdString();
  EXPECT_EQ(mFinder.GetTree().topLevelItemCount(), 0);
}

TEST_F(DeviceFinderTest, Thread_SaysThatItStarted) {
  const KrLogCapture log;

  Open({});

  ASSERT_TRUE(AwaitRounds(0));
  const std::vector<KrLogRecord> records = log.GetRecords();
  const auto isIt = [](const KrLogRecord& aRecord) {
    return aRecord.level == KrLogLevel::Info && aRecord.text == KrString("Device finder window thread started") &&
           aRecord.function == KrString("DeviceFinderWnd::DiscoveryThread");
  };
  EXPECT_EQ(std::count_if(records.begin(), records.end(), isIt), 1);
}

} // namespace krgui
