#include "krbuffer/krbuffer.h"

#include "memorylimit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace {

constexpr std::size_t kFourGiB = std::size_t{4} << 30;
constexpr std::uint32_t kMost = std::numeric_limits<std::uint32_t>::max();

constexpr std::array kOtherTypes = {KrPayloadType::None,      KrPayloadType::RawData, KrPayloadType::File,
                                    KrPayloadType::ChunkData, KrPayloadType::Jpeg,    KrPayloadType::ExtendedChunkData,
                                    KrPayloadType::Jpeg2000,  KrPayloadType::H264,    KrPayloadType::MultiZoneImage,
                                    KrPayloadType::MultiPart, KrPayloadType::GenDC};

void ExpectHoldsNothing(const IKrImage* aImage) {
  ASSERT_NE(aImage, nullptr);
  EXPECT_EQ(aImage->GetWidth(), 0u);
  EXPECT_EQ(aImage->GetHeight(), 0u);
  EXPECT_EQ(aImage->GetImageSize(), 0u);
  EXPECT_EQ(aImage->GetDataPointer(), nullptr);
}

void ExpectIsEmpty(const KrBuffer& aBuffer) {
  EXPECT_EQ(aBuffer.GetPayloadType(), KrPayloadType::Image);
  EXPECT_EQ(aBuffer.GetDataPointer(), nullptr);
  EXPECT_EQ(aBuffer.GetSize(), 0u);
  EXPECT_EQ(aBuffer.GetAcquiredSize(), 0u);
  EXPECT_EQ(aBuffer.GetStatus(), KrBufferStatus::Empty);
  EXPECT_EQ(aBuffer.GetFrameID(), 0u);
  EXPECT_EQ(aBuffer.GetTimestampNs(), 0u);
  EXPECT_EQ(aBuffer.GetHostTimestampNs(), 0u);
  ExpectHoldsNothing(aBuffer.GetImage());
}

/// A buffer with a described image of 4 x 2 bytes in 10 bytes of memory.
KrBuffer MakeDescribedBuffer() {
  KrBuffer buffer;
  EXPECT_TRUE(buffer.Alloc(10).IsOK());
  EXPECT_TRUE(buffer.DescribeImage(4, 2, KrPixel::Mono8).IsOK());
  buffer.SetAcquiredSize(9);
  return buffer;
}

void ExpectIsDescribedBuffer(const KrBuffer& aBuffer, const std::uint8_t* aMemory) {
  EXPECT_EQ(aBuffer.GetDataPointer(), aMemory);
  EXPECT_EQ(aBuffer.GetSize(), 10u);
  EXPECT_EQ(aBuffer.GetAcquiredSize(), 9u);
  ASSERT_NE(aBuffer.GetImage(), nullptr);
  EXPECT_EQ(aBuffer.GetImage()->GetWidth(), 4u);
  EXPECT_EQ(aBuffer.GetImage()->GetHeight(), 2u);
  EXPECT_EQ(aBuffer.GetImage()->GetImageSize(), 8u);
  EXPECT_EQ(aBuffer.GetImage()->GetDataPointer(), aMemory);
}

} // namespace

TEST(KrBuffer, New_IsAnEmptyImage) {
  ExpectIsEmpty(KrBuffer());
}

TEST(KrBuffer, PayloadTypes_AreNumberedAsTheStandardDoes) {
  EXPECT_EQ(static_cast<int>(KrPayloadType::Image), 1);
  EXPECT_EQ(static_cast<int>(KrPayloadType::RawData), 2);
  EXPECT_EQ(static_cast<int>(KrPayloadType::ChunkData), 4);
  EXPECT_EQ(static_cast<int>(KrPayloadType::MultiPart), 10);
}

TEST(KrBuffer, EveryOtherPayloadType_HasNoImage) {
  for (const KrPayloadType type : kOtherTypes) {
    KrBuffer buffer(type);

    EXPECT_EQ(buffer.GetPayloadType(), type);
    EXPECT_EQ(buffer.GetImage(), nullptr);
    EXPECT_EQ(std::as_const(buffer).GetImage(), nullptr);
  }
}

TEST(KrBuffer, SetPayloadType_KeepsBytesAndDescription) {
  KrBuffer buffer = MakeDescribedBuffer();
  const std::uint8_t* memory = buffer.GetDataPointer();

  buffer.SetPayloadType(KrPayloadType::ChunkData);
  EXPECT_EQ(buffer.GetImage(), nullptr);
  EXPECT_EQ(buffer.GetDataPointer(), memory);
  buffer.SetPayloadType(KrPayloadType::Image);

  ExpectIsDescribedBuffer(buffer, memory);
}

