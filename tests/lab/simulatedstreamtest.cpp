#include "labfixture.h"

#include "krdevice/krstream.h"
#include "simulation/testpattern.h"

#include <gmock/gmock.h>

#include <cstring>
#include <functional>
#include <future>
#include <thread>
#include <vector>

using namespace krtransport::cameraregister;
using krtransport::TestPattern;
using testing::HasSubstr;

namespace {

// The pixels of a frame, computed anew from its number.
std::vector<std::uint8_t> ComputePixels(const KrBuffer& aBuffer, TestPattern aPattern) {
  const IKrImage* const image = aBuffer.GetImage();
  std::vector<std::uint8_t> pixels(image->GetImageSize());
  EXPECT_TRUE(krtransport::FillPattern(image->GetPixelType(), image->GetWidth(), image->GetHeight(),
                                       aBuffer.GetFrameID(), pixels.data(), aPattern));
  return pixels;
}

void ExpectWholeFrame(const KrBuffer& aBuffer, std::uint32_t aWidth, std::uint32_t aHeight, KrPixelType aType,
                      TestPattern aPattern = TestPattern::MovingRamp) {
  ASSERT_EQ(aBuffer.GetStatus(), KrBufferStatus::Complete);
  ASSERT_EQ(aBuffer.GetPayloadType(), KrPayloadType::Image);
  const IKrImage* const image = aBuffer.GetImage();
  EXPECT_EQ(image->GetWidth(), aWidth);
  EXPECT_EQ(image->GetHeight(), aHeight);
  EXPECT_EQ(image->GetPixelType(), aType);
  const std::vector<std::uint8_t> expected = ComputePixels(aBuffer, aPattern);
  ASSERT_EQ(aBuffer.GetAcquiredSize(), expected.size());
  EXPECT_EQ(std::memcmp(aBuffer.GetDataPointer(), expected.data(), expected.size()), 0)
      << "pixels of frame " << aBuffer.GetFrameID();
}

class SimulatedStreamTest : public LabTest {
protected:
  // Opens a camera and makes it so fast that no test has to wait long.
  void OpenFast(const char* aMAC) {
    ASSERT_TRUE(Open(aMAC, mDevice).IsOK());
    ASSERT_TRUE(WriteFloat(*mDevice, kAcquisitionFrameRate, 500.0).IsOK());
  }

  std::unique_ptr<KrDevice> mDevice;
};

struct FormatRow {
  const char* mac;
  KrPixelType type;
};

constexpr FormatRow kFormats[] = {
    {kMonoMAC, KrPixel::Mono8},   {kMonoMAC, KrPixel::Mono10}, {kMonoMAC, KrPixel::Mono12},
    {kMonoMAC, KrPixel::Mono12p}, {kMonoMAC, KrPixel::Mono16}, {kColourMAC, KrPixel::BayerRG8},
    {kColourMAC, KrPixel::RGB8},  {kColourMAC, KrPixel::BGR8}, {kColourMAC, KrPixel::Mono16},
};

} // namespace

TEST_F(SimulatedStreamTest, Retrieve_FiftyFrames_HaveEveryPixelInItsPlace) {
  OpenFast(kMonoMAC);
  KrStream stream(*mDevice);
  ASSERT_TRUE(stream.Start().IsOK());
  std::uint64_t lastFrameID = 0;
  std::uint64_t lastTimestampNs = 0;
  for (int i = 0; i < 50; ++i) {
    KrBuffer* buffer = nullptr;

    ASSERT_TRUE(stream.Retrieve(buffer, kGenerousLimitMs).IsOK());

    ExpectWholeFrame(*buffer, 1280, 960, KrPixel::Mono8);
    EXPECT_GT(buffer->GetFrameID(), lastFrameID);
    EXPECT_GT(buffer->GetTimestampNs(), lastTimestampNs);
    EXPECT_NE(buffer->GetHostTimestampNs(), 0u);
    lastFrameID = buffer->GetFrameID();
    lastTimestampNs = buffer->GetTimestampNs();
    EXPECT_TRUE(stream.Release(buffer).IsOK());
  }
  stream.Stop();
  const KrStreamStatistics counted = stream.GetStatistics();
  EXPECT_GE(counted.received, 50u);
  EXPECT_EQ(counted.bytes, counted.received * 1280u * 960u);
  EXPECT_EQ(counted.incomplete, 0u);
}

