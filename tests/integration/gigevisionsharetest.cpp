// Several cameras on one adapter, which divide its link between them.

#include "await.h"
#include "camerarelay.h"
#include "gigevisionfixture.h"

namespace {

constexpr std::uint64_t kGigabit = 1000000000;
constexpr std::uint32_t kOwnDelay = 25;
// For packets of 16 KiB, 16422 bytes with Ethernet's own, at a gigabit and a clock of a gigahertz: the time of a packet
// by 11/9 for two cameras and by 21/9 for three.
constexpr std::uint32_t kHalfDelay = 160571;
constexpr std::uint32_t kThirdDelay = 306544;

FakeCameraOptions MakeOptions(const std::string& aAddress) {
  FakeCameraOptions options;
  options.address = aAddress;
  return options;
}

/// A camera of its own address, opened with control; frames that nobody takes are dropped.
class StreamingCamera {
public:
  StreamingCamera(krtransport::GigEVisionTransport& aTransport, std::uint32_t aLastByte)
      : mAddress("127.0.0." + std::to_string(aLastByte)) {
    AddLoopbackAddress(mAddress);
    mProcess = std::make_unique<FakeCamera>(MakeOptions(mAddress));
    krsystem::InterfaceFields adapter;
    krsystem::AnyDeviceFields device;
    EXPECT_TRUE(aTransport.FindAddress(0x7F000000 + aLastByte, kGenerousTimeoutMs, adapter, device).IsOK());
    const KrResult result = aTransport.Open(adapter, device, krsystem::DeviceAccess::Control, mLink);
    EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    EXPECT_TRUE(WriteRegister(*mLink, kPacketDelayRegister, kOwnDelay).IsOK());
  }

  void Start() {
    const KrResult result = mLink->GetBufferSource(0)->Start();
    EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  }
  void Stop() { mLink->GetBufferSource(0)->Stop(); }
  void Kill() { mProcess->Kill(); }
  void GiveBack() { mLink->GiveBackControl(); }

  /// Waits until the camera pauses that long, and gives the pause that it has then; another one with a failure.
  std::uint32_t WaitForDelay(std::uint32_t aTicks) {
    std::uint32_t delay = 0;
    EXPECT_TRUE(krtest::Await([&] {
      delay = ReadRegister(*mLink, kPacketDelayRegister);
      return delay == aTicks;
    }));
    return delay;
  }

private:
  const std::string mAddress;
  std::unique_ptr<FakeCamera> mProcess;
  std::unique_ptr<krsystem::IDeviceLink> mLink;
};

class GigEVisionShare : public testing::Test {
protected:
  static void TearDownTestSuite() { arv_shutdown(); }

  krtransport::GigEVisionTransport mTransport{[](const std::string&) { return kGigabit; }};
  StreamingCamera mFirst{mTransport, 2};
  StreamingCamera mSecond{mTransport, 3};
};

TEST_F(GigEVisionShare, CameraAlone_KeepsItsOwnPause) {
  mFirst.Start();

  EXPECT_EQ(mFirst.WaitForDelay(kOwnDelay), kOwnDelay);
}

TEST_F(GigEVisionShare, CamerasStartAndStop_SharesAreSetAnewAndGivenUp) {
  mFirst.Start();

  mSecond.Start();
  EXPECT_EQ(mFirst.WaitForDelay(kHalfDelay), kHalfDelay);
  EXPECT_EQ(mSecond.WaitForDelay(kHalfDelay), kHalfDelay);

  StreamingCamera third(mTransport, 4);
  third.Start();
  EXPECT_EQ(mFirst.WaitForDelay(kThirdDelay), kThirdDelay);
  EXPECT_EQ(third.WaitForDelay(kThirdDelay), kThirdDelay);

  third.Stop();
  EXPECT_EQ(third.WaitForDelay(kOwnDelay), kOwnDelay);
  EXPECT_EQ(mSecond.WaitForDelay(kHalfDelay), kHalfDelay);

  mSecond.Stop();
  EXPECT_EQ(mSecond.WaitForDelay(kOwnDelay), kOwnDelay);
  EXPECT_EQ(mFirst.WaitForDelay(kOwnDelay), kOwnDelay);
}

TEST_F(GigEVisionShare, CameraGivenBack_LeavesTheLinkToTheOther) {
  mFirst.Start();
  mSecond.Start();
  ASSERT_EQ(mFirst.WaitForDelay(kHalfDelay), kHalfDelay);

  mSecond.GiveBack();

  EXPECT_EQ(mFirst.WaitForDelay(kOwnDelay), kOwnDelay);
}

TEST_F(GigEVisionShare, CameraLostAndStopped_LeavesTheLinkToTheOther) {
  mFirst.Start();
  mSecond.Start();
  ASSERT_EQ(mFirst.WaitForDelay(kHalfDelay), kHalfDelay);
  mSecond.Kill();

  mSecond.Stop();

  EXPECT_EQ(mFirst.WaitForDelay(kOwnDelay), kOwnDelay);
}

} // namespace