TEST(KrBuffer, Alloc_GivesZeroedBytesWithoutDescription) {
  KrBuffer buffer;

  ASSERT_TRUE(buffer.Alloc(1000).IsOK());

  EXPECT_EQ(buffer.GetSize(), 1000u);
  EXPECT_EQ(std::count(buffer.GetDataPointer(), buffer.GetDataPointer() + 1000, 0), 1000);
  ExpectHoldsNothing(buffer.GetImage());
}

TEST(KrBuffer, AllocAgain_ForgetsDescriptionAndAcquiredSize) {
  KrBuffer buffer = MakeDescribedBuffer();

  ASSERT_TRUE(buffer.Alloc(20).IsOK());

  EXPECT_EQ(buffer.GetSize(), 20u);
  EXPECT_EQ(buffer.GetAcquiredSize(), 0u);
  ExpectHoldsNothing(buffer.GetImage());
}

TEST(KrBuffer, AllocOfImpossibleSize_IsInvalidInputAndChangesNothing) {
  KrBuffer buffer = MakeDescribedBuffer();
  const std::uint8_t* memory = buffer.GetDataPointer();

  for (const std::size_t bytes : {std::size_t{0}, kFourGiB + 1, std::numeric_limits<std::size_t>::max()}) {
    const KrResult result = buffer.Alloc(bytes);

    EXPECT_EQ(result.GetCode(), KrResult::Code::InvalidInput) << bytes;
    EXPECT_FALSE(result.GetDescription().IsEmpty());
    ExpectIsDescribedBuffer(buffer, memory);
  }
}

TEST(KrBuffer, AllocWithTooLittleMemory_IsSystemErrorAndChangesNothing) {
  KrBuffer buffer = MakeDescribedBuffer();
  const std::uint8_t* memory = buffer.GetDataPointer();
  KrResult bufferResult;
  KrResult imageResult;

  {
    const MemoryLimit limit(std::size_t{256} << 20);
    bufferResult = buffer.Alloc(kFourGiB);
    imageResult = buffer.GetImage()->Alloc(32768, 32768, KrPixel::BGRa8);
  }

  EXPECT_EQ(bufferResult.GetCode(), KrResult::Code::SystemError);
  EXPECT_EQ(imageResult.GetCode(), KrResult::Code::SystemError);
  ExpectIsDescribedBuffer(buffer, memory);
}

TEST(KrBuffer, Attach_UsesTheCallersMemoryWithoutFreeingIt) {
  std::array<std::uint8_t, 6> memory = {1, 2, 3, 4, 5, 6};

  {
    KrBuffer buffer = MakeDescribedBuffer();
    ASSERT_TRUE(buffer.Attach(memory.data(), memory.size()).IsOK());
    EXPECT_EQ(buffer.GetDataPointer(), memory.data());
    EXPECT_EQ(buffer.GetSize(), 6u);
    EXPECT_EQ(buffer.GetAcquiredSize(), 0u);
    ExpectHoldsNothing(buffer.GetImage());
  }

  EXPECT_EQ(memory, (std::array<std::uint8_t, 6>{1, 2, 3, 4, 5, 6}));
}

TEST(KrBuffer, AttachOfNothing_IsInvalidInputAndChangesNothing) {
  KrBuffer buffer = MakeDescribedBuffer();
  const std::uint8_t* memory = buffer.GetDataPointer();
  std::uint8_t byte = 0;

  EXPECT_EQ(buffer.Attach(nullptr, 10).GetCode(), KrResult::Code::InvalidInput);
  EXPECT_EQ(buffer.Attach(&byte, 0).GetCode(), KrResult::Code::InvalidInput);
  ExpectIsDescribedBuffer(buffer, memory);
}

TEST(KrBuffer, Free_LeavesNoMemoryAndNoImage) {
  KrBuffer buffer = MakeDescribedBuffer();

  buffer.Free();

  EXPECT_EQ(buffer.GetDataPointer(), nullptr);
  EXPECT_EQ(buffer.GetSize(), 0u);
  EXPECT_EQ(buffer.GetAcquiredSize(), 0u);
  ExpectHoldsNothing(buffer.GetImage());
}

