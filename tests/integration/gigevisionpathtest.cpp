// The way between camera and host: packets that get lost, packets that are too large.

#include "await.h"
#include "camerarelay.h"
#include "gigevisionfixture.h"
#include "krbase/krlogger.h"
#include "packetpatience.h"

#include <vector>

namespace {

constexpr const char* kCameraAddress = "127.0.0.2";
constexpr const char* kRelayAddress = "127.0.0.3";
constexpr std::uint32_t kRelayNumber = 0x7F000003;
constexpr std::uint32_t kFrameWidth = 256;
constexpr std::uint32_t kFrameHeight = 128;

FakeCameraOptions MakeCameraOptions() {
  FakeCameraOptions options;
  options.address = kCameraAddress;
  return options;
}

class GigEVisionPath : public testing::Test {
protected:
  /// The host's socket holds several frames: on a busy machine there is time to take them before it is full.
  GigEVisionPath() { mCamera.SetFramePeriod(150'000); }

  static void SetUpTestSuite() {
    AddLoopbackAddress(kCameraAddress);
    AddLoopbackAddress(kRelayAddress);
  }
  static void TearDownTestSuite() { arv_shutdown(); }

  /// Opens the camera over a relay with orders. What is missing of a frame is not asked for again, but where the case
  /// says otherwise.
  void OpenOverRelay(RelayOrders aOrders) {
    mRelay = std::make_unique<CameraRelay>(kRelayAddress, kCameraAddress, std::move(aOrders));
    krsystem::InterfaceFields adapter;
    krsystem::AnyDeviceFields device;
    ASSERT_TRUE(mTransport.FindAddress(kRelayNumber, kGenerousTimeoutMs, adapter, device).IsOK());
    const KrResult result = mTransport.Open(adapter, device, krsystem::DeviceAccess::Control, mLink);
    ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    ASSERT_TRUE(WriteRegister(*mLink, kWidthRegister, kFrameWidth).IsOK());
    ASSERT_TRUE(WriteRegister(*mLink, kHeightRegister, kFrameHeight).IsOK());
    mSource = mLink->GetBufferSource(0);
    ASSERT_NE(mSource, nullptr);
    krtest::WaitForPackets(*mSource);
  }

  KrResult Start() {
    for (KrBuffer& buffer : mBuffers)
      if (!buffer.Alloc(std::size_t{kFrameWidth} * kFrameHeight).IsOK() || !mSource->Queue(&buffer).IsOK())
        return KrResult::Code::SystemError;
    return mSource->Start();
  }

  struct Frame {
    std::uint64_t number = 0; ///< The device's.
    KrBufferStatus status = KrBufferStatus::Empty;
  };

  /// The next frames.
  std::vector<Frame> Retrieve(std::size_t aCount) {
    std::vector<Frame> frames;
    KrBuffer* buffer = nullptr;
    while (frames.size() < aCount) {
      const KrResult result = mSource->Retrieve(buffer, kGenerousTimeoutMs);
      EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
      if (!result.IsOK())
        break;
      frames.push_back({buffer->GetFrameID(), buffer->GetStatus()});
      EXPECT_TRUE(mSource->Queue(buffer).IsOK());
    }
    return frames;
  }

  FakeCamera mCamera{MakeCameraOptions()};
  krtransport::GigEVisionTransport mTransport;
  std::unique_ptr<CameraRelay> mRelay;
  std::array<KrBuffer, 16> mBuffers;
  std::unique_ptr<krsystem::IDeviceLink> mLink;
  krsystem::IBufferSource* mSource = nullptr;
};

TEST_F(GigEVisionPath, PacketsLost_AreCountedAndTheirFramesIncomplete) {
  RelayOrders orders;
  orders.largestTrial = 1500;
  orders.isLost = [](const StreamPacket& aPacket) {
    return (aPacket.frame == 3 && aPacket.number == 2) ||
           (aPacket.frame == 6 && (aPacket.number == 3 || aPacket.number == 4));
  };
  ASSERT_NO_FATAL_FAILURE(OpenOverRelay(orders));
  constexpr std::int64_t kRetentionUs = 1'000'000; // The camera does not send them again, and the frames wait for it.
  ASSERT_NO_FATAL_FAILURE(krtest::WaitForPackets(*mSource, krtest::MissingPackets::AskedForAgain, kRetentionUs));
  ASSERT_TRUE(Start().IsOK());

  const auto frames = Retrieve(12);
  const auto statistics = mSource->GetStatistics();

  for (std::size_t i = 0; i < frames.size(); ++i)
    EXPECT_EQ(frames[i].status, i == 2 || i == 5 ? KrBufferStatus::Incomplete : KrBufferStatus::Complete) << i;
  EXPECT_EQ(mRelay->GetLostPackets(), 3u);
  EXPECT_EQ(statistics.missingPackets, 3u);
  EXPECT_EQ(statistics.incomplete, 2u);
  EXPECT_GE(statistics.received, 10u);
}

TEST_F(GigEVisionPath, PacketLost_TheFrameKeepsTheSizeOfItsImage) {
  RelayOrders orders;
  orders.largestTrial = 1500;
  orders.isLost = [](const StreamPacket& aPacket) { return aPacket.frame == 2 && aPacket.number == 5; };
  ASSERT_NO_FATAL_FAILURE(OpenOverRelay(orders));
  ASSERT_TRUE(Start().IsOK());
  KrBuffer* buffer = nullptr;

  ASSERT_TRUE(mSource->Retrieve(buffer, kGenerousTimeoutMs).IsOK());
  ASSERT_TRUE(mSource->Retrieve(buffer, kGenerousTimeoutMs).IsOK());

  EXPECT_EQ(buffer->GetStatus(), KrBufferStatus::Incomplete);
  ASSERT_NE(buffer->GetImage(), nullptr);
  EXPECT_EQ(buffer->GetImage()->GetWidth(), kFrameWidth);
  EXPECT_EQ(buffer->GetImage()->GetHeight(), kFrameHeight);
  EXPECT_EQ(buffer->GetImage()->GetPixelType(), KrPixel::Mono8);
}

struct LossRow {
  const char* what;
  bool (*isLost)(const StreamPacket&);
  std::uint64_t missingPackets;
  std::uint64_t incomplete;
};

class GigEVisionLossOf : public GigEVisionPath, public testing::WithParamInterface<LossRow> {};

TEST_P(GigEVisionLossOf, ThirdFrame_CountsWhatIsMissingAndKeepsTheFramesNumbers) {
  RelayOrders orders;
  orders.largestTrial = 1500;
  orders.isLost = GetParam().isLost;
  ASSERT_NO_FATAL_FAILURE(OpenOverRelay(orders));
  ASSERT_TRUE(Start().IsOK());

  const auto frames = Retrieve(10);
  const auto statistics = mSource->GetStatistics();

  EXPECT_EQ(statistics.missingPackets, GetParam().missingPackets);
  EXPECT_EQ(statistics.incomplete, GetParam().incomplete);
  EXPECT_EQ(statistics.resentPackets, 0u);
  for (std::size_t i = 1; i < frames.size(); ++i) {
    const bool isBehindTheGap = GetParam().incomplete == 0 && i == 2;
    EXPECT_EQ(frames[i].number, frames[i - 1].number + (isBehindTheGap ? 2 : 1)) << i;
  }
}

bool IsThird(const StreamPacket& aPacket) {
  return aPacket.frame == 3;
}

// 256 x 128 bytes in packets of 1500: a leader, 23 of payload, a trailer.
constexpr LossRow kLosses[] = {
    {"Leader", [](const auto& aPacket) { return IsThird(aPacket) && aPacket.format == kLeaderFormat; }, 1, 1},
    {"Trailer", [](const auto& aPacket) { return IsThird(aPacket) && aPacket.format == kTrailerFormat; }, 1, 1},
    {"FirstPayload", [](const auto& aPacket) { return IsThird(aPacket) && aPacket.number == 1; }, 1, 1},
    {"TenInTheMiddle",
     [](const auto& aPacket) { return IsThird(aPacket) && aPacket.number >= 10 && aPacket.number < 20; }, 10, 1},
    {"EverythingButTheLeader", [](const auto& aPacket) { return IsThird(aPacket) && aPacket.number > 0; }, 24, 1},
    {"TheWholeFrame", [](const auto& aPacket) { return IsThird(aPacket); }, 0, 0},
};

INSTANTIATE_TEST_SUITE_P(Losses, GigEVisionLossOf, testing::ValuesIn(kLosses),
                         [](const auto& aInfo) { return std::string(aInfo.param.what); });

TEST_F(GigEVisionPath, PacketsLate_AreAskedForAgainAndCounted) {
  RelayOrders orders;
  orders.largestTrial = 1500;
  orders.isLate = [](const StreamPacket& aPacket) {
    return aPacket.frame <= 8 && aPacket.frame % 2 == 0 && aPacket.number == 5;
  };
  ASSERT_NO_FATAL_FAILURE(OpenOverRelay(orders));
  ASSERT_NO_FATAL_FAILURE(krtest::WaitForPackets(*mSource, krtest::MissingPackets::AskedForAgain));
  ASSERT_TRUE(Start().IsOK());

  const auto frames = Retrieve(12);
  const auto statistics = mSource->GetStatistics();

  EXPECT_EQ(frames.size(), 12u);
  EXPECT_GT(mRelay->GetResentPackets(), 0u);
  EXPECT_GT(statistics.resentPackets, 0u);
  EXPECT_GE(statistics.missingPackets, statistics.resentPackets);
  EXPECT_GE(statistics.received, 12u) << "a late packet completes its frame";
}

TEST_F(GigEVisionPath, NoBufferFree_CountsTheFramesThatWereDropped) {
  ASSERT_NO_FATAL_FAILURE(OpenOverRelay({}));
  std::array<KrBuffer, 2> buffers;
  for (KrBuffer& buffer : buffers)
    ASSERT_TRUE(buffer.Alloc(std::size_t{kFrameWidth} * kFrameHeight).IsOK() && mSource->Queue(&buffer).IsOK());
  ASSERT_TRUE(mSource->Start().IsOK());

  // Six frames or more went by, of which two had a buffer.
  EXPECT_TRUE(krtest::Await([this] { return mRelay->GetFrames() >= 7; }));
  // The host comes after the relay, sooner or later.
  const std::uint32_t sentBefore = mRelay->GetFrames();
  EXPECT_TRUE(krtest::Await([&] { return mSource->GetStatistics().discarded + 2 >= sentBefore - 1; }));
  const auto statistics = mSource->GetStatistics();
  const std::uint32_t sentAfter = mRelay->GetFrames();

  EXPECT_EQ(statistics.received, 2u);
  EXPECT_GE(statistics.discarded + 2, sentBefore - 1);
  EXPECT_LE(statistics.discarded + 2, sentAfter);
  EXPECT_EQ(statistics.missingPackets, 0u);
  EXPECT_EQ(statistics.bytes, 2u * kFrameWidth * kFrameHeight);
}

TEST_F(GigEVisionPath, BuffersTooSmall_CountAsNotWhole) {
  ASSERT_NO_FATAL_FAILURE(OpenOverRelay({}));
  for (KrBuffer& buffer : mBuffers)
    ASSERT_TRUE(buffer.Alloc(1000).IsOK() && mSource->Queue(&buffer).IsOK());
  ASSERT_TRUE(mSource->Start().IsOK());

  const auto frames = Retrieve(3);
  const auto statistics = mSource->GetStatistics();

  for (const Frame& frame : frames)
    EXPECT_EQ(frame.status, KrBufferStatus::TooSmall);
  EXPECT_EQ(statistics.received, 0u);
  EXPECT_GE(statistics.incomplete, 3u);
  EXPECT_EQ(statistics.bytes, 0u);
}

struct SizeRow {
  const char* what;
  std::uint32_t largestTrial; ///< What the way lets through; 0 where the device sends no packets for trial.
  std::uint32_t least;
  std::uint32_t most;
};

class GigEVisionPacketSize : public GigEVisionPath, public testing::WithParamInterface<SizeRow> {};

TEST_P(GigEVisionPacketSize, Start_IsTheLargestThatComesThroughWhole) {
  RelayOrders orders;
  orders.largestTrial = GetParam().largestTrial;
  ASSERT_NO_FATAL_FAILURE(OpenOverRelay(orders));

  ASSERT_TRUE(Start().IsOK());
  const auto frames = Retrieve(2);

  const std::uint32_t setting = ReadRegister(*mLink, kPacketSizeRegister);
  EXPECT_GE(setting, GetParam().least);
  EXPECT_LE(setting, GetParam().most);
  for (const Frame& frame : frames)
    EXPECT_EQ(frame.status, KrBufferStatus::Complete);
}

// The loopback adapter takes 64 KiB; packets are at most 16 KiB.
constexpr SizeRow kSizes[] = {
    {"DeviceWithoutPacketsForTrial", 0, 16384, 16384},
    {"EverythingPasses", 65535, 16384, 16384},
    {"JumboFramesPass", 9000, 8936, 9000},
    {"NoJumboFramesPass", 1500, 1500, 1500},
    {"SmallFramesPassAlone", 700, 640, 700},
};

INSTANTIATE_TEST_SUITE_P(Sizes, GigEVisionPacketSize, testing::ValuesIn(kSizes),
                         [](const auto& aInfo) { return std::string(aInfo.param.what); });

TEST_F(GigEVisionPath, PacketSize_StartedAgain_IsNotSearchedAgain) {
  RelayOrders orders;
  orders.largestTrial = 1500;
  ASSERT_NO_FATAL_FAILURE(OpenOverRelay(orders));
  ASSERT_TRUE(Start().IsOK());
  const std::uint32_t trials = mRelay->GetTrials();
  mSource->Stop();

  ASSERT_TRUE(mSource->Start().IsOK());

  EXPECT_GT(trials, 0u);
  EXPECT_EQ(mRelay->GetTrials(), trials);
}

TEST_F(GigEVisionPath, PacketSize_AdapterTakesLess_IsTheAdapters) {
  const LoopbackMtu mtu(4001);
  ASSERT_NO_FATAL_FAILURE(OpenOverRelay({}));

  ASSERT_TRUE(Start().IsOK());
  const auto frames = Retrieve(2);

  EXPECT_EQ(ReadRegister(*mLink, kPacketSizeRegister), 4000u);
  for (const Frame& frame : frames)
    EXPECT_EQ(frame.status, KrBufferStatus::Complete);
}

TEST_F(GigEVisionPath, PacketSizeRefused_StreamsWithTheDevicesOwn) {
  RelayOrders orders;
  orders.refusedRegisters = {kPacketSizeRegister};
  ASSERT_NO_FATAL_FAILURE(OpenOverRelay(orders));
  const std::uint32_t own = ReadRegister(*mLink, kPacketSizeRegister);

  ASSERT_TRUE(Start().IsOK());
  const auto frames = Retrieve(2);

  EXPECT_EQ(ReadRegister(*mLink, kPacketSizeRegister), own);
  for (const Frame& frame : frames)
    EXPECT_EQ(frame.status, KrBufferStatus::Complete);
}

// Aravis takes memory for each packet of a frame.
TEST_F(GigEVisionPath, PacketSizeWithoutRoom_StartsNoStream) {
  RelayOrders orders;
  orders.statedRegisters = {{kPacketSizeRegister, 36}};
  ASSERT_NO_FATAL_FAILURE(OpenOverRelay(orders));

  const KrResult result = Start();

  EXPECT_EQ(result, KrResult::Code::BadData);
  EXPECT_THAT(result.GetDescription().ToUtf8(), testing::HasSubstr("36 bytes, which their headers take alone"));
}

TEST_F(GigEVisionPath, PacketSizeThatIsNotSaid_IsRefusedBeforeAravisMeetsIt) {
  RelayOrders orders;
  orders.statedRegisters = {{kPacketSizeRegister, 0}};
  ASSERT_NO_FATAL_FAILURE(OpenOverRelay(orders));
  const KrLogCapture log;

  EXPECT_EQ(Start(), KrResult::Code::BadData);

  for (const KrLogRecord& record : log.GetRecords())
    EXPECT_NE(record.level, KrLogLevel::Error) << record.text.CStr();
}

// Nothing but the packet size says how many packets the first frame should have.
TEST_F(GigEVisionPath, PacketSizeRefused_PacketOfTheFirstFrameLost_IsCounted) {
  RelayOrders orders;
  orders.refusedRegisters = {kPacketSizeRegister};
  orders.isLost = [](const StreamPacket& aPacket) { return aPacket.frame == 1 && aPacket.number == 2; };
  ASSERT_NO_FATAL_FAILURE(OpenOverRelay(orders));
  ASSERT_TRUE(Start().IsOK());

  const auto frames = Retrieve(4);

  ASSERT_EQ(frames.size(), 4u);
  EXPECT_EQ(frames[0].status, KrBufferStatus::Incomplete);
  EXPECT_EQ(mSource->GetStatistics().missingPackets, 1u);
}

} // namespace
