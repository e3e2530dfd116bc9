// A program that knows the Camera Link serial functions alone, at the serial ports of a simulated camera.

#include "bridgelab.h"
#include "cameralink/clprogram.h"
#include "cameralink/publishedline.h"
#include "krserial/krgenparameterarraycl.h"

namespace {

class PublishedCamera : public BridgedCamera {
protected:
  /// Publishes a port, which the program opens.
  void Publish(KrDeviceSerial aPort) {
    const KrResult started = mBridge.Start("Camera", &*mAdapter, aPort);
    ASSERT_TRUE(started.IsOK()) << started.GetDescription().CStr();
    ASSERT_EQ(mProgram.Ask("count"), "0 1");
    ASSERT_EQ(mProgram.Ask("init 0 0"), "0 0");
  }

  const SocketFolder mFolder;
  ClProgram mProgram;
};

} // namespace

TEST_F(PublishedCamera, MegabyteEachWay_IsWholeAndCounted) {
  constexpr int kRounds = 20;
  Publish(KrDeviceSerial::Bulk0);

  for (int round = 0; round < kRounds; ++round) {
    ASSERT_EQ(mProgram.Ask("write 0 50000 60000"), "0 50000") << round;
    ASSERT_EQ(mProgram.Ask("read 0 50000 60000"), "0 50000 right") << round;
  }

  EXPECT_TRUE(AwaitCounters(50000 * kRounds, 50000 * kRounds));
}

TEST_F(PublishedCamera, CameraVanishes_EndsNeitherTheProgramNorTheBridge) {
  Publish(KrDeviceSerial::Bulk0);

  mFaults->Disappear();

  EXPECT_TRUE(AwaitState(KrSerialBridgeState::WaitingForDevice));
  EXPECT_EQ(mProgram.Ask("close 0"), "0 0");
  mBridge.Stop();
  EXPECT_EQ(mProgram.Ask("count"), "0 0");
}
