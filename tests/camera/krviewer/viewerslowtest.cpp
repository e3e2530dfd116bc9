// The viewer on a camera of an independent program that is slow to answer, or whose frames lose packets on their way.

#include "camerarelay.h"
#include "fakecamera.h"
#include "networklab.h"
#include "viewersession.h"

#include <atomic>
#include <chrono>

namespace {

constexpr const char* kCameraAddress = "127.0.0.2";
const QString kRelayAddress = "127.0.0.3";
const QString kCamera = "Fake (127.0.0.3)";

class ViewerSlow : public ViewerSession {
protected:
  ViewerSlow() {
    AddLoopbackAddress(kCameraAddress);
    AddLoopbackAddress(kRelayAddress.toStdString());
    mCamera.emplace(FakeCameraOptions{.address = kCameraAddress});
    mCamera->SetFramePeriod(100'000);
    mRelay.emplace(
        kRelayAddress.toStdString(), kCameraAddress,
        RelayOrders{.isLost = [this](const StreamPacket& aPacket) { return mIsLosing && aPacket.number == 1; },
                    .getAnswerDelay = [this] { return std::chrono::milliseconds(mDelayMs); }});
  }

  std::atomic<int> mDelayMs = 0;
  std::atomic<bool> mIsLosing = false;
  std::optional<FakeCamera> mCamera;
  std::optional<CameraRelay> mRelay;
};

} // namespace

TEST_F(ViewerSlow, CameraThatBecomesSlowAfterItWasOpened_IsSaidToBeAndNotLost) {
  Start({kRelayAddress});
  ASSERT_TRUE(AwaitStreaming(kCamera));

  mDelayMs = 220;
  EXPECT_TRUE(User().AwaitText("slow to answer"));
  EXPECT_TRUE(AwaitMoreFrames());
  mDelayMs = 0;

  EXPECT_TRUE(User().AwaitNoText("slow to answer"));
  EXPECT_TRUE(AwaitMoreFrames());
}

TEST_F(ViewerSlow, CameraThatIsSlowFromTheFirst_IsSaidToBeWhileItIsConnected) {
  mDelayMs = 150;
  Start({kRelayAddress});

  EXPECT_TRUE(User().AwaitText("The camera is slow to answer. Wait a little longer"));
  mDelayMs = 0;

  EXPECT_TRUE(AwaitStreaming(kCamera));
}

TEST_F(ViewerSlow, FramesThatLosePackets_AreSaidToBeLostOnTheirWay) {
  Start({kRelayAddress});
  ASSERT_TRUE(AwaitStreaming(kCamera));

  mIsLosing = true;

  EXPECT_TRUE(User().AwaitText("Packets are lost between the camera and this computer"));
}
