#include "labfixture.h"
#include "testclocks.h"

#include "krdevice/krstream.h"
#include "krtransport/krsimulatedfaults.h"
#include "simulation/testpattern.h"

#include <gmock/gmock.h>

#include <vector>

using namespace krtransport::cameraregister;

namespace {

constexpr std::uint32_t kImageWidth = 320;
constexpr std::uint32_t kImageHeight = 240;
constexpr std::size_t kImageBytes = std::size_t{kImageWidth} * kImageHeight;
constexpr std::size_t kPacketBytes = 1500 - 36; // Of the frame, in a packet of the size at the start.

std::vector<std::uint8_t> ComputePixels(std::uint64_t aFrameID) {
  std::vector<std::uint8_t> pixels(kImageBytes);
  EXPECT_TRUE(krtransport::FillPattern(KrPixel::Mono8, kImageWidth, kImageHeight, aFrameID, pixels.data()));
  return pixels;
}

std::vector<std::uint8_t> GetPixels(const KrBuffer& aBuffer) {
  return {aBuffer.GetDataPointer(), aBuffer.GetDataPointer() + kImageBytes};
}

// Acquires a fixed number of frames into more buffers than that, so that counters are exact.
class FrameFaultsTest : public LabTest {
protected:
  FrameFaultsTest() : LabTest(std::make_shared<JumpingClock>()) {}

  void SetUp() override {
    ASSERT_TRUE(Open(kMonoMAC, mDevice).IsOK());
    ASSERT_TRUE(WriteInteger(*mDevice, kWidth, kImageWidth).IsOK());
    ASSERT_TRUE(WriteInteger(*mDevice, kHeight, kImageHeight).IsOK());
    ASSERT_TRUE(WriteInteger(*mDevice, kAcquisitionMode, kMultiFrame).IsOK());
    ASSERT_TRUE(KrFindSimulatedFaults(kMonoMAC, mFaults).IsOK());
  }
  // Lent until the stream starts again.
  std::vector<const KrBuffer*> Acquire(KrStream& aStream, std::uint32_t aFrames, std::size_t aExpected) {
    EXPECT_TRUE(WriteInteger(*mDevice, kAcquisitionFrameCount, aFrames).IsOK());
    EXPECT_TRUE(aStream.Start().IsOK());
    std::vector<const KrBuffer*> frames;
    for (std::size_t i = 0; i < aExpected; ++i) {
      KrBuffer* buffer = nullptr;
      EXPECT_TRUE(aStream.Retrieve(buffer, kGenerousLimitMs).IsOK());
      if (!buffer)
        break;
      frames.push_back(buffer);
    }
    return frames;
  }

  std::unique_ptr<KrDevice> mDevice;
  std::shared_ptr<KrSimulatedFaults> mFaults;
};

} // namespace

TEST_F(FrameFaultsTest, LosePackets_OfSomeFrames_LeavesGapsOfZerosAndCountsExactly) {
  KrStream stream(*mDevice);
  mFaults->LosePackets(3, 2, 1);

  const std::vector<const KrBuffer*> frames = Acquire(stream, 5, 5);

  ASSERT_EQ(frames.size(), 5u);
  for (std::size_t i = 0; i < 5; ++i) {
    SCOPED_TRACE(i);
    std::vector<std::uint8_t> expected = ComputePixels(i + 1);
    if (i < 3)
      std::fill_n(expected.begin() + kPacketBytes, 2 * kPacketBytes, std::uint8_t{0});
    EXPECT_EQ(frames[i]->GetStatus(), i < 3 ? KrBufferStatus::Incomplete : KrBufferStatus::Complete);
    EXPECT_EQ(frames[i]->GetAcquiredSize(), kImageBytes);
    EXPECT_TRUE(GetPixels(*frames[i]) == expected);
  }
  const KrStreamStatistics counted = stream.GetStatistics();
  EXPECT_EQ(counted.received, 2u);
  EXPECT_EQ(counted.incomplete, 3u);
  EXPECT_EQ(counted.missingPackets, 6u);
  EXPECT_EQ(counted.resentPackets, 0u);
  EXPECT_EQ(counted.bytes, 2 * kImageBytes);
}