TEST(KrBuffer, AcquiredSize_IsCutToTheSize) {
  KrBuffer buffer;
  ASSERT_TRUE(buffer.Alloc(10).IsOK());

  buffer.SetAcquiredSize(7);
  EXPECT_EQ(buffer.GetAcquiredSize(), 7u);
  buffer.SetAcquiredSize(11);

  EXPECT_EQ(buffer.GetAcquiredSize(), 10u);
}

TEST(KrBuffer, DescribeImage_TellsAllThatWasSaidWithoutTouchingTheBytes) {
  KrBuffer buffer;
  ASSERT_TRUE(buffer.Alloc(23).IsOK());
  buffer.GetDataPointer()[22] = 0x5A;

  ASSERT_TRUE(buffer.DescribeImage(3, 2, KrPixel::Mono8, 5, 7).IsOK());

  const IKrImage* image = buffer.GetImage();
  EXPECT_EQ(image->GetWidth(), 3u);
  EXPECT_EQ(image->GetHeight(), 2u);
  EXPECT_EQ(image->GetPixelType(), KrPixel::Mono8);
  EXPECT_EQ(image->GetPaddingX(), 5u);
  EXPECT_EQ(image->GetPaddingY(), 7u);
  EXPECT_EQ(image->GetImageSize(), 23u);
  EXPECT_EQ(image->GetDataPointer(), buffer.GetDataPointer());
  EXPECT_EQ(buffer.GetDataPointer()[22], 0x5A);
}

TEST(KrBuffer, DescribeImageLargerThanTheMemory_IsBadDataAndChangesNothing) {
  KrBuffer buffer = MakeDescribedBuffer();
  const std::uint8_t* memory = buffer.GetDataPointer();

  EXPECT_EQ(buffer.DescribeImage(11, 1, KrPixel::Mono8).GetCode(), KrResult::Code::BadData);
  EXPECT_EQ(buffer.DescribeImage(5, 2, KrPixel::Mono8, 0, 1).GetCode(), KrResult::Code::BadData);
  EXPECT_EQ(buffer.DescribeImage(7, 1, KrPixel::Mono12p).GetCode(), KrResult::Code::BadData);
  EXPECT_EQ(buffer.DescribeImage(65536, 65536, KrPixel::Mono8).GetCode(), KrResult::Code::BadData);
  EXPECT_EQ(buffer.DescribeImage(kMost, kMost, 0x02FF0000, kMost, kMost).GetCode(), KrResult::Code::BadData);
  ExpectIsDescribedBuffer(buffer, memory);
}

TEST(KrBuffer, DescribeImageWithoutPixels_IsInvalidInputAndChangesNothing) {
  KrBuffer buffer = MakeDescribedBuffer();
  const std::uint8_t* memory = buffer.GetDataPointer();

  EXPECT_EQ(buffer.DescribeImage(0, 2, KrPixel::Mono8).GetCode(), KrResult::Code::InvalidInput);
  EXPECT_EQ(buffer.DescribeImage(4, 0, KrPixel::Mono8).GetCode(), KrResult::Code::InvalidInput);
  EXPECT_EQ(buffer.DescribeImage(4, 2, 0x01000001).GetCode(), KrResult::Code::InvalidInput);
  ExpectIsDescribedBuffer(buffer, memory);
}

TEST(KrBuffer, DescribeImageOfAnUnknownFormat_GoesByTheCodesOwnSize) {
  constexpr KrPixelType kCoord3DABC32f = 0x026000C0;
  KrBuffer buffer;
  ASSERT_TRUE(buffer.Alloc(24).IsOK());

  EXPECT_TRUE(buffer.DescribeImage(2, 1, kCoord3DABC32f).IsOK());

  EXPECT_EQ(buffer.GetImage()->GetPixelType(), kCoord3DABC32f);
  EXPECT_EQ(buffer.GetImage()->GetImageSize(), 24u);
}

TEST(KrBuffer, DescribeImageInAnotherPayloadType_LeavesTheType) {
  KrBuffer buffer(KrPayloadType::ExtendedChunkData);
  ASSERT_TRUE(buffer.Alloc(8).IsOK());

  ASSERT_TRUE(buffer.DescribeImage(4, 2, KrPixel::Mono8).IsOK());

  EXPECT_EQ(buffer.GetPayloadType(), KrPayloadType::ExtendedChunkData);
  EXPECT_EQ(buffer.GetImage(), nullptr);
}