TEST_F(SimulatedStreamTest, PixelFormat_EachOfTheCameras_ComesAsAsked) {
  for (const FormatRow& row : kFormats) {
    SCOPED_TRACE(KrFindPixelType(row.type)->name);
    mDevice.reset();
    OpenFast(row.mac);
    ASSERT_TRUE(WriteInteger(*mDevice, kPixelFormat, row.type).IsOK());
    ASSERT_TRUE(WriteInteger(*mDevice, kWidth, 324).IsOK());
    ASSERT_TRUE(WriteInteger(*mDevice, kHeight, 242).IsOK());
    KrStream stream(*mDevice, 4);
    ASSERT_TRUE(stream.Start().IsOK());
    KrBuffer* buffer = nullptr;

    ASSERT_TRUE(stream.Retrieve(buffer, kGenerousLimitMs).IsOK());

    EXPECT_EQ(buffer->GetSize(), 324u * 242u * KrGetBitsPerPixel(row.type) / 8);
    ExpectWholeFrame(*buffer, 324, 242, row.type);
  }
}

TEST_F(SimulatedStreamTest, TestPattern_WrittenWhileStreaming_ShowsInLaterFrames) {
  OpenFast(kMonoMAC);
  ASSERT_TRUE(WriteInteger(*mDevice, kTestPattern, static_cast<std::uint32_t>(TestPattern::StaticRamp)).IsOK());
  KrStream stream(*mDevice, 2);
  ASSERT_TRUE(stream.Start().IsOK());
  KrBuffer* buffer = nullptr;
  ASSERT_TRUE(stream.Retrieve(buffer, kGenerousLimitMs).IsOK());
  ExpectWholeFrame(*buffer, 1280, 960, KrPixel::Mono8, TestPattern::StaticRamp);
  EXPECT_TRUE(stream.Release(buffer).IsOK());

  EXPECT_TRUE(WriteInteger(*mDevice, kTestPattern, static_cast<std::uint32_t>(TestPattern::FrameCounter)).IsOK());

  // Frames made before the writing may still be on their way: as many as there are buffers, and the one being made.
  for (int i = 0; i < 4; ++i) {
    ASSERT_TRUE(stream.Retrieve(buffer, kGenerousLimitMs).IsOK());
    if (i == 3)
      ExpectWholeFrame(*buffer, 1280, 960, KrPixel::Mono8, TestPattern::FrameCounter);
    EXPECT_TRUE(stream.Release(buffer).IsOK());
  }
}

TEST_F(SimulatedStreamTest, ExposureAndGain_WithoutATestPattern_MultiplyTheScene) {
  OpenFast(kMonoMAC);
  ASSERT_TRUE(WriteInteger(*mDevice, kTestPattern, static_cast<std::uint32_t>(TestPattern::Off)).IsOK());
  ASSERT_TRUE(WriteFloat(*mDevice, kExposureTime, 500).IsOK());
  ASSERT_TRUE(WriteFloat(*mDevice, kGain, 20).IsOK());
  KrStream stream(*mDevice, 2);
  ASSERT_TRUE(stream.Start().IsOK());

  KrBuffer* buffer = nullptr;
  ASSERT_TRUE(stream.Retrieve(buffer, kGenerousLimitMs).IsOK());

  // Half as long, and ten times as much.
  const std::uint8_t* const line = buffer->GetImage()->GetDataPointer();
  for (std::size_t x = 0; x < 256; ++x)
    ASSERT_EQ(line[x], std::min<std::size_t>(255, 5 * x)) << x;
}