TEST_F(FrameFaultsTest, LosePackets_WithTheGapKept_LeavesWhatTheBufferHeld) {
  krsystem::IBufferSource& source = *mDevice->GetBufferSource(0);
  KrBuffer buffer;
  ASSERT_TRUE(buffer.Alloc(kImageBytes).IsOK());
  std::fill_n(buffer.GetDataPointer(), kImageBytes, std::uint8_t{0xA5});
  ASSERT_TRUE(source.Queue(&buffer).IsOK());
  mFaults->LosePackets(1, 1, 0, KrPacketGap::Kept);
  ASSERT_TRUE(source.Start().IsOK());
  KrBuffer* filled = nullptr;

  ASSERT_TRUE(source.Retrieve(filled, kGenerousLimitMs).IsOK());

  std::vector<std::uint8_t> expected = ComputePixels(filled->GetFrameID());
  std::fill_n(expected.begin(), kPacketBytes, std::uint8_t{0xA5});
  EXPECT_TRUE(GetPixels(*filled) == expected);
  source.Stop();
}

TEST_F(FrameFaultsTest, LosePackets_UpToTheLast_AcquiresFewerBytesAndCountsWhatThereIs) {
  constexpr std::uint32_t kPackets = (kImageBytes + kPacketBytes - 1) / kPacketBytes;
  KrStream stream(*mDevice);
  mFaults->LosePackets(1, 100, kPackets - 2);

  const std::vector<const KrBuffer*> frames = Acquire(stream, 1, 1);

  ASSERT_EQ(frames.size(), 1u);
  EXPECT_EQ(frames[0]->GetAcquiredSize(), (kPackets - 2) * kPacketBytes);
  EXPECT_EQ(stream.GetStatistics().missingPackets, 2u);
}

TEST_F(FrameFaultsTest, PacketSize_Written_IsWhatIsLost) {
  ASSERT_TRUE(WriteInteger(*mDevice, kPacketSize, 9000).IsOK());
  KrStream stream(*mDevice);
  mFaults->LosePackets(1, 1);

  const std::vector<const KrBuffer*> frames = Acquire(stream, 1, 1);

  ASSERT_EQ(frames.size(), 1u);
  std::vector<std::uint8_t> expected = ComputePixels(1);
  std::fill_n(expected.begin(), 9000 - 36, std::uint8_t{0});
  EXPECT_TRUE(GetPixels(*frames[0]) == expected);
}

TEST_F(FrameFaultsTest, DelayPackets_FramesComeWholeAndPacketsAreCountedAsResent) {
  KrStream stream(*mDevice);
  mFaults->DelayPackets(2, 3, 500);

  const std::vector<const KrBuffer*> frames = Acquire(stream, 4, 4);

  for (std::size_t i = 0; i < frames.size(); ++i) {
    EXPECT_EQ(frames[i]->GetStatus(), KrBufferStatus::Complete);
    EXPECT_TRUE(GetPixels(*frames[i]) == ComputePixels(frames[i]->GetFrameID()));
  }
  const KrStreamStatistics counted = stream.GetStatistics();
  EXPECT_EQ(counted.received, 4u);
  EXPECT_EQ(counted.incomplete, 0u);
  EXPECT_EQ(counted.missingPackets, 6u);
  EXPECT_EQ(counted.resentPackets, 6u);
}

TEST_F(FrameFaultsTest, DropFrames_LeavesTheirNumbersOutAndCountsNothing) {
  KrStream stream(*mDevice);
  mFaults->LosePackets(1, 1);
  mFaults->DropFrames(2);

  const std::vector<const KrBuffer*> frames = Acquire(stream, 5, 3);

  ASSERT_EQ(frames.size(), 3u);
  EXPECT_EQ(frames[0]->GetFrameID(), 1u);
  EXPECT_EQ(frames[0]->GetStatus(), KrBufferStatus::Incomplete);
  EXPECT_EQ(frames[1]->GetFrameID(), 4u);
  EXPECT_EQ(frames[2]->GetFrameID(), 5u);
  EXPECT_EQ(stream.GetStatistics().received, 2u);
  EXPECT_EQ(stream.GetStatistics().discarded, 0u);
}

