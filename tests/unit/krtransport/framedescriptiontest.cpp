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

} // namespace
