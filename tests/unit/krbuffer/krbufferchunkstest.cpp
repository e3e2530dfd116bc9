// Chunks of a buffer.

#include "krbuffer/krbuffer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <utility>
#include <vector>

namespace {

constexpr std::uint32_t kImageID = 1;
constexpr std::uint32_t kCounterID = 0x1001;

/// An image of 2 x 2 bytes as a chunk, and a counter.
constexpr std::array<std::uint8_t, 26> kImageAndCounter = {10, 20, 30, 40, 0,    0, 0, 1, 0, 0, 0, 4, // The image.
                                                           1,  2,  0,  0,  0x10, 1, 0, 0, 0, 2,       // The counter.
                                                           9,  9,  9,  9};                            // Not acquired.
constexpr std::size_t kAcquired = 22;

KrBuffer MakeBuffer() {
  KrBuffer buffer;
  EXPECT_TRUE(buffer.Alloc(kImageAndCounter.size()).IsOK());
  std::copy(kImageAndCounter.begin(), kImageAndCounter.end(), buffer.GetDataPointer());
  buffer.SetAcquiredSize(kAcquired);
  return buffer;
}

KrBuffer MakeBufferWithChunks() {
  KrBuffer buffer = MakeBuffer();
  EXPECT_TRUE(buffer.DescribeImage(2, 2, KrPixel::Mono8).IsOK());
  EXPECT_TRUE(buffer.DescribeChunks(KrByteOrder::BigEndian).IsOK());
  return buffer;
}

void ExpectNoChunks(const KrBuffer& aBuffer) {
  EXPECT_EQ(aBuffer.GetChunkCount(), 0u);
  EXPECT_EQ(aBuffer.GetChunk(0), nullptr);
  EXPECT_EQ(aBuffer.FindChunk(kCounterID), nullptr);
}

} // namespace

TEST(KrBufferChunks, New_HasNone) {
  ExpectNoChunks(KrBuffer());
}

TEST(KrBufferChunks, ForgetChunks_LeavesNoneAndTheBytesAndTheImage) {
  KrBuffer buffer = MakeBufferWithChunks();
  ASSERT_EQ(buffer.GetChunkCount(), 2u);

  buffer.ForgetChunks();

  ExpectNoChunks(buffer);
  EXPECT_EQ(buffer.GetAcquiredSize(), kAcquired);
  EXPECT_TRUE(std::equal(kImageAndCounter.begin(), kImageAndCounter.end(), buffer.GetDataPointer()));
  EXPECT_EQ(buffer.GetImage()->GetWidth(), 2u);
}

TEST(KrBufferChunks, ForgetChunks_DescribedAnew_AreThereAgain) {
  KrBuffer buffer = MakeBufferWithChunks();
  buffer.ForgetChunks();

  ASSERT_TRUE(buffer.DescribeChunks(KrByteOrder::BigEndian).IsOK());

  EXPECT_EQ(buffer.GetChunkCount(), 2u);
}

TEST(KrBufferChunks, DescribeChunks_FindsThoseAtTheEndOfTheAcquiredBytes) {
  KrBuffer buffer = MakeBuffer();

  ASSERT_TRUE(buffer.DescribeChunks(KrByteOrder::BigEndian).IsOK());

  ASSERT_EQ(buffer.GetChunkCount(), 2u);
  EXPECT_EQ(buffer.GetChunk(0)->id, kImageID);
  EXPECT_EQ(buffer.GetChunk(0)->offset, 0u);
  EXPECT_EQ(buffer.GetChunk(0)->length, 4u);
  EXPECT_EQ(buffer.GetChunk(1)->id, kCounterID);
  EXPECT_EQ(buffer.GetChunk(1)->offset, 12u);
  EXPECT_EQ(buffer.GetChunk(1)->length, 2u);
  EXPECT_EQ(buffer.GetChunk(2), nullptr);
}

TEST(KrBufferChunks, FindChunk_GivesTheOneWithTheIdentifierOrNull) {
  const KrBuffer buffer = MakeBufferWithChunks();

  EXPECT_EQ(buffer.FindChunk(kCounterID), buffer.GetChunk(1));
  EXPECT_EQ(buffer.FindChunk(0x9999), nullptr);
}

TEST(KrBufferChunks, FindChunkOfAnIdentifierThatIsThereTwice_GivesTheFirst) {
  KrBuffer buffer;
  ASSERT_TRUE(buffer.Alloc(16).IsOK());
  buffer.SetAcquiredSize(16);
  ASSERT_TRUE(buffer.DescribeChunks(KrByteOrder::LittleEndian).IsOK());

  ASSERT_EQ(buffer.GetChunkCount(), 2u);
  EXPECT_EQ(buffer.FindChunk(0), buffer.GetChunk(0));
}

TEST(KrBufferChunks, GetChunkData_PointsToTheChunksFirstByte) {
  const KrBuffer buffer = MakeBufferWithChunks();

  EXPECT_EQ(buffer.GetChunkData(*buffer.GetChunk(0)), buffer.GetDataPointer());
  EXPECT_EQ(buffer.GetChunkData(*buffer.GetChunk(1)), buffer.GetDataPointer() + 12);
}

