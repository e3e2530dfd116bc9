#include "labfixture.h"
#include "testclocks.h"

#include "krdevice/krstream.h"

#include <gmock/gmock.h>

#include <vector>

using namespace krtransport::cameraregister;

namespace {

constexpr std::uint64_t kMillisecondNs = 1000000;

struct Stamp {
  std::uint64_t frameID;
  std::uint64_t timestampNs;
};

// A small image, so that frames take no time to paint.
class TimingTest : public LabTest {
protected:
  explicit TimingTest(std::shared_ptr<krtransport::ICameraClock> aClock) : LabTest(std::move(aClock)) {}

  void SetUp() override {
    ASSERT_TRUE(Open(kMonoMAC, mDevice).IsOK());
    Set(kWidth, kWidthMin);
    Set(kHeight, kHeightMin);
  }
  void Set(std::uint64_t aAddress, std::uint32_t aValue) {
    ASSERT_TRUE(WriteInteger(*mDevice, aAddress, aValue).IsOK()) << std::hex << aAddress;
  }
  void SetFloat(std::uint64_t aAddress, double aValue) {
    ASSERT_TRUE(WriteFloat(*mDevice, aAddress, aValue).IsOK()) << std::hex << aAddress;
  }
  std::uint32_t Get(std::uint64_t aAddress) {
    std::uint32_t value = 0;
    EXPECT_TRUE(ReadInteger(*mDevice, aAddress, value).IsOK());
    return value;
  }
  // Frames are lent for a moment only.
  Stamp Take(KrStream& aStream) {
    KrBuffer* buffer = nullptr;
    EXPECT_TRUE(aStream.Retrieve(buffer, kGenerousLimitMs).IsOK());
    if (!buffer)
      return {};
    const Stamp stamp = {buffer->GetFrameID(), buffer->GetTimestampNs()};
    EXPECT_TRUE(aStream.Release(buffer).IsOK());
    return stamp;
  }

  std::unique_ptr<KrDevice> mDevice;
};

class JumpingTimingTest : public TimingTest {
protected:
  JumpingTimingTest() : TimingTest(std::make_shared<JumpingClock>()) {}
};

class ManualTimingTest : public TimingTest {
protected:
  ManualTimingTest() : ManualTimingTest(std::make_shared<ManualClock>()) {}
  explicit ManualTimingTest(std::shared_ptr<ManualClock> aClock) : TimingTest(aClock), mClock(std::move(aClock)) {}

  const std::shared_ptr<ManualClock> mClock;
};

struct RateRow {
  const char* name;
  bool isRateEnabled;
  double framesPerSecond;
  double exposureUs;
  std::uint64_t periodNs;
};

constexpr RateRow kRates[] = {
    {"rate", true, 50.0, 1000.0, 20 * kMillisecondNs},
    {"exposure longer than the rate's period", true, 50.0, 40000.0, 40 * kMillisecondNs},
    {"rate not enabled", false, 50.0, 5000.0, 5 * kMillisecondNs},
    {"neither limits but the sensor", false, 50.0, 10.0, kMillisecondNs},
};

struct LineRow {
  const char* name;
  std::uint32_t activation;
  std::uint64_t remainderNs; // Of the time stamps, by the spacing.
  std::uint64_t spacingNs;
};

constexpr LineRow kLines[] = {
    {"rising edges", kRisingEdge, 0, 8 * kMillisecondNs},
    {"falling edges", kFallingEdge, 4 * kMillisecondNs, 8 * kMillisecondNs},
    {"any edges", kAnyEdge, 0, 4 * kMillisecondNs},
};

} // namespace

