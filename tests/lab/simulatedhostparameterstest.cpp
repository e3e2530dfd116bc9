// What simulated cameras give of their stream and of the connection to them, and that what is set there has effect.

#include "labfixture.h"
#include "parametertext.h"
#include "testclocks.h"

#include "krdevice/krstream.h"
#include "krtransport/krsimulatedfaults.h"

#include <gmock/gmock.h>

using namespace krtransport::cameraregister;

namespace {

constexpr std::uint32_t kLateMs = 50;

class SimulatedHostParametersTest : public LabTest {
protected:
  SimulatedHostParametersTest() : LabTest(std::make_shared<JumpingClock>()) {}

  void SetUp() override {
    ASSERT_TRUE(Open(kMonoMAC, mDevice).IsOK());
    mStream = std::make_unique<KrStream>(*mDevice);
    ASSERT_TRUE(mStream->GetParameters(mStreamArray).IsOK());
    ASSERT_TRUE(mDevice->GetTransportParameters(mConnection).IsOK());
    ASSERT_TRUE(KrFindSimulatedFaults(kMonoMAC, mFaults).IsOK());
    ASSERT_TRUE(WriteInteger(*mDevice, kAcquisitionMode, kMultiFrame).IsOK());
  }
  /// Takes a number of frames, after which the camera makes no more; says what became of the last one.
  KrBufferStatus Acquire(std::uint32_t aFrames, std::uint32_t aDelivered) {
    EXPECT_TRUE(WriteInteger(*mDevice, kAcquisitionFrameCount, aFrames).IsOK());
    EXPECT_TRUE(mStream->Start().IsOK());
    KrBufferStatus status = KrBufferStatus::Empty;
    for (std::uint32_t i = 0; i < aDelivered; ++i) {
      KrBuffer* buffer = nullptr;
      EXPECT_TRUE(mStream->Retrieve(buffer, kGenerousLimitMs).IsOK());
      if (!buffer)
        break;
      status = buffer->GetStatus();
      EXPECT_TRUE(mStream->Release(buffer).IsOK());
    }
    return status;
  }

  std::unique_ptr<KrDevice> mDevice;
  std::unique_ptr<KrStream> mStream;
  std::shared_ptr<KrSimulatedFaults> mFaults;
  KrGenParameterArray* mStreamArray = nullptr;
  KrGenParameterArray* mConnection = nullptr;
};

} // namespace

TEST_F(SimulatedHostParametersTest, Arrays_OfACamera_CanBeReadAsAWhole) {
  ExpectAllReadable(*mStreamArray);
  ExpectAllReadable(*mConnection);
}

TEST_F(SimulatedHostParametersTest, Addresses_OfACamera_AreTheLabs) {
  EXPECT_EQ(ReadNumber(*mConnection, "GevMACAddress"), 0x024B52007710);
  EXPECT_EQ(ReadNumber(*mConnection, "GevCurrentIPAddress"), (192 << 24 | 168 << 16 | 77 << 8 | 10) & 0xFFFFFFFFLL);
}

TEST_F(SimulatedHostParametersTest, Resend_On_LatePacketsMakeWholeFrames) {
  mFaults->DelayPackets(1, 2, kLateMs);

  EXPECT_EQ(Acquire(1, 1), KrBufferStatus::Complete);

  EXPECT_EQ(ReadNumber(*mStreamArray, "StreamResentPacketCount"), 2);
}

TEST_F(SimulatedHostParametersTest, Resend_SwitchedOff_LatePacketsAreMissing) {
  ASSERT_TRUE(SetText(*mStreamArray, "StreamPacketResendEnable", "0").IsOK());
  mFaults->DelayPackets(1, 2, kLateMs);

  EXPECT_EQ(Acquire(1, 1), KrBufferStatus::Incomplete);

  EXPECT_EQ(ReadNumber(*mStreamArray, "StreamResentPacketCount"), 0);
  EXPECT_EQ(ReadNumber(*mStreamArray, "StreamMissingPacketCount"), 2);
  EXPECT_EQ(ReadNumber(*mStreamArray, "StreamIncompleteFrameCount"), 1);
}