TEST_F(SimulatedStreamTest, SizeRegisters_WhileStreaming_AreLockedAndFreeAfterwards) {
  OpenFast(kMonoMAC);
  KrStream stream(*mDevice, 4);
  ASSERT_TRUE(stream.Start().IsOK());
  std::uint32_t locked = 0;

  EXPECT_TRUE(ReadInteger(*mDevice, kTLParamsLocked, locked).IsOK());
  EXPECT_EQ(locked, 1u);
  for (const std::uint64_t address : {kWidth, kHeight}) {
    const KrResult result = WriteInteger(*mDevice, address, 320);
    EXPECT_TRUE(result == KrResult::Code::ProtocolError);
    EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("write protect (0x8004)"));
  }
  EXPECT_TRUE(WriteInteger(*mDevice, kPixelFormat, KrPixel::Mono16) == KrResult::Code::ProtocolError);
  EXPECT_TRUE(WriteInteger(*mDevice, kTLParamsLocked, 0) == KrResult::Code::ProtocolError);
  stream.Stop();

  EXPECT_TRUE(ReadInteger(*mDevice, kTLParamsLocked, locked).IsOK());
  EXPECT_EQ(locked, 0u);
  EXPECT_TRUE(WriteInteger(*mDevice, kWidth, 320).IsOK());
  ASSERT_TRUE(stream.Start().IsOK());
  KrBuffer* buffer = nullptr;
  ASSERT_TRUE(stream.Retrieve(buffer, kGenerousLimitMs).IsOK());
  ExpectWholeFrame(*buffer, 320, 960, KrPixel::Mono8);
}

TEST_F(SimulatedStreamTest, Start_Again_CountsFramesAndCountersAnew) {
  OpenFast(kMonoMAC);
  KrStream stream(*mDevice, 4);
  for (int round = 0; round < 3; ++round) {
    ASSERT_TRUE(stream.Start().IsOK());
    KrBuffer* buffer = nullptr;

    ASSERT_TRUE(stream.Retrieve(buffer, kGenerousLimitMs).IsOK());

    EXPECT_EQ(buffer->GetFrameID(), 1u);
    stream.Stop();
  }
}

TEST_F(SimulatedStreamTest, NoFreeBuffer_FramesAreDiscardedAndCounted) {
  OpenFast(kMonoMAC);
  KrStream stream(*mDevice, 2);
  ASSERT_TRUE(stream.Start().IsOK());
  KrBuffer* first = nullptr;
  KrBuffer* second = nullptr;
  ASSERT_TRUE(stream.Retrieve(first, kGenerousLimitMs).IsOK());
  ASSERT_TRUE(stream.Retrieve(second, kGenerousLimitMs).IsOK());

  ASSERT_TRUE(WaitUntil([&] { return stream.GetStatistics().discarded >= 3; }));

  EXPECT_TRUE(stream.Release(first).IsOK());
  KrBuffer* later = nullptr;
  ASSERT_TRUE(stream.Retrieve(later, kGenerousLimitMs).IsOK());
  EXPECT_GE(later->GetFrameID(), second->GetFrameID() + 4) << "discarded frames are numbered too";
  ExpectWholeFrame(*later, 1280, 960, KrPixel::Mono8);
}

TEST_F(SimulatedStreamTest, BufferTooSmall_ComesBackWithThatStatus) {
  OpenFast(kMonoMAC);
  krsystem::IBufferSource& source = *mDevice->GetBufferSource(0);
  KrBuffer small;
  KrBuffer* buffer = nullptr;
  ASSERT_TRUE(small.Alloc(1280 * 960 - 1).IsOK());
  ASSERT_TRUE(source.Queue(&small).IsOK());
  ASSERT_TRUE(source.Start().IsOK());

  ASSERT_TRUE(source.Retrieve(buffer, kGenerousLimitMs).IsOK());

  EXPECT_EQ(buffer, &small);
  EXPECT_EQ(buffer->GetStatus(), KrBufferStatus::TooSmall);
  EXPECT_EQ(buffer->GetAcquiredSize(), 0u);
  EXPECT_EQ(source.GetStatistics().incomplete, 1u);
  EXPECT_EQ(source.GetStatistics().received, 0u);
  source.Stop();
}