TEST_F(JumpingTimingTest, FrameRate_RateAndExposure_AreTheDistanceOfTimeStamps) {
  for (const RateRow& row : kRates) {
    SCOPED_TRACE(row.name);
    Set(kAcquisitionFrameRateEnable, 1);
    SetFloat(kAcquisitionFrameRate, row.framesPerSecond);
    Set(kAcquisitionFrameRateEnable, row.isRateEnabled ? 1 : 0);
    SetFloat(kExposureTime, row.exposureUs);
    KrStream stream(*mDevice);
    ASSERT_TRUE(stream.Start().IsOK());
    const Stamp first = Take(stream);

    for (int i = 0; i < 20; ++i) {
      const Stamp stamp = Take(stream);

      ASSERT_EQ(stamp.timestampNs - first.timestampNs, (stamp.frameID - first.frameID) * row.periodNs);
    }
    std::array<std::uint8_t, 8> bytes = {};
    EXPECT_TRUE(mDevice->GetRegisterPort().Read(kResultingFrameRate, bytes.data(), 8, kGenerousLimitMs).IsOK());
    EXPECT_DOUBLE_EQ(krtransport::DecodeFloat(bytes.data()), 1e9 / static_cast<double>(row.periodNs));
  }
}

TEST_F(JumpingTimingTest, MultiFrame_GivesThatManyFramesForEachStart) {
  Set(kAcquisitionMode, kMultiFrame);
  Set(kAcquisitionFrameCount, 3);
  KrStream stream(*mDevice);
  ASSERT_TRUE(stream.Start().IsOK());
  for (std::uint64_t round = 0; round < 3; ++round) {
    for (std::uint64_t i = 1; i <= 3; ++i)
      EXPECT_EQ(Take(stream).frameID, round * 3 + i);

    EXPECT_EQ(stream.GetStatistics().received, (round + 1) * 3);
    Set(kAcquisitionStart, 1);
  }
}

TEST_F(JumpingTimingTest, Line1_EachActivation_TriggersAtItsEdges) {
  Set(kTriggerMode, 1);
  Set(kTriggerSource, kLine1);
  Set(kLinePeriod, 8000);
  for (const LineRow& row : kLines) {
    SCOPED_TRACE(row.name);
    Set(kTriggerActivation, row.activation);
    KrStream stream(*mDevice);
    ASSERT_TRUE(stream.Start().IsOK());
    const Stamp first = Take(stream);

    EXPECT_EQ(first.timestampNs % row.spacingNs, row.remainderNs);
    for (int i = 0; i < 10; ++i) {
      const Stamp stamp = Take(stream);
      ASSERT_EQ(stamp.timestampNs - first.timestampNs, (stamp.frameID - first.frameID) * row.spacingNs);
    }
  }
}

TEST_F(JumpingTimingTest, Line1_ExposureLongerThanItsPeriod_MissesPulsesAndCountsThem) {
  Set(kTriggerMode, 1);
  Set(kTriggerSource, kLine1);
  Set(kLinePeriod, 10000);
  SetFloat(kExposureTime, 25000.0);
  Set(kAcquisitionMode, kMultiFrame);
  Set(kAcquisitionFrameCount, 4);
  KrStream stream(*mDevice);
  ASSERT_TRUE(stream.Start().IsOK());
  const Stamp first = Take(stream);

  for (std::uint64_t i = 1; i < 4; ++i)
    EXPECT_EQ(Take(stream).timestampNs - first.timestampNs, i * 30 * kMillisecondNs);

  EXPECT_EQ(Get(kMissedTriggers), 6u) << "two pulses during each exposure but the last";
}

TEST_F(ManualTimingTest, SoftwareTrigger_EachOne_GivesExactlyOneFrameAtItsTime) {
  Set(kTriggerMode, 1);
  KrStream stream(*mDevice);
  ASSERT_TRUE(stream.Start().IsOK());
  for (std::uint64_t id = 1; id <= 5; ++id) {
    mClock->Advance(10000 * kMillisecondNs);
    const std::uint64_t triggeredNs = mClock->GetNowNs();

    Set(kTriggerSoftware, 1);
    mClock->Advance(kMillisecondNs);

    const Stamp stamp = Take(stream);
    EXPECT_EQ(stamp.frameID, id) << "no frame came without a trigger";
    EXPECT_EQ(stamp.timestampNs, triggeredNs);
  }
  EXPECT_EQ(Get(kMissedTriggers), 0u);
}

