// What a stream's statistics say of frames that never came, over everything between the camera and the application.

#include "await.h"
#include "camerarelay.h"
#include "fakecamera.h"
#include "packetpatience.h"

#include "gigevision/gigevisiontransport.h"
#include "krdevice/krdevice.h"
#include "krdevice/krstream.h"
#include "krsystem/krsystem.h"
#include "krsystem/transportregistry.h"

#include <gtest/gtest.h>

#include <arv.h>

#include <array>

namespace {

constexpr const char* kCameraAddress = "127.0.0.2";
constexpr const char* kRelayAddress = "127.0.0.3";
const std::uint32_t kGenerousTimeoutMs = krtest::GetGenerousMs();
constexpr std::uint64_t kHeightRegister = 0x104;

FakeCameraOptions MakeCameraOptions() {
  AddLoopbackAddress(kCameraAddress);
  AddLoopbackAddress(kRelayAddress);
  FakeCameraOptions options;
  options.address = kCameraAddress;
  return options;
}

RelayOrders MakeOrders() {
  RelayOrders orders;
  orders.largestTrial = 9000;
  // Three frames, of which two follow each other, and one packet.
  orders.isLost = [](const StreamPacket& aPacket) {
    const bool isFrame = aPacket.frame == 3 || aPacket.frame == 7 || aPacket.frame == 8;
    return isFrame || (aPacket.frame == 5 && aPacket.number == 2);
  };
  return orders;
}

class GigEVisionFrameCount : public testing::Test {
protected:
  void SetUp() override {
    // Frames that find room in the smallest of sockets, and time to take each before the next one comes.
    mCamera.SetFramePeriod(150'000);
    krsystem::RegisterTransport(mTransport);
    mSystem.SetDetectionTimeout(kGenerousTimeoutMs);
    const KrDeviceInfo* info = nullptr;
    const KrResult found = mSystem.FindDevice(kRelayAddress, &info);
    ASSERT_TRUE(found.IsOK()) << found.GetDescription().CStr();
    const KrResult opened = KrDevice::Open(*info, KrDeviceAccess::Control, mDevice);
    ASSERT_TRUE(opened.IsOK()) << opened.GetDescription().CStr();
    constexpr std::array<std::uint8_t, 4> kHeight = {0, 0, 1, 0}; // 256 lines.
    ASSERT_TRUE(
        mDevice->GetRegisterPort().Write(kHeightRegister, kHeight.data(), kHeight.size(), kGenerousTimeoutMs).IsOK());
  }
  void TearDown() override {
    mDevice.reset();
    krsystem::UnregisterTransport(mTransport);
  }
  static void TearDownTestSuite() { arv_shutdown(); }

  FakeCamera mCamera{MakeCameraOptions()};
  CameraRelay mRelay{kRelayAddress, kCameraAddress, MakeOrders()};
  std::shared_ptr<krtransport::GigEVisionTransport> mTransport = std::make_shared<krtransport::GigEVisionTransport>();
  KrSystem mSystem;
  std::unique_ptr<KrDevice> mDevice;
};

TEST_F(GigEVisionFrameCount, FramesAndPacketsLost_AreTheMissingOnes) {
  KrStream stream(*mDevice, 16);
  ASSERT_NO_FATAL_FAILURE(krtest::WaitForPackets(stream));
  ASSERT_TRUE(stream.Start().IsOK());

  for (int i = 0; i < 12; ++i) {
    KrBuffer* buffer = nullptr;
    ASSERT_TRUE(stream.Retrieve(buffer, kGenerousTimeoutMs).IsOK()) << i;
    ASSERT_TRUE(stream.Release(buffer).IsOK());
  }

  const KrStreamStatistics statistics = stream.GetStatistics();
  EXPECT_EQ(statistics.missingFrames, 3u);
  EXPECT_EQ(statistics.missingPackets, 1u);
  EXPECT_EQ(statistics.incomplete, 1u);
  EXPECT_GE(statistics.received, 11u);
}

} // namespace
