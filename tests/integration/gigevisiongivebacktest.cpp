#include "await.h"
#include "gigevisionfixture.h"

#include <atomic>
#include <future>
#include <thread>

namespace {

using krsystem::AccessType;
using krsystem::DeviceAccess;

constexpr std::uint64_t kHeartbeatTimeoutRegister = 0x0938; // Milliseconds.

class GigEVisionGiveBack : public GigEVisionStreamTest {
protected:
  KrResult ReadWidth() {
    std::array<std::uint8_t, 4> bytes{};
    return mLink->GetRegisterPort().Read(kWidthRegister, bytes.data(), bytes.size(), kGenerousTimeoutMs);
  }
};

TEST_F(GigEVisionGiveBack, GiveBackControl_WhileStreaming_LetsAnotherTakeTheDevice) {
  ASSERT_TRUE(Start().IsOK());
  ASSERT_NE(Retrieve(), nullptr);

  mLink->GiveBackControl();

  EXPECT_EQ(GetAccessType(), AccessType::Open);
  EXPECT_NE(OpenControlled(), nullptr);
}

TEST_F(GigEVisionGiveBack, GiveBackControl_WhileStreaming_EndsTheStreamAndFreesItsBuffers) {
  ASSERT_TRUE(Start().IsOK());
  ASSERT_NE(Retrieve(), nullptr);

  mLink->GiveBackControl();
  KrBuffer* buffer = nullptr;
  const KrResult retrieved = mSource->Retrieve(buffer, 0);
  const KrResult queued = mSource->Queue(&mBuffers[0]);
  mSource->Stop();
  for (KrBuffer& each : mBuffers)
    each.Free();

  EXPECT_EQ(retrieved, KrResult::Code::ConnectionLost);
  EXPECT_EQ(queued, KrResult::Code::WrongState);
  EXPECT_EQ(mSource->Start(), KrResult::Code::ConnectionLost);
  EXPECT_GE(mSource->GetStatistics().received, 1u);
}

TEST_F(GigEVisionGiveBack, GiveBackControl_Called_CountsAsLostWithoutWordOfIt) {
  mLink->GiveBackControl();

  EXPECT_FALSE(mLink->IsConnected());
  EXPECT_EQ(ReadWidth(), KrResult::Code::ConnectionLost);
  EXPECT_EQ(WriteRegister(*mLink, kWidthRegister, 1), KrResult::Code::ConnectionLost);
  mLink.reset();
  EXPECT_EQ(mSink.GetLostCount(), 0);
  EXPECT_EQ(mSink.GetBackCount(), 0);
}

TEST_F(GigEVisionGiveBack, GiveBackControl_WhileAFrameIsAwaited_EndsTheWait) {
  ASSERT_TRUE(mSource->Start().IsOK());

  const KrResult result = EndWaitBy([this] { mLink->GiveBackControl(); });

  EXPECT_EQ(result, KrResult::Code::ConnectionLost);
}

TEST_F(GigEVisionGiveBack, GiveBackControl_Twice_DoesNothingMore) {
  mLink->GiveBackControl();
  const auto successor = OpenControlled();

  mLink->GiveBackControl();

  EXPECT_EQ(GetAccessType(), AccessType::Control);
}

TEST_F(GigEVisionGiveBack, GiveBackControl_CameraDead_ReturnsAndCountsAsLost) {
  ASSERT_TRUE(Start().IsOK());
  mCamera->Kill();

  mLink->GiveBackControl();

  EXPECT_FALSE(mLink->IsConnected());
  EXPECT_EQ(ReadWidth(), KrResult::Code::ConnectionLost);
}

// With a heartbeat of a minute the camera still counts itself as controlled when it is back.
TEST_F(GigEVisionGiveBack, GiveBackControl_LostAndBackWithControlStillHeld_LetsAnotherTakeTheDevice) {
  ASSERT_TRUE(WriteRegister(*mLink, kHeartbeatTimeoutRegister, 60000).IsOK());
  mCamera->Pause();
  ASSERT_TRUE(mSink.WaitForLost());
  mCamera->Resume();
  ASSERT_TRUE(mSink.WaitForBack());
  ASSERT_EQ(GetAccessType(), AccessType::Control);

  mLink->GiveBackControl();

  EXPECT_EQ(GetAccessType(), AccessType::Open);
}

TEST_F(GigEVisionGiveBack, GiveBackControl_WhileAnotherThreadStopsAndFrees_TouchesNoFreedBuffer) {
  for (int i = 0; i < 10; ++i) {
    ASSERT_TRUE(Start().IsOK());
    ASSERT_NE(Retrieve(), nullptr);
    std::thread givingBack([this] { mLink->GiveBackControl(); });

    mSource->Stop();
    for (KrBuffer& buffer : mBuffers)
      buffer.Free();
    givingBack.join();

    EXPECT_EQ(mSource->Start(), KrResult::Code::ConnectionLost);
    EXPECT_EQ(GetAccessType(), AccessType::Open);
    mLink.reset();
    mLink = OpenControlled();
    ASSERT_NE(mLink, nullptr);
    mSource = mLink->GetBufferSource(0);
  }
}

TEST_F(GigEVisionGiveBack, GiveBackControl_FromTheWordOfLoss_Returns) {
  class GivingBack : public krsystem::IDeviceLinkSink {
  public:
    explicit GivingBack(krsystem::IDeviceLink& aLink) : mLink(aLink) {}
    void OnLinkLost(const KrResult&) override {
      mLink.GiveBackControl();
      mDone.set_value();
    }
    void OnLinkBack() override { ++mBack; }
    std::promise<void> mDone;
    std::atomic<int> mBack{0};

  private:
    krsystem::IDeviceLink& mLink;
  } sink(*mLink);
  mLink->SetSink(&sink);

  RestartCamera();

  EXPECT_EQ(sink.mDone.get_future().wait_for(krtest::GetGenerousLimit()), std::future_status::ready);
  mLink.reset();
  EXPECT_EQ(sink.mBack, 0);
}

TEST_F(GigEVisionGiveBack, GiveBackControl_Monitor_GoesOnReading) {
  std::unique_ptr<krsystem::IDeviceLink> monitor;
  ASSERT_TRUE(Open(DeviceAccess::Monitor, monitor).IsOK());

  monitor->GiveBackControl();

  EXPECT_TRUE(monitor->IsConnected());
  EXPECT_EQ(ReadRegister(*monitor, kWidthRegister), kWidth);
}

} // namespace