TEST_F(ManualTimingTest, SoftwareTrigger_BeforeTheExposureEnded_IsMissedAndCounted) {
  Set(kTriggerMode, 1);
  SetFloat(kTriggerDelay, 3000.0);
  SetFloat(kExposureTime, 2000.0);
  KrStream stream(*mDevice);
  ASSERT_TRUE(stream.Start().IsOK());
  const std::uint64_t triggeredNs = mClock->GetNowNs();

  Set(kTriggerSoftware, 1);
  Set(kTriggerSoftware, 1);
  mClock->Advance(5 * kMillisecondNs - 1);
  Set(kTriggerSoftware, 1);
  mClock->Advance(1);
  Set(kTriggerSoftware, 1);
  mClock->Advance(5 * kMillisecondNs);

  EXPECT_EQ(Take(stream).timestampNs, triggeredNs + 3 * kMillisecondNs);
  const Stamp second = Take(stream);
  EXPECT_EQ(second.frameID, 2u);
  EXPECT_EQ(second.timestampNs, triggeredNs + 8 * kMillisecondNs);
  EXPECT_EQ(Get(kMissedTriggers), 2u);
}

TEST_F(ManualTimingTest, SoftwareTrigger_ThatNobodyWaitsFor_IsMissed) {
  Set(kTriggerSoftware, 1);
  KrStream stream(*mDevice);
  ASSERT_TRUE(stream.Start().IsOK());

  Set(kTriggerSoftware, 1);
  Set(kTriggerSoftware + kTriggerStride, 1);

  EXPECT_EQ(Get(kMissedTriggers), 2u) << "counted from the start of acquisition";
}

TEST_F(ManualTimingTest, AcquisitionStartTrigger_FramesWait_UntilItComes) {
  Set(kTriggerMode + kTriggerStride, 1);
  SetFloat(kAcquisitionFrameRate, 100.0);
  KrStream stream(*mDevice);
  ASSERT_TRUE(stream.Start().IsOK());
  mClock->Advance(1000 * kMillisecondNs);
  const std::uint64_t triggeredNs = mClock->GetNowNs();

  Set(kTriggerSoftware + kTriggerStride, 1);
  mClock->Advance(kMillisecondNs);

  const Stamp first = Take(stream);
  EXPECT_EQ(first.frameID, 1u);
  EXPECT_EQ(first.timestampNs, triggeredNs);
  mClock->Advance(10 * kMillisecondNs);
  EXPECT_EQ(Take(stream).timestampNs, triggeredNs + 10 * kMillisecondNs) << "the next one needs no trigger";
}

TEST_F(ManualTimingTest, AcquisitionStop_WithATriggerPending_ForgetsIt) {
  Set(kTriggerMode, 1);
  KrStream stream(*mDevice);
  ASSERT_TRUE(stream.Start().IsOK());
  Set(kTriggerSoftware, 1);

  Set(kAcquisitionStop, 1);
  Set(kAcquisitionStart, 1);
  mClock->Advance(10 * kMillisecondNs);
  const std::uint64_t triggeredNs = mClock->GetNowNs();
  Set(kTriggerSoftware, 1);
  mClock->Advance(10 * kMillisecondNs);

  EXPECT_EQ(Take(stream).timestampNs, triggeredNs);
}

TEST_F(ManualTimingTest, TimestampLatch_Executed_StoresTheCamerasTime) {
  const std::uint64_t latchedNs = mClock->GetNowNs();

  Set(kTimestampLatch, 1);
  mClock->Advance(kMillisecondNs);

  std::array<std::uint8_t, 8> bytes = {};
  EXPECT_TRUE(mDevice->GetRegisterPort().Read(kTimestampLatchValue, bytes.data(), 8, kGenerousLimitMs).IsOK());
  std::uint64_t value = 0;
  for (const std::uint8_t byte : bytes)
    value = value << 8 | byte;
  EXPECT_EQ(value, latchedNs);
}