TEST(KrBufferImage, Alloc_MakesRoomInTheBuffer) {
  KrBuffer buffer = MakeDescribedBuffer();

  ASSERT_TRUE(buffer.GetImage()->Alloc(5, 3, KrPixel::Mono12p, 2, 4).IsOK());

  const IKrImage* image = buffer.GetImage();
  EXPECT_EQ(image->GetWidth(), 5u);
  EXPECT_EQ(image->GetHeight(), 3u);
  EXPECT_EQ(image->GetPixelType(), KrPixel::Mono12p);
  EXPECT_EQ(image->GetPaddingX(), 2u);
  EXPECT_EQ(image->GetPaddingY(), 4u);
  EXPECT_EQ(image->GetImageSize(), 34u);
  EXPECT_EQ(buffer.GetSize(), 34u);
  EXPECT_EQ(buffer.GetAcquiredSize(), 0u);
  EXPECT_EQ(image->GetDataPointer(), buffer.GetDataPointer());
}

TEST(KrBufferImage, AllocOfAnImpossibleImage_IsInvalidInputAndChangesNothing) {
  KrBuffer buffer = MakeDescribedBuffer();
  const std::uint8_t* memory = buffer.GetDataPointer();
  IKrImage* image = buffer.GetImage();

  EXPECT_EQ(image->Alloc(0, 1, KrPixel::Mono8).GetCode(), KrResult::Code::InvalidInput);
  EXPECT_EQ(image->Alloc(1, 0, KrPixel::Mono8).GetCode(), KrResult::Code::InvalidInput);
  EXPECT_EQ(image->Alloc(1, 1, 0x01000001).GetCode(), KrResult::Code::InvalidInput);
  EXPECT_EQ(image->Alloc(65536, 65536, KrPixel::Mono8, 0, 1).GetCode(), KrResult::Code::InvalidInput);
  EXPECT_EQ(image->Alloc(kMost, kMost, 0x02FF0000, kMost, kMost).GetCode(), KrResult::Code::InvalidInput);
  ExpectIsDescribedBuffer(buffer, memory);
}

TEST(KrBuffer, MoveConstruction_TakesEverythingAndKeepsPointersToTheImageValid) {
  KrBuffer source = MakeDescribedBuffer();
  source.SetFrameID(7);
  const std::uint8_t* memory = source.GetDataPointer();
  const IKrImage* image = source.GetImage();

  KrBuffer target(std::move(source));

  ExpectIsDescribedBuffer(target, memory);
  EXPECT_EQ(target.GetImage(), image);
  EXPECT_EQ(target.GetFrameID(), 7u);
}

TEST(KrBuffer, MovedFrom_IsAnEmptyBufferThatCanBeUsedAgain) {
  KrBuffer source = MakeDescribedBuffer();
  source.SetFrameID(7);

  const KrBuffer target(std::move(source));

  ExpectIsEmpty(source);
  EXPECT_TRUE(source.GetImage()->Alloc(2, 2, KrPixel::Mono8).IsOK());
  EXPECT_EQ(target.GetImage()->GetWidth(), 4u);
}

TEST(KrBuffer, MoveAssignment_TakesEverythingAndLeavesAnEmptyBuffer) {
  KrBuffer source = MakeDescribedBuffer();
  const std::uint8_t* memory = source.GetDataPointer();
  KrBuffer target(KrPayloadType::File);

  target = std::move(source);

  ExpectIsDescribedBuffer(target, memory);
  ExpectIsEmpty(source);
}

TEST(KrBuffer, MoveAssignmentToItself_ChangesNothing) {
  KrBuffer buffer = MakeDescribedBuffer();
  const std::uint8_t* memory = buffer.GetDataPointer();
  KrBuffer& same = buffer;

  buffer = std::move(same);

  ExpectIsDescribedBuffer(buffer, memory);
}

TEST(KrBuffer, Arrival_IsKeptAsSet) {
  KrBuffer buffer;

  buffer.SetStatus(KrBufferStatus::Incomplete);
  buffer.SetFrameID(0x1'0000'0001);
  buffer.SetTimestampNs(123);
  buffer.SetHostTimestampNs(456);

  EXPECT_EQ(buffer.GetStatus(), KrBufferStatus::Incomplete);
  EXPECT_EQ(buffer.GetFrameID(), 0x1'0000'0001u);
  EXPECT_EQ(buffer.GetTimestampNs(), 123u);
  EXPECT_EQ(buffer.GetHostTimestampNs(), 456u);
}
