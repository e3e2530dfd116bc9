// What discovery makes of its own faults and of what the application refuses, and what the finder says about it.

#include "finderfixture.h"
#include "logic/finder/finderkeys.h"

#include <stdexcept>

namespace krgui {

namespace {

/// The fields of an interface whose making has failed: whoever reads them gets an exception.
krsystem::InterfaceFields MakeBrokenInterface() {
  struct Fault {
    operator krsystem::NetworkAdapterFields() const { throw std::runtime_error("no fields"); }
  };
  krsystem::InterfaceFields fields;
  try {
    fields.emplace<krsystem::NetworkAdapterFields>(Fault());
  } catch (const std::runtime_error&) {
    EXPECT_TRUE(fields.valueless_by_exception());
  }
  return fields;
}

} // namespace

TEST_F(DeviceFinderTest, RoundThatFailsByAnException_EndsDiscoveryAndSaysSoBesideTheDevices) {
  mTransport->AddInterface(MakeFinderAdapter());
  mTransport->AddDevice("eth0", MakeFinderCamera());
  Open({"Camera A"});

  mTransport->SetInterfaces({MakeBrokenInterface()});

  ASSERT_TRUE(WaitFor([&] { return !mFinder.GetHint().isEmpty(); }));
  EXPECT_TRUE(mFinder.GetHint().startsWith("Devices are no longer looked for, because of a fault ("))
      << mFinder.GetHint().toStdString();
  EXPECT_NE(mFinder.FindItem("Camera A"), nullptr);
}

TEST_F(DeviceFinderTest, WindowWhoseDiscoveryFailed_ClosesAndLooksAgainInTheNextShowing) {
  mTransport->AddInterface(MakeFinderAdapter());
  mTransport->AddDevice("eth0", MakeFinderCamera());
  Open({"Camera A"});
  mTransport->SetInterfaces({MakeBrokenInterface()});
  ASSERT_TRUE(WaitFor([&] { return !mFinder.GetHint().isEmpty(); }));

  EXPECT_TRUE(mFinder.Close().IsOK());

  EXPECT_FALSE(mFinder.IsOpen());
  mTransport->SetInterfaces({MakeFinderAdapter()});
  Open({"Camera A"});
  EXPECT_TRUE(mFinder.GetHint().isEmpty());
}

TEST_F(DeviceFinderTest, UnreachableDeviceThatTheApplicationRefuses_IsNotHintedAt) {
  mFilter = [](const KrDeviceInfo*) { return false; };
  mTransport->AddInterface(MakeFinderAdapter());
  mTransport->AddDevice("eth0", MakeForeignCamera());
  Open({"eth0 192.168.1.10"});

  ASSERT_TRUE(AwaitRounds(1));
  ASSERT_TRUE(WaitFor([&] { return mFinder.GetHint().startsWith("No device has answered yet."); }));
  mFinder.PostRefresh();
  ASSERT_TRUE(mFinder.DoEvents().IsOK());

  EXPECT_TRUE(mFinder.GetHint().startsWith("No device has answered yet.")) << mFinder.GetHint().toStdString();
}

TEST_F(DeviceFinderTest, UnreachableDeviceOnTwoAdapters_IsOneInTheHint) {
  mTransport->AddInterface(MakeFinderAdapter());
  mTransport->AddInterface(MakeFinderAdapter("eth1", "192.168.2.10", "00:11:22:33:44:02"));
  mTransport->AddDevice("eth0", MakeForeignCamera());
  mTransport->AddDevice("eth1", MakeForeignCamera());
  Open({"eth0 192.168.1.10", "eth1 192.168.2.10"});

  ASSERT_TRUE(AwaitRounds(1));
  ASSERT_TRUE(mFinder.DoEvents().IsOK());

  EXPECT_TRUE(mFinder.GetHint().startsWith("One device answers")) << mFinder.GetHint().toStdString();
}

TEST_F(DeviceFinderTest, InterfacesThatFillTheTree_LeaveTheHintAtItsBottomEdge) {
  constexpr int kAdapters = 60;
  for (int i = 0; i < kAdapters; ++i) {
    const std::string number = std::to_string(10 + i);
    mTransport->AddInterface(
        MakeFinderAdapter("eth" + KrString(number), "192.168." + KrString(number) + ".1", "00:11:22:33:44:" + number));
  }

  Open({"eth10 192.168.10.1"});

  QTreeWidget& tree = mFinder.GetTree();
  EXPECT_FALSE(mFinder.GetHint().isEmpty());
  const auto* hint = tree.findChild<QLabel*>("hint");
  EXPECT_TRUE(tree.viewport()->rect().contains(hint->geometry()));
  EXPECT_TRUE(hint->autoFillBackground());
  EXPECT_LT(hint->height(), tree.viewport()->height() / 4);
}

TEST_F(DeviceFinderTest, RefusedDevice_IsNoNodeAtAll) {
  mTransport->AddInterface(MakeFinderAdapter());
  mTransport->AddDevice("eth0", MakeFinderCamera());
  mTransport->AddDevice("eth0", MakeFinderCamera("00:11:22:33:44:a2", "Camera B"));
  KrSystem system;
  ASSERT_TRUE(system.Find().IsOK());
  ASSERT_EQ(system.GetDeviceCount(), 2U);
  const FinderKinds kinds;
  FinderDiscovery discovery(
      system, kinds, [](const KrDeviceInfo* aDevice) { return aDevice->GetDisplayID() != KrString("Camera A"); },
      std::make_shared<MessageQueue>());

  discovery.Replay();

  for (std::size_t i = 0; i < system.GetDeviceCount(); ++i) {
    const KrDeviceInfo& device = *system.GetDeviceInfo(i);
    const FinderModel::NodeKey key{GetDeviceKey(device.GetInterface(), device), device.GetType()};
    EXPECT_EQ(discovery.GetModel().FindNode(key) != nullptr, device.GetDisplayID() == KrString("Camera B"));
  }
}

} // namespace krgui