TEST_F(SimulatedStreamTest, BufferTooSmall_AfterAWholeFrame_ShowsNothingOfIt) {
  OpenFast(kMonoMAC);
  ASSERT_TRUE(WriteInteger(*mDevice, kAcquisitionMode, kSingleFrame).IsOK());
  ASSERT_TRUE(WriteInteger(*mDevice, kChunkModeActive, 1).IsOK());
  krsystem::IBufferSource& source = *mDevice->GetBufferSource(0);
  KrBuffer small;
  ASSERT_TRUE(small.Alloc(1280 * 960 - 1).IsOK());
  const auto acquire = [&](std::uint32_t aWidth) {
    KrBuffer* buffer = nullptr;
    ASSERT_TRUE(WriteInteger(*mDevice, kWidth, aWidth).IsOK());
    ASSERT_TRUE(source.Queue(&small).IsOK());
    ASSERT_TRUE(source.Start().IsOK());
    ASSERT_TRUE(source.Retrieve(buffer, kGenerousLimitMs).IsOK());
    source.Stop();
  };
  ASSERT_NO_FATAL_FAILURE(acquire(640));
  ASSERT_EQ(small.GetStatus(), KrBufferStatus::Complete);
  ASSERT_EQ(small.GetChunkCount(), 1u);

  ASSERT_NO_FATAL_FAILURE(acquire(1280));

  EXPECT_EQ(small.GetStatus(), KrBufferStatus::TooSmall);
  EXPECT_EQ(small.GetPayloadType(), KrPayloadType::RawData);
  EXPECT_EQ(small.GetImage(), nullptr);
  EXPECT_EQ(small.GetChunkCount(), 0u);
  ASSERT_NO_FATAL_FAILURE(acquire(640));
  EXPECT_EQ(small.GetPayloadType(), KrPayloadType::Image) << "the next frame that fits is one again";
}

TEST_F(SimulatedStreamTest, Source_WrongUse_IsRefused) {
  OpenFast(kMonoMAC);
  krsystem::IBufferSource& source = *mDevice->GetBufferSource(0);
  KrBuffer queued;
  KrBuffer* buffer = nullptr;

  EXPECT_TRUE(source.Queue(nullptr) == KrResult::Code::InvalidInput);
  EXPECT_TRUE(source.Queue(&queued).IsOK());
  EXPECT_TRUE(source.Queue(&queued) == KrResult::Code::InvalidInput);
  EXPECT_TRUE(source.Retrieve(buffer, kGenerousLimitMs) == KrResult::Code::Aborted);
  source.Stop();
  EXPECT_TRUE(source.Start().IsOK());
  EXPECT_TRUE(source.Start() == KrResult::Code::WrongState);
  EXPECT_TRUE(source.Retrieve(buffer, 0) == KrResult::Code::TimeLimitExceeded) << "no buffer was queued";
  source.Stop();
}

TEST_F(SimulatedStreamTest, SingleFrame_GivesOneFrameForEachStart) {
  OpenFast(kMonoMAC);
  ASSERT_TRUE(WriteInteger(*mDevice, kAcquisitionMode, 1).IsOK());
  KrStream stream(*mDevice, 4);
  ASSERT_TRUE(stream.Start().IsOK());
  for (std::uint64_t id = 1; id <= 3; ++id) {
    KrBuffer* buffer = nullptr;

    ASSERT_TRUE(stream.Retrieve(buffer, kGenerousLimitMs).IsOK());

    EXPECT_EQ(buffer->GetFrameID(), id);
    EXPECT_EQ(stream.GetStatistics().received, id);
    EXPECT_TRUE(stream.Release(buffer).IsOK());
    EXPECT_TRUE(WriteInteger(*mDevice, kAcquisitionStart, 1).IsOK());
  }
}

