#include "aravis/framedescription.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using krtransport::DescribeFrame;
using krtransport::FrameDescription;

constexpr std::size_t kBufferBytes = 640 * 480;
constexpr auto kImage = static_cast<std::uint32_t>(KrPayloadType::Image);

FrameDescription MakeFrame() {
  FrameDescription frame;
  frame.payloadType = kImage;
  frame.width = 640;
  frame.height = 480;
  frame.pixelType = KrPixel::Mono8;
  frame.receivedBytes = kBufferBytes;
  frame.frameID = 7;
  frame.timestampNs = 8;
  frame.hostTimestampNs = 9;
  return frame;
}

KrBuffer MakeBuffer() {
  KrBuffer buffer;
  EXPECT_TRUE(buffer.Alloc(kBufferBytes).IsOK());
  return buffer;
}

TEST(FrameDescription, HonestImage_IsDescribedWhole) {
  KrBuffer buffer = MakeBuffer();

  DescribeFrame(MakeFrame(), buffer);

  EXPECT_EQ(buffer.GetStatus(), KrBufferStatus::Complete);
  ASSERT_NE(buffer.GetImage(), nullptr);
  EXPECT_EQ(buffer.GetImage()->GetWidth(), 640u);
  EXPECT_EQ(buffer.GetImage()->GetHeight(), 480u);
  EXPECT_EQ(buffer.GetImage()->GetPixelType(), KrPixel::Mono8);
  EXPECT_EQ(buffer.GetAcquiredSize(), kBufferBytes);
  EXPECT_EQ(buffer.GetFrameID(), 7u);
  EXPECT_EQ(buffer.GetTimestampNs(), 8u);
  EXPECT_EQ(buffer.GetHostTimestampNs(), 9u);
}

TEST(FrameDescription, PaddedImage_KeepsItsPadding) {
  KrBuffer buffer = MakeBuffer();
  FrameDescription frame = MakeFrame();
  frame.width = 636;
  frame.paddingX = 4;

  DescribeFrame(frame, buffer);

  EXPECT_EQ(buffer.GetStatus(), KrBufferStatus::Complete);
  ASSERT_NE(buffer.GetImage(), nullptr);
  EXPECT_EQ(buffer.GetImage()->GetPaddingX(), 4u);
}

struct LyingRow {
  const char* name;
  void (*lie)(FrameDescription& aFrame);
  KrBufferStatus status;
};

constexpr std::int64_t kMax32 = std::numeric_limits<std::uint32_t>::max();

const LyingRow kLies[] = {
    {"TallerThanTheBuffer", [](FrameDescription& aFrame) { ++aFrame.height; }, KrBufferStatus::TooSmall},
    {"Width65536", [](FrameDescription& aFrame) { aFrame.width = 65536; }, KrBufferStatus::TooSmall},
    {"LargestNumbers",
     [](FrameDescription& aFrame) {
       aFrame.width = kMax32;
       aFrame.height = kMax32;
       aFrame.paddingX = kMax32;
       aFrame.paddingY = kMax32;
     },
     KrBufferStatus::TooSmall},
    {"WiderPixels", [](FrameDescription& aFrame) { aFrame.pixelType = KrPixel::Mono16; }, KrBufferStatus::TooSmall},
    {"PaddingBeyond", [](FrameDescription& aFrame) { aFrame.paddingX = 1; }, KrBufferStatus::TooSmall},
    {"NegativeWidth", [](FrameDescription& aFrame) { aFrame.width = -640; }, KrBufferStatus::Incomplete},
    {"WidthBeyond32Bits", [](FrameDescription& aFrame) { aFrame.width = kMax32 + 1; }, KrBufferStatus::Incomplete},
    {"NoWidth", [](FrameDescription& aFrame) { aFrame.width = 0; }, KrBufferStatus::Incomplete},
    {"NoPixelType", [](FrameDescription& aFrame) { aFrame.pixelType = 0; }, KrBufferStatus::Incomplete},
};

class LyingLeader : public testing::TestWithParam<LyingRow> {};