TEST_F(FrameFaultsTest, EndFrameFaults_ForgetsWhatIsLeft) {
  KrStream stream(*mDevice);
  mFaults->LosePackets(1000, 1);
  mFaults->EndFrameFaults();

  const std::vector<const KrBuffer*> frames = Acquire(stream, 2, 2);

  ASSERT_EQ(frames.size(), 2u);
  EXPECT_EQ(stream.GetStatistics().received, 2u);
}

TEST_F(FrameFaultsTest, FrameFaults_WithoutAFreeBuffer_WaitForOne) {
  KrStream stream(*mDevice, 2);
  mFaults->LosePackets(3, 1);
  ASSERT_TRUE(WriteInteger(*mDevice, kAcquisitionMode, kContinuous).IsOK());
  ASSERT_TRUE(stream.Start().IsOK());
  KrBuffer* first = nullptr;
  KrBuffer* second = nullptr;
  ASSERT_TRUE(stream.Retrieve(first, kGenerousLimitMs).IsOK());
  ASSERT_TRUE(stream.Retrieve(second, kGenerousLimitMs).IsOK());
  ASSERT_TRUE(WaitUntil([&] { return stream.GetStatistics().discarded >= 3; }));

  EXPECT_TRUE(stream.Release(first).IsOK());
  KrBuffer* third = nullptr;
  ASSERT_TRUE(stream.Retrieve(third, kGenerousLimitMs).IsOK());

  EXPECT_EQ(third->GetStatus(), KrBufferStatus::Incomplete);
  EXPECT_EQ(stream.GetStatistics().missingPackets, 3u);
}

namespace {

// One frame whose packets come late, by a clock that stands still.
class DelayedFrame : public testing::Test {
protected:
  static constexpr std::uint64_t kExposureNs = 1000000;
  static constexpr std::uint64_t kDelayNs = 50000000;

  void SetUp() override {
    krsystem::InterfaceFields interface;
    krsystem::AnyDeviceFields fields;
    ASSERT_TRUE(mLab->FindAddress(0xC0A84D0A, kGenerousLimitMs, interface, fields).IsOK());
    ASSERT_TRUE(mLab->Open(interface, fields, krsystem::DeviceAccess::Control, mLink).IsOK());
    mSource = mLink->GetBufferSource(0);
    ASSERT_TRUE(mBuffer.Alloc(1280 * 960).IsOK());
    ASSERT_TRUE(mSource->Queue(&mBuffer).IsOK());
    mLab->GetFaults(kMonoMAC)->DelayPackets(1, 1, kDelayNs / 1000000);
    // A trigger says when the exposure begins, however late the camera looks at the clock.
    std::array<std::uint8_t, 4> one = {0, 0, 0, 1};
    IKrRegisterPort& port = mLink->GetRegisterPort();
    ASSERT_TRUE(port.Write(kTriggerMode, one.data(), one.size(), kGenerousLimitMs).IsOK());
    ASSERT_TRUE(mSource->Start().IsOK());
    ASSERT_TRUE(port.Write(kTriggerSoftware, one.data(), one.size(), kGenerousLimitMs).IsOK());
  }

  const std::shared_ptr<ManualClock> mClock = std::make_shared<ManualClock>();
  const std::shared_ptr<krtransport::SimulationTransport> mLab =
      std::make_shared<krtransport::SimulationTransport>(krtransport::GetBuiltInLab(), mClock);
  KrBuffer mBuffer;
  std::unique_ptr<krsystem::IDeviceLink> mLink;
  krsystem::IBufferSource* mSource = nullptr;
};

} // namespace

TEST_F(DelayedFrame, DelayPackets_FrameComesNoSoonerThanItsPackets) {
  const std::uint64_t outNs = mClock->GetNowNs() + kExposureNs + kDelayNs;
  KrBuffer* filled = nullptr;
  mClock->Advance(kExposureNs);
  ASSERT_TRUE(WaitUntil([&] { return mClock->GetAwaitedNs() == outNs; }));

  mClock->Advance(kDelayNs - 1);
  EXPECT_TRUE(mSource->Retrieve(filled, 0) == KrResult::Code::TimeLimitExceeded);
  mClock->Advance(1);

  EXPECT_TRUE(mSource->Retrieve(filled, kGenerousLimitMs).IsOK());
  mSource->Stop();
}