TEST_F(SimulatedHostParametersTest, Retention_ShorterThanThePacketsAreLate_GivesTheFrameUp) {
  ASSERT_TRUE(SetText(*mStreamArray, "StreamFrameRetention", "40000").IsOK());
  mFaults->DelayPackets(1, 1, kLateMs);

  EXPECT_EQ(Acquire(1, 1), KrBufferStatus::Incomplete);
}

TEST_F(SimulatedHostParametersTest, Counters_OfAllKindsOfLosses_AgreeWithTheStatistics) {
  mFaults->DropFrames(2);
  mFaults->LosePackets(1, 3);
  Acquire(6, 4);
  const KrStreamStatistics counted = mStream->GetStatistics();

  EXPECT_EQ(ReadNumber(*mStreamArray, "StreamSimulatedDropCount"), 2);
  EXPECT_EQ(ReadNumber(*mStreamArray, "StreamDeliveredFrameCount"),
            static_cast<std::int64_t>(counted.received + counted.incomplete));
  EXPECT_EQ(ReadNumber(*mStreamArray, "StreamDeliveredFrameCount"), 4);
  EXPECT_EQ(ReadNumber(*mStreamArray, "StreamMissingPacketCount"), static_cast<std::int64_t>(counted.missingPackets));
  EXPECT_EQ(ReadNumber(*mStreamArray, "StreamMissingPacketCount"), 3);
  EXPECT_EQ(ReadNumber(*mStreamArray, "StreamDeliveredByteCount"), static_cast<std::int64_t>(counted.bytes));
}

TEST_F(SimulatedHostParametersTest, Heartbeat_Set_IsTheCameras) {
  KrGenParameterArray* camera = nullptr;
  ASSERT_TRUE(mDevice->GetParameters(camera).IsOK());

  ASSERT_TRUE(SetText(*mConnection, "GevHeartbeatTimeout", "4500").IsOK());

  EXPECT_EQ(ReadNumber(*camera, "GevHeartbeatTimeout"), 4500);
}

TEST_F(SimulatedHostParametersTest, CommandTimeout_Shorter_EndsAnAccessThatTakesLonger) {
  KrGenParameterArray* camera = nullptr;
  ASSERT_TRUE(mDevice->GetParameters(camera).IsOK());
  ASSERT_TRUE(SetText(*mConnection, "LinkCommandTimeout", "10000").IsOK());
  mFaults->SlowRegisters(30000);
  std::int64_t heartbeat = 0;

  EXPECT_EQ(camera->GetInteger("GevHeartbeatTimeout")->GetValue(heartbeat), KrResult::Code::TimeLimitExceeded);

  EXPECT_EQ(ReadNumber(*mConnection, "LinkTimeoutCount"), 1);
}

TEST_F(SimulatedHostParametersTest, CameraLost_ArraysStay_AndTellOfIt) {
  CountingSink sink;
  ASSERT_TRUE(mDevice->RegisterEventSink(&sink).IsOK());
  Acquire(2, 2);
  mFaults->Disappear();
  ASSERT_TRUE(sink.WaitFor(1, 0));

  EXPECT_EQ(ReadText(*mConnection, "DeviceAccessStatus"), KrString("NoAccess"));
  EXPECT_EQ(ReadNumber(*mStreamArray, "StreamDeliveredFrameCount"), 2);
  std::int64_t heartbeat = 0;
  EXPECT_EQ(mConnection->GetInteger("GevHeartbeatTimeout")->GetValue(heartbeat), KrResult::Code::ConnectionLost);
  mStream->Stop();

  ExpectAllReadable(*mStreamArray);
  EXPECT_TRUE(mDevice->UnregisterEventSink(&sink).IsOK());
}