TEST_P(LyingLeader, CompleteFrame_IsNotCompleteAndNoImage) {
  KrBuffer buffer = MakeBuffer();
  FrameDescription frame = MakeFrame();
  GetParam().lie(frame);

  DescribeFrame(frame, buffer);

  EXPECT_EQ(buffer.GetStatus(), GetParam().status);
  EXPECT_EQ(buffer.GetPayloadType(), KrPayloadType::RawData);
  EXPECT_EQ(buffer.GetImage(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Lies, LyingLeader, testing::ValuesIn(kLies),
                         [](const auto& aInfo) { return aInfo.param.name; });

TEST(FrameDescription, FewerBytesThanTheImageTakes_IsIncompleteWithItsImage) {
  KrBuffer buffer = MakeBuffer();
  FrameDescription frame = MakeFrame();
  frame.receivedBytes = kBufferBytes - 1;

  DescribeFrame(frame, buffer);

  EXPECT_EQ(buffer.GetStatus(), KrBufferStatus::Incomplete);
  EXPECT_NE(buffer.GetImage(), nullptr);
}

TEST(FrameDescription, MoreBytesThanTheBufferHolds_AreCutToIt) {
  KrBuffer buffer = MakeBuffer();
  FrameDescription frame = MakeFrame();
  frame.receivedBytes = std::numeric_limits<std::uint64_t>::max();

  DescribeFrame(frame, buffer);

  EXPECT_EQ(buffer.GetAcquiredSize(), kBufferBytes);
}

TEST(FrameDescription, AbortedFrameWithALyingLeader_StaysAborted) {
  KrBuffer buffer = MakeBuffer();
  FrameDescription frame = MakeFrame();
  frame.status = KrBufferStatus::Aborted;
  frame.width = 0;

  DescribeFrame(frame, buffer);

  EXPECT_EQ(buffer.GetStatus(), KrBufferStatus::Aborted);
}

TEST(FrameDescription, OtherPayloads_KeepTheirTypeAndUnknownOnesAreRawData) {
  KrBuffer buffer = MakeBuffer();
  FrameDescription frame = MakeFrame();

  frame.payloadType = static_cast<std::uint32_t>(KrPayloadType::Jpeg);
  DescribeFrame(frame, buffer);
  EXPECT_EQ(buffer.GetPayloadType(), KrPayloadType::Jpeg);

  frame.payloadType = 0x7FFF;
  DescribeFrame(frame, buffer);
  EXPECT_EQ(buffer.GetPayloadType(), KrPayloadType::RawData);
  EXPECT_EQ(buffer.GetStatus(), KrBufferStatus::Complete);
}

// A chunk's identifier and length, as they stand behind its data.
void PutChunkEnd(KrBuffer& aBuffer, std::size_t aOffset, std::uint32_t aID, std::uint32_t aLength) {
  for (std::size_t i = 0; i < 4; ++i) {
    aBuffer.GetDataPointer()[aOffset + i] = static_cast<std::uint8_t>(aID >> (24 - 8 * i));
    aBuffer.GetDataPointer()[aOffset + 4 + i] = static_cast<std::uint8_t>(aLength >> (24 - 8 * i));
  }
}

// An image of 16 x 16 as the first chunk, four bytes of data as the second.
FrameDescription MakeFrameWithChunks(KrBuffer& aBuffer) {
  PutChunkEnd(aBuffer, 256, 1, 256);
  PutChunkEnd(aBuffer, 268, 7, 4);
  FrameDescription frame = MakeFrame();
  frame.width = 16;
  frame.height = 16;
  frame.receivedBytes = 276;
  frame.hasChunks = true;
  return frame;
}

TEST(FrameDescription, ImageWithChunks_StaysAnImageAndHasThem) {
  KrBuffer buffer = MakeBuffer();

  DescribeFrame(MakeFrameWithChunks(buffer), buffer);

  EXPECT_EQ(buffer.GetStatus(), KrBufferStatus::Complete);
  EXPECT_EQ(buffer.GetPayloadType(), KrPayloadType::Image);
  ASSERT_NE(buffer.GetImage(), nullptr);
  EXPECT_EQ(buffer.GetImage()->GetWidth(), 16u);
  ASSERT_NE(buffer.FindChunk(7), nullptr);
  EXPECT_EQ(buffer.FindChunk(7)->offset, 264u);
  EXPECT_EQ(buffer.FindChunk(7)->length, 4u);
}

TEST(FrameDescription, ExtendedChunkDataOfOlderDevices_IsAnImageWithChunks) {
  KrBuffer buffer = MakeBuffer();
  FrameDescription frame = MakeFrameWithChunks(buffer);
  frame.payloadType = static_cast<std::uint32_t>(KrPayloadType::ExtendedChunkData);

  DescribeFrame(frame, buffer);

  EXPECT_EQ(buffer.GetPayloadType(), KrPayloadType::Image);
  ASSERT_NE(buffer.GetImage(), nullptr);
  EXPECT_EQ(buffer.GetImage()->GetHeight(), 16u);
  EXPECT_EQ(buffer.GetChunkCount(), 2u);
}

TEST(FrameDescription, ChunksAlone_AreFoundWithoutAnImage) {
  KrBuffer buffer = MakeBuffer();
  FrameDescription frame = MakeFrameWithChunks(buffer);
  frame.payloadType = static_cast<std::uint32_t>(KrPayloadType::ChunkData);

  DescribeFrame(frame, buffer);

  EXPECT_EQ(buffer.GetPayloadType(), KrPayloadType::ChunkData);
  EXPECT_EQ(buffer.GetImage(), nullptr);
  EXPECT_EQ(buffer.GetChunkCount(), 2u);
}

TEST(FrameDescription, ChunksThatContradictThemselves_LeaveTheImage) {
  KrBuffer buffer = MakeBuffer();
  FrameDescription frame = MakeFrameWithChunks(buffer);
  PutChunkEnd(buffer, 268, 7, 0xFFFFFFFF);

  DescribeFrame(frame, buffer);

  EXPECT_EQ(buffer.GetStatus(), KrBufferStatus::Complete);
  EXPECT_EQ(buffer.GetChunkCount(), 0u);
  ASSERT_NE(buffer.GetImage(), nullptr);
  EXPECT_EQ(buffer.GetImage()->GetHeight(), 16u);
}

TEST(FrameDescription, FrameWithoutChunksAfterOneWithThem_HasNone) {
  KrBuffer buffer = MakeBuffer();
  DescribeFrame(MakeFrameWithChunks(buffer), buffer);

  DescribeFrame(MakeFrame(), buffer);

  EXPECT_EQ(buffer.GetChunkCount(), 0u);
}

} // namespace
