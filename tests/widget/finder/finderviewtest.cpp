// What the user has chosen to see, and keeps, while devices and adapters come and go: the selected item, how far the
// tree is scrolled, the check box.

#include "finderfixture.h"

#include <QCheckBox>
#include <QScrollBar>

#include <cstdio>

namespace krgui {

namespace {

KrString MakeMAC(int aNumber) {
  char text[18];
  (void)std::snprintf(text, sizeof text, "02:00:00:00:%02x:%02x", static_cast<unsigned>(aNumber) >> 8U & 0xFFU,
                      static_cast<unsigned>(aNumber) & 0xFFU);
  return text;
}

} // namespace

class FinderViewTest : public DeviceFinderTest {
protected:
  void SetUp() override {
    mTransport->AddInterface(MakeFinderAdapter());
    mTransport->AddDevice("eth0", MakeFinderCamera());
  }
  /// Cameras "Camera 0", "Camera 1" and so on.
  void SetCameras(int aCount) {
    std::vector<std::pair<KrString, krsystem::AnyDeviceFields>> devices;
    for (int i = 0; i < aCount; ++i)
      devices.emplace_back("eth0", MakeFinderCamera(MakeMAC(i), "Camera " + KrString(std::to_string(i))));
    mTransport->SetDevices(std::move(devices));
  }
  [[nodiscard]] bool AwaitCount(int aCount) {
    return WaitFor([&] {
      const QTreeWidgetItem* root = mFinder.GetTree().topLevelItem(0);
      return root && root->childCount() == aCount;
    });
  }
  /// Makes the finder build its tree anew, and waits until it shows an item again.
  void Rebuild(const char* aAwaited) {
    mTransport->AddInterface(MakeFinderAdapter("eth1", "192.168.2.10", "00:11:22:33:44:02"));
    ASSERT_TRUE(AwaitItem("eth1 192.168.2.10"));
    ASSERT_TRUE(AwaitItem(aAwaited));
    ASSERT_TRUE(mFinder.DoEvents().IsOK());
  }
  QString GetSelectedText() const {
    const QList<QTreeWidgetItem*> selected = mFinder.GetTree().selectedItems();
    return selected.size() == 1 ? selected.front()->text(0) : QString();
  }
};

TEST_F(FinderViewTest, SelectedDevice_IsSelectedAgainAfterARebuild) {
  mTransport->AddDevice("eth0", MakeFinderCamera("00:11:22:33:44:a2", "Camera B"));
  Open({"Camera A", "Camera B"});
  Select("Camera B");

  Rebuild("Camera B");

  EXPECT_EQ(GetSelectedText(), "Camera B");
  EXPECT_TRUE(mFinder.IsEnabled(kFinderOKID));
  EXPECT_EQ(TestFinderWnd::FindValue(mFinder.GetDeviceList(), "Model"), "Camera B");
}

TEST_F(FinderViewTest, SelectedInterface_IsSelectedAgainAfterARebuild) {
  Open({"Camera A"});
  Select("eth0 192.168.1.10");

  Rebuild("Camera A");

  EXPECT_EQ(GetSelectedText(), "eth0 192.168.1.10");
  EXPECT_GT(mFinder.GetInterfaceList().topLevelItemCount(), 0);
}

TEST_F(FinderViewTest, SelectedDeviceThatIsNotThereAnyMore_LeavesNothingSelectedAfterARebuild) {
  mTransport->AddDevice("eth0", MakeFinderCamera("00:11:22:33:44:a2", "Camera B"));
  Open({"Camera A", "Camera B"});
  Select("Camera A");
  mTransport->SetDevices({{"eth0", MakeFinderCamera("00:11:22:33:44:a2", "Camera B")}});
  ASSERT_TRUE(AwaitRounds(1));

  Rebuild("Camera B");

  EXPECT_EQ(mFinder.FindItem("Camera A"), nullptr);
  EXPECT_EQ(GetSelectedText(), "");
  EXPECT_FALSE(mFinder.IsEnabled(kFinderOKID));
  // It is not selected behind the user's back when it comes again.
  mTransport->AddDevice("eth0", MakeFinderCamera());
  ASSERT_TRUE(AwaitItem("Camera A"));
  EXPECT_EQ(GetSelectedText(), "");
}

TEST_F(FinderViewTest, NothingSelected_StaysSoAfterARebuild) {
  Open({"Camera A"});

  Rebuild("Camera A");

  EXPECT_EQ(GetSelectedText(), "");
}

TEST_F(FinderViewTest, ScrolledTree_StandsWhereItStoodAfterARebuild) {
  SetCameras(100);
  Open({"Camera 99"});
  ASSERT_TRUE(AwaitCount(100));
  QScrollBar* bar = mFinder.GetTree().verticalScrollBar();
  bar->setValue(bar->maximum() / 2);
  const int scroll = bar->value();
  ASSERT_GT(scroll, 0);

  Rebuild("Camera 99");

  EXPECT_EQ(bar->value(), scroll);
}

TEST_F(FinderViewTest, SelectedDevice_StaysSelectedWhileOthersComeAndGo) {
  mTransport->AddDevice("eth0", MakeFinderCamera("00:11:22:33:44:a2", "Camera B"));
  Open({"Camera A", "Camera B"});
  Select("Camera A");
  const QTreeWidgetItem* item = mFinder.FindItem("Camera A");

  mTransport->SetDevices({{"eth0", MakeFinderCamera()}, {"eth0", MakeFinderCamera("00:11:22:33:44:a3", "Camera C")}});
  ASSERT_TRUE(AwaitItem("Camera C"));
  EXPECT_EQ(GetSelectedText(), "Camera A");
  mNowMs += 1500;
  ASSERT_TRUE(AwaitRounds(1));
  mNowMs += 1500;
  ASSERT_TRUE(AwaitNoItem("Camera B"));

  EXPECT_EQ(GetSelectedText(), "Camera A");
  EXPECT_EQ(mFinder.FindItem("Camera A"), item);
  EXPECT_TRUE(mFinder.IsEnabled(kFinderOKID));
}

TEST_F(FinderViewTest, AThousandDevices_AreAllShownAndVanishTogether) {
  SetCameras(1000);
  Open({"Camera 999"});
  ASSERT_TRUE(AwaitCount(1000));
  Select("Camera 500");
  EXPECT_EQ(TestFinderWnd::FindValue(mFinder.GetDeviceList(), "Model"), "Camera 500");

  mTransport->SetDevices({{"eth0", MakeFinderCamera(MakeMAC(500), "Camera 500")}});
  ASSERT_TRUE(AwaitRounds(1));
  mNowMs += 1500;
  ASSERT_TRUE(AwaitRounds(1));
  mNowMs += 1500;

  ASSERT_TRUE(AwaitCount(1));
  EXPECT_EQ(GetSelectedText(), "Camera 500");
}

TEST_F(FinderViewTest, CheckBox_IsAsItWasLeftInTheNextShowing) {
  mTransport->AddDevice("eth0", MakeForeignCamera());
  Open({"Camera A"});
  Click(kFinderUnreachableID);
  ASSERT_TRUE(AwaitItem("Foreign"));
  ASSERT_TRUE(mFinder.Close().IsOK());

  Open({"Camera A", "Foreign"});

  EXPECT_TRUE(mFinder.Get<QCheckBox>(kFinderUnreachableID).isChecked());
  EXPECT_TRUE(WaitFor([&] { return !mTransport->WasSubnetBroadcast(); }));
}

} // namespace krgui