TEST(KrBufferChunks, GetChunkDataOfAChunkThatIsNotInTheMemory_IsNull) {
  const KrBuffer buffer = MakeBufferWithChunks();
  const std::size_t most = static_cast<std::size_t>(-1);

  EXPECT_NE(buffer.GetChunkData({0, 26, 0}), nullptr);
  EXPECT_EQ(buffer.GetChunkData({0, 27, 0}), nullptr);
  EXPECT_EQ(buffer.GetChunkData({0, 20, 7}), nullptr);
  EXPECT_EQ(buffer.GetChunkData({0, most, 2}), nullptr);
  EXPECT_EQ(buffer.GetChunkData({0, 2, most}), nullptr);
  EXPECT_EQ(KrBuffer().GetChunkData({0, 0, 0}), nullptr);
}

TEST(KrBufferChunks, AnImageWithChunksBehindIt_StaysAnImage) {
  const KrBuffer buffer = MakeBufferWithChunks();

  EXPECT_EQ(buffer.GetPayloadType(), KrPayloadType::Image);
  ASSERT_NE(buffer.GetImage(), nullptr);
  EXPECT_EQ(buffer.GetImage()->GetWidth(), 2u);
  EXPECT_EQ(buffer.GetImage()->GetDataPointer()[3], 40);
}

TEST(KrBufferChunks, PayloadOfChunksAlone_HasChunksAndNoImage) {
  KrBuffer buffer = MakeBuffer();
  buffer.SetPayloadType(KrPayloadType::ChunkData);

  ASSERT_TRUE(buffer.DescribeChunks(KrByteOrder::BigEndian).IsOK());

  EXPECT_EQ(buffer.GetPayloadType(), KrPayloadType::ChunkData);
  EXPECT_EQ(buffer.GetImage(), nullptr);
  EXPECT_EQ(buffer.GetChunkCount(), 2u);
}

TEST(KrBufferChunks, ChunksBehindAPlainImage_BeginAtItsEnd) {
  KrBuffer buffer;
  ASSERT_TRUE(buffer.Alloc(13).IsOK());
  buffer.GetDataPointer()[12] = 1;
  buffer.SetAcquiredSize(13);
  ASSERT_TRUE(buffer.DescribeImage(4, 1, KrPixel::Mono8).IsOK());

  ASSERT_TRUE(buffer.DescribeChunks(KrByteOrder::BigEndian).IsOK());

  ASSERT_EQ(buffer.GetChunkCount(), 1u);
  EXPECT_EQ(buffer.GetChunk(0)->offset, 4u);
  EXPECT_EQ(buffer.GetChunk(0)->length, 1u);
}

TEST(KrBufferChunks, BytesThatContradictThemselves_AreBadDataAndLeaveNoChunks) {
  KrBuffer buffer = MakeBufferWithChunks();
  buffer.SetAcquiredSize(kAcquired + 1);

  const KrResult result = buffer.DescribeChunks(KrByteOrder::BigEndian);

  EXPECT_EQ(result.GetCode(), KrResult::Code::BadData);
  EXPECT_FALSE(result.GetDescription().IsEmpty());
  ExpectNoChunks(buffer);
  EXPECT_EQ(buffer.GetImage()->GetWidth(), 2u);
}

TEST(KrBufferChunks, NothingAcquired_GivesNoChunks) {
  KrBuffer empty;
  EXPECT_TRUE(empty.DescribeChunks(KrByteOrder::BigEndian).IsOK());
  ExpectNoChunks(empty);

  KrBuffer unfilled = MakeBuffer();
  unfilled.SetAcquiredSize(0);
  EXPECT_TRUE(unfilled.DescribeChunks(KrByteOrder::BigEndian).IsOK());
  ExpectNoChunks(unfilled);
}

TEST(KrBufferChunks, OtherMemory_ForgetsThem) {
  std::array<std::uint8_t, 30> memory{};
  const std::vector<std::function<void(KrBuffer&)>> replacements = {
      [](KrBuffer& aBuffer) { EXPECT_TRUE(aBuffer.Alloc(kImageAndCounter.size()).IsOK()); },
      [](KrBuffer& aBuffer) { EXPECT_TRUE(aBuffer.GetImage()->Alloc(26, 1, KrPixel::Mono8).IsOK()); },
      [&memory](KrBuffer& aBuffer) { EXPECT_TRUE(aBuffer.Attach(memory.data(), memory.size()).IsOK()); },
      [](KrBuffer& aBuffer) { aBuffer.Free(); },
  };
  for (const auto& replace : replacements) {
    KrBuffer buffer = MakeBufferWithChunks();

    replace(buffer);

    ExpectNoChunks(buffer);
  }
}

TEST(KrBufferChunks, AllocThatIsRefused_KeepsThem) {
  KrBuffer buffer = MakeBufferWithChunks();

  EXPECT_EQ(buffer.Alloc(0).GetCode(), KrResult::Code::InvalidInput);

  EXPECT_EQ(buffer.GetChunkCount(), 2u);
}

TEST(KrBufferChunks, Move_TakesThemAlong) {
  KrBuffer source = MakeBufferWithChunks();

  const KrBuffer target(std::move(source));

  EXPECT_EQ(target.GetChunkCount(), 2u);
  ExpectNoChunks(source);
}