TEST_F(DelayedFrame, Stop_BeforeItsPacketsCame_IsNeitherReceivedNorIncomplete) {
  const std::uint64_t outNs = mClock->GetNowNs() + kExposureNs + kDelayNs;
  mClock->Advance(kExposureNs);
  ASSERT_TRUE(WaitUntil([&] { return mClock->GetAwaitedNs() == outNs; }));

  mSource->Stop();

  EXPECT_EQ(mBuffer.GetStatus(), KrBufferStatus::Aborted);
  EXPECT_EQ(mSource->GetStatistics().received, 0u);
  EXPECT_EQ(mSource->GetStatistics().incomplete, 0u);
}

TEST_F(DelayedFrame, Lose_BeforeItsPacketsCame_IsNeitherReceivedNorIncomplete) {
  const std::uint64_t outNs = mClock->GetNowNs() + kExposureNs + kDelayNs;
  mClock->Advance(kExposureNs);
  ASSERT_TRUE(WaitUntil([&] { return mClock->GetAwaitedNs() == outNs; }));

  EXPECT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  mSource->Stop();

  EXPECT_EQ(mBuffer.GetStatus(), KrBufferStatus::Aborted);
  EXPECT_EQ(mSource->GetStatistics().received, 0u);
  EXPECT_EQ(mSource->GetStatistics().incomplete, 0u);
}

TEST_F(FrameFaultsTest, RefuseOpening_NewOpeningsAreDeniedUntilItIsEnded) {
  std::unique_ptr<KrDevice> monitor;
  mFaults->RefuseOpening(true);

  EXPECT_TRUE(Open(kMonoMAC, monitor, KrDeviceAccess::Monitor) == KrResult::Code::AccessDenied);
  EXPECT_TRUE(WriteInteger(*mDevice, kWidth, kImageWidth).IsOK()) << "who has it open keeps it";

  mFaults->RefuseOpening(false);
  EXPECT_TRUE(Open(kMonoMAC, monitor, KrDeviceAccess::Monitor).IsOK());
}

TEST_F(FrameFaultsTest, DisappearAndReturn_TheDeviceIsLostAndTheCameraOpensAnew) {
  CountingSink sink;
  EXPECT_TRUE(mDevice->RegisterEventSink(&sink).IsOK());

  mFaults->Disappear();
  EXPECT_TRUE(sink.WaitFor(1, 0));
  mFaults->Return();

  EXPECT_TRUE(sink.WaitFor(1, 1));
  std::unique_ptr<KrDevice> again;
  EXPECT_TRUE(Open(kMonoMAC, again).IsOK());
}

TEST_F(FrameFaultsTest, LosePower_TheCameraReturnsAsAtItsStartWithItsName) {
  const auto setName = [](KrDevice& aDevice) {
    return aDevice.GetParameters()->GetString("DeviceUserID")->SetValue("keeps");
  };
  ASSERT_TRUE(setName(*mDevice).IsOK());
  ASSERT_TRUE(WriteInteger(*mDevice, kWidth, kImageWidth).IsOK());
  mDevice.reset();

  mFaults->LosePower();
  mFaults->Return();

  ASSERT_TRUE(Open(kMonoMAC, mDevice).IsOK());
  std::uint32_t width = 0;
  EXPECT_TRUE(ReadInteger(*mDevice, kWidth, width).IsOK());
  EXPECT_EQ(width, 1280u);
  KrString name;
  EXPECT_TRUE(mDevice->GetParameters()->GetString("DeviceUserID")->GetValue(name).IsOK());
  EXPECT_EQ(name, "keeps");
  EXPECT_EQ(FindInfo(kMonoMAC)->GetUserDefinedName(), "keeps");
}

TEST_F(FrameFaultsTest, Find_CameraThatNobodySimulates_IsNotFound) {
  std::shared_ptr<KrSimulatedFaults> faults;

  EXPECT_TRUE(KrFindSimulatedFaults("00:00:00:00:00:00", faults) == KrResult::Code::NotFound);

  EXPECT_EQ(faults, nullptr);
}
