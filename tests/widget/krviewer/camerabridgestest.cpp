// The camera bridges of the viewer, with the device that its thread lends.

#include "camerabridgesfixture.h"

TEST_F(CameraBridgesTest, OpenedBeforeTheDeviceIsThere_ListsItsPortsWhenItIs) {
  ASSERT_TRUE(mBridges.Show(0).IsOK());
  EXPECT_FALSE(mBridges.HasPorts());

  Open(kGrabberMAC);

  EXPECT_TRUE(Await([this] { return mBridges.HasPorts(); }));
  EXPECT_EQ(CountListedPorts(), 3);
  EXPECT_TRUE(mBridges.CheckShowing().IsOK());
  Close();
  EXPECT_FALSE(mBridges.HasPorts());
}

TEST_F(CameraBridgesTest, DeviceWithoutPorts_SaysWhyThereIsNothingToShow) {
  Open(kRangeMAC);

  EXPECT_TRUE(Await([this] { return mBridges.HasDevice(); }));
  EXPECT_FALSE(mBridges.HasPorts());
  EXPECT_TRUE(mBridges.CheckShowing() == KrResult::Code::NotSupported);
  Close();
}

TEST_F(CameraBridgesTest, DeviceLostAndBack_IsLetGoAndTakenUpAgain) {
  ASSERT_TRUE(mBridges.Show(0).IsOK());
  Open(kGrabberMAC);
  for (int round = 0; round < 2; ++round) {
    ASSERT_TRUE(Await([this] { return mBridges.HasPorts() && IsIn(krviewer::AcquisitionState::Streaming); })) << round;

    ASSERT_TRUE(mLab->Lose(kGrabberMAC).IsOK());
    ASSERT_TRUE(Await([this] { return !mBridges.HasDevice(); })) << round;
    EXPECT_EQ(CountListedPorts(), 0);
    ASSERT_TRUE(mLab->Restore(kGrabberMAC).IsOK());
  }

  EXPECT_TRUE(Await([this] { return CountListedPorts() == 3; }));
  Close();
}