TEST_F(SimulatedStreamTest, Stop_WhileWaiting_IsAborted) {
  OpenFast(kMonoMAC);
  KrStream stream(*mDevice, 4);
  ASSERT_TRUE(stream.Start().IsOK());
  // Without acquisition the wait ends by the stop alone.
  ASSERT_TRUE(WriteInteger(*mDevice, kAcquisitionStop, 1).IsOK());
  std::promise<void> waiting;
  std::future<KrResult> retrieved = std::async(std::launch::async, [&] {
    waiting.set_value();
    KrBuffer* buffer = nullptr;
    KrResult result;
    while (result.IsOK())
      result = stream.Retrieve(buffer, kGenerousLimitMs);
    return result;
  });
  waiting.get_future().wait();

  stream.Stop();

  EXPECT_TRUE(retrieved.get() == KrResult::Code::Aborted);
}

TEST_F(SimulatedStreamTest, Lose_WhileWaiting_IsConnectionLostAtOnceAndSinkHears) {
  OpenFast(kMonoMAC);
  CountingSink sink;
  EXPECT_TRUE(mDevice->RegisterEventSink(&sink).IsOK());
  KrStream stream(*mDevice, 4);
  ASSERT_TRUE(stream.Start().IsOK());
  ASSERT_TRUE(WriteInteger(*mDevice, kAcquisitionStop, 1).IsOK());
  std::future<KrResult> retrieved = std::async(std::launch::async, [&] {
    KrBuffer* buffer = nullptr;
    KrResult result;
    while (result.IsOK())
      result = stream.Retrieve(buffer, kGenerousLimitMs);
    return result;
  });

  EXPECT_TRUE(mLab->Lose(kMonoMAC).IsOK());

  EXPECT_TRUE(retrieved.get() == KrResult::Code::ConnectionLost);
  EXPECT_TRUE(sink.WaitFor(1, 0));
  stream.Stop();
}

TEST_F(SimulatedStreamTest, Lose_MidStream_EndsItAndTheCameraStreamsAgainWhenOpenedAnew) {
  OpenFast(kColourMAC);
  {
    KrStream stream(*mDevice, 4);
    ASSERT_TRUE(stream.Start().IsOK());
    KrBuffer* lent = nullptr;
    ASSERT_TRUE(stream.Retrieve(lent, kGenerousLimitMs).IsOK());

    EXPECT_TRUE(mLab->Lose(kColourMAC).IsOK());

    KrBuffer* buffer = nullptr;
    EXPECT_TRUE(stream.Retrieve(buffer, kGenerousLimitMs) == KrResult::Code::ConnectionLost);
    EXPECT_EQ(buffer, nullptr);
    EXPECT_TRUE(stream.Release(lent).IsOK());
    stream.Stop();
    EXPECT_TRUE(stream.Start() == KrResult::Code::ConnectionLost);
  }
  EXPECT_TRUE(mLab->Restore(kColourMAC).IsOK());
  mDevice.reset();
  OpenFast(kColourMAC);
  KrStream again(*mDevice, 4);
  ASSERT_TRUE(again.Start().IsOK());
  KrBuffer* buffer = nullptr;
  ASSERT_TRUE(again.Retrieve(buffer, kGenerousLimitMs).IsOK());
  ExpectWholeFrame(*buffer, 1920, 1200, KrPixel::BayerRG8);
}

TEST_F(SimulatedStreamTest, FrameRateAndExposure_WrittenWhileStreaming_LetTheStreamGoOn) {
  OpenFast(kMonoMAC);
  KrStream stream(*mDevice, 4);
  ASSERT_TRUE(WriteFloat(*mDevice, kAcquisitionFrameRate, 1.0).IsOK());
  ASSERT_TRUE(stream.Start().IsOK());
  KrBuffer* buffer = nullptr;

  EXPECT_TRUE(WriteFloat(*mDevice, kAcquisitionFrameRate, 1000.0).IsOK());
  EXPECT_TRUE(WriteFloat(*mDevice, kExposureTime, 20000.0).IsOK());

  ASSERT_TRUE(stream.Retrieve(buffer, kGenerousLimitMs).IsOK());
  ExpectWholeFrame(*buffer, 1280, 960, KrPixel::Mono8);
}
