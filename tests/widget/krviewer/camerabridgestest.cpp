// The camera bridges of the viewer, with the device that its thread lends.

#include "camerabridges.h"
#include "krcamerabridge/krcamerabridge.h"
#include "viewerlab.h"

#include <QComboBox>

using krviewer::CameraBridges;
using krviewer::DeviceBorrower;

namespace {

constexpr const char* kGrabberMAC = "02:4b:52:00:78:12";
constexpr int kPort = 1048;

class CameraBridgesTest : public ViewerLabTest {
protected:
  void LookAgain() override { mBridges.Follow(mAcquisition->GetAdapter(DeviceBorrower::CameraBridges)); }
  void Close() {
    mBridges.GiveBack(mAcquisition->GetAdapter(DeviceBorrower::CameraBridges));
    mAcquisition->Stop();
  }
  int CountListedPorts() {
    return mBridges.GetWindow().GetWidget()->findChild<QComboBox*>("control" + QString::number(kPort))->count();
  }

  CameraBridges mBridges;
};

} // namespace

TEST_F(CameraBridgesTest, OpenedBeforeTheDeviceIsThere_ListsItsPortsWhenItIs) {
  ASSERT_TRUE(mBridges.Show(0).IsOK());
  EXPECT_FALSE(mBridges.HasPorts());

  Open(kGrabberMAC);

  EXPECT_TRUE(Await([this] { return mBridges.HasPorts(); }));
  EXPECT_EQ(CountListedPorts(), 3);
  Close();
  EXPECT_FALSE(mBridges.HasPorts());
}

TEST_F(CameraBridgesTest, DeviceWithoutPorts_OffersNothing) {
  Open(kRangeMAC);

  EXPECT_TRUE(Await([this] { return mBridges.HasDevice(); }));
  EXPECT_FALSE(mBridges.HasPorts());
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
