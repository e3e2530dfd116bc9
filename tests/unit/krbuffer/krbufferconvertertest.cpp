#include "krbuffer/krbufferconverter.h"

#include "foreignimage.h"
#include "memorylimit.h"
#include "noise.h"
#include "threadrefusal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <limits>
#include <ostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

using Bytes = std::vector<std::uint8_t>;

namespace {

constexpr std::uint32_t kMost = std::numeric_limits<std::uint32_t>::max();

struct FormatRow {
  std::string name;
  KrPixelType type;
  std::uint32_t width;
  Bytes line;
  Bytes bgra;
};

void PrintTo(const FormatRow& aRow, std::ostream* aStream) {
  *aStream << aRow.name;
}

/// One line of each format, worked out by hand.
const std::vector<FormatRow> kFormats = {
    {"Mono8", KrPixel::Mono8, 3, {0, 128, 255}, {0, 0, 0, 255, 128, 128, 128, 255, 255, 255, 255, 255}},
    {"Mono10LowBitsAreCutOff",
     KrPixel::Mono10,
     3,
     {0x03, 0x00, 0x04, 0x00, 0xFF, 0x03},
     {0, 0, 0, 255, 1, 1, 1, 255, 255, 255, 255, 255}},
    {"Mono10PaddingBitsAreIgnored", KrPixel::Mono10, 2, {0x00, 0x04, 0x00, 0xFE}, {0, 0, 0, 255, 128, 128, 128, 255}},
    {"Mono12LowBitsAreCutOff",
     KrPixel::Mono12,
     3,
     {0x0F, 0x00, 0x10, 0x00, 0xFF, 0x0F},
     {0, 0, 0, 255, 1, 1, 1, 255, 255, 255, 255, 255}},
    {"Mono12PaddingBitsAreIgnored", KrPixel::Mono12, 2, {0x00, 0x10, 0x00, 0xF8}, {0, 0, 0, 255, 128, 128, 128, 255}},
    {"Mono14LowBitsAreCutOff",
     KrPixel::Mono14,
     3,
     {0x3F, 0x00, 0x40, 0x00, 0xFF, 0x3F},
     {0, 0, 0, 255, 1, 1, 1, 255, 255, 255, 255, 255}},
    {"Mono14PaddingBitsAreIgnored", KrPixel::Mono14, 2, {0x00, 0x40, 0x00, 0xE0}, {0, 0, 0, 255, 128, 128, 128, 255}},
    {"Mono16",
     KrPixel::Mono16,
     3,
     {0xFF, 0x00, 0x00, 0x01, 0xFF, 0xFF},
     {0, 0, 0, 255, 1, 1, 1, 255, 255, 255, 255, 255}},
    {"Mono12pPairOfABCand123", KrPixel::Mono12p, 2, {0xBC, 0x3A, 0x12}, {0xAB, 0xAB, 0xAB, 255, 0x12, 0x12, 0x12, 255}},
    {"Mono12pOddWidthEndsWithDEF",
     KrPixel::Mono12p,
     3,
     {0xBC, 0x3A, 0x12, 0xEF, 0x0D},
     {0xAB, 0xAB, 0xAB, 255, 0x12, 0x12, 0x12, 255, 0xDE, 0xDE, 0xDE, 255}},
    {"Mono12pSinglePixel", KrPixel::Mono12p, 1, {0xEF, 0x0D}, {0xDE, 0xDE, 0xDE, 255}},
    {"RGB8", KrPixel::RGB8, 2, {10, 20, 30, 1, 2, 3}, {30, 20, 10, 255, 3, 2, 1, 255}},
    {"BGR8", KrPixel::BGR8, 2, {10, 20, 30, 1, 2, 3}, {10, 20, 30, 255, 1, 2, 3, 255}},
    {"RGBa8KeepsAlpha", KrPixel::RGBa8, 2, {10, 20, 30, 40, 1, 2, 3, 0}, {30, 20, 10, 40, 3, 2, 1, 0}},
    {"BGRa8KeepsAlpha", KrPixel::BGRa8, 2, {10, 20, 30, 40, 1, 2, 3, 0}, {10, 20, 30, 40, 1, 2, 3, 0}},
};

class EveryFormat : public testing::TestWithParam<FormatRow> {};
class EveryThreadCount : public testing::TestWithParam<int> {};

Bytes GetBytes(const KrBuffer& aBuffer) {
  return {aBuffer.GetDataPointer(), aBuffer.GetDataPointer() + aBuffer.GetSize()};
}

/// A destination that holds 2 x 1 pixels of its own.
KrBuffer MakeOccupiedDestination() {
  KrBuffer destination;
  EXPECT_TRUE(destination.GetImage()->Alloc(2, 1, KrPixel::BGRa8).IsOK());
  std::fill_n(destination.GetDataPointer(), 8, std::uint8_t{0x5A});
  return destination;
}

void ExpectUnchanged(const KrBuffer& aDestination, const std::uint8_t* aMemory) {
  ASSERT_EQ(aDestination.GetDataPointer(), aMemory);
  EXPECT_EQ(aDestination.GetImage()->GetWidth(), 2u);
  EXPECT_EQ(aDestination.GetImage()->GetHeight(), 1u);
  EXPECT_EQ(GetBytes(aDestination), Bytes(8, 0x5A));
}

/// Converts into an occupied destination, expects the code and that the destination is as it was.
void ExpectRefused(const IKrImage* aSource, KrResult::Code aCode) {
  KrBuffer destination = MakeOccupiedDestination();
  const std::uint8_t* memory = destination.GetDataPointer();

  const KrResult result = KrBufferConverter(1).Convert(aSource, &destination, true, false);

  EXPECT_EQ(result.GetCode(), aCode) << result.GetDescription().CStr();
  EXPECT_FALSE(result.GetDescription().IsEmpty());
  ExpectUnchanged(destination, memory);
}

template <class Thrown>
class ThrowingImage : public ForeignImage {
public:
  explicit ThrowingImage(Thrown aThrown) : ForeignImage(2, 2, KrPixel::Mono8, Bytes(4)), mThrown(aThrown) {}
  std::uint32_t GetWidth() const override { throw mThrown; }

private:
  Thrown mThrown;
};

} // namespace

TEST_P(EveryFormat, Line_BecomesItsPixels) {
  const ForeignImage image(GetParam().width, 1, GetParam().type, GetParam().line);
  KrBuffer destination;

  ASSERT_TRUE(KrBufferConverter(1).Convert(&image, &destination, true, false).IsOK());

  EXPECT_EQ(GetBytes(destination), GetParam().bgra);
}

TEST_P(EveryFormat, PaddedLines_BecomeTheirPixels) {
  ForeignImage image(GetParam().width, 2, GetParam().type, {});
  for (int line = 0; line < 2; ++line) {
    image.bytes.insert(image.bytes.end(), GetParam().line.begin(), GetParam().line.end());
    image.bytes.insert(image.bytes.end(), {0xEE, 0xEE, 0xEE});
  }
  image.bytes.insert(image.bytes.end(), {0xDD, 0xDD});
  image.paddingX = 3;
  image.paddingY = 2;
  KrBuffer destination;

  ASSERT_TRUE(KrBufferConverter(1).Convert(&image, &destination, true, false).IsOK());

  Bytes twoLines = GetParam().bgra;
  twoLines.insert(twoLines.end(), GetParam().bgra.begin(), GetParam().bgra.end());
  EXPECT_EQ(GetBytes(destination), twoLines);
}

TEST_P(EveryFormat, OneByteTooLittle_IsBadDataAndLeavesTheDestination) {
  ForeignImage image(GetParam().width, 1, GetParam().type, GetParam().line);
  image.bytes.pop_back();

  ExpectRefused(&image, KrResult::Code::BadData);
}

TEST_P(EveryFormat, ConversionToBGRa8_IsSupported) {
  EXPECT_TRUE(KrBufferConverter::IsConversionSupported(GetParam().type, KrPixel::BGRa8));
}

INSTANTIATE_TEST_SUITE_P(KrBufferConverter, EveryFormat, testing::ValuesIn(kFormats),
                         [](const testing::TestParamInfo<FormatRow>& aInfo) { return aInfo.param.name; });

TEST(KrBufferConverter, ConversionToOrFromOtherFormats_IsNotSupported) {
  EXPECT_FALSE(KrBufferConverter::IsConversionSupported(0, KrPixel::BGRa8));
  EXPECT_FALSE(KrBufferConverter::IsConversionSupported(0x81080001, KrPixel::BGRa8));
  EXPECT_FALSE(KrBufferConverter::IsConversionSupported(KrPixel::Mono8, KrPixel::Mono10));
  EXPECT_FALSE(KrBufferConverter::IsConversionSupported(KrPixel::Mono10, KrPixel::Mono10p));
  EXPECT_FALSE(KrBufferConverter::IsConversionSupported(KrPixel::Mono4p, KrPixel::Mono8));
  EXPECT_FALSE(KrBufferConverter::IsConversionSupported(KrPixel::Mono8, 0));
}

TEST(KrBufferConverter, ThreadCount_IsAtLeast1AndAtMost64) {
  const int cores = std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, 64);

  EXPECT_EQ(KrBufferConverter().GetThreadCount(), cores);
  EXPECT_EQ(KrBufferConverter(-1).GetThreadCount(), cores);
  EXPECT_EQ(KrBufferConverter(0).GetThreadCount(), cores);
  EXPECT_EQ(KrBufferConverter(-7).GetThreadCount(), cores);
  EXPECT_EQ(KrBufferConverter(1).GetThreadCount(), 1);
  EXPECT_EQ(KrBufferConverter(5).GetThreadCount(), 5);
  EXPECT_EQ(KrBufferConverter(65).GetThreadCount(), 64);
}

TEST(KrBufferConverter, BottomUp_WritesTheLinesInReverseOrder) {
  const ForeignImage image(1, 3, KrPixel::Mono8, {1, 2, 3});
  KrBuffer destination;

  ASSERT_TRUE(KrBufferConverter(1).Convert(&image, &destination, true, true).IsOK());

  EXPECT_EQ(GetBytes(destination), (Bytes{3, 3, 3, 255, 2, 2, 2, 255, 1, 1, 1, 255}));
}

TEST(KrBufferConverter, EmptyDestination_BecomesABGRa8ImageOfTheSourcesSize) {
  const ForeignImage image(3, 2, KrPixel::Mono8, Bytes(6));
  KrBuffer destination;

  ASSERT_TRUE(KrBufferConverter(1).Convert(&image, &destination, true, false).IsOK());

  EXPECT_EQ(destination.GetImage()->GetWidth(), 3u);
  EXPECT_EQ(destination.GetImage()->GetHeight(), 2u);
  EXPECT_EQ(destination.GetImage()->GetPixelType(), KrPixel::BGRa8);
  EXPECT_EQ(destination.GetSize(), 24u);
}

TEST(KrBufferConverter, FittingDestination_KeepsItsMemoryWithOrWithoutLeaveToAllocate) {
  const ForeignImage image(2, 1, KrPixel::Mono8, {7, 9});
  for (const bool allocate : {false, true}) {
    KrBuffer destination = MakeOccupiedDestination();
    const std::uint8_t* memory = destination.GetDataPointer();

    ASSERT_TRUE(KrBufferConverter(1).Convert(&image, &destination, allocate, false).IsOK());

    EXPECT_EQ(destination.GetDataPointer(), memory);
    EXPECT_EQ(GetBytes(destination), (Bytes{7, 7, 7, 255, 9, 9, 9, 255}));
  }
}

TEST(KrBufferConverter, MisfitWithLeaveToAllocate_IsAllocatedAnew) {
  const ForeignImage image(1, 1, KrPixel::Mono8, {7});
  KrBuffer destination = MakeOccupiedDestination();

  ASSERT_TRUE(KrBufferConverter(1).Convert(&image, &destination, true, false).IsOK());

  EXPECT_EQ(GetBytes(destination), (Bytes{7, 7, 7, 255}));
}

TEST(KrBufferConverter, MisfitWithoutLeaveToAllocate_IsInvalidInput) {
  const ForeignImage image(1, 2, KrPixel::Mono8, {7, 9});
  KrBuffer destination = MakeOccupiedDestination();
  const std::uint8_t* memory = destination.GetDataPointer();

  const KrResult result = KrBufferConverter(1).Convert(&image, &destination, false, false);

  EXPECT_EQ(result.GetCode(), KrResult::Code::InvalidInput);
  ExpectUnchanged(destination, memory);
}

TEST(KrBufferConverter, PaddedDestination_KeepsItsPadding) {
  const ForeignImage image(1, 2, KrPixel::Mono8, {7, 9});
  KrBuffer destination;
  ASSERT_TRUE(destination.GetImage()->Alloc(1, 2, KrPixel::BGRa8, 2, 1).IsOK());

  ASSERT_TRUE(KrBufferConverter(1).Convert(&image, &destination, false, false).IsOK());

  EXPECT_EQ(GetBytes(destination), (Bytes{7, 7, 7, 255, 0, 0, 9, 9, 9, 255, 0, 0, 0}));
}

TEST(KrBufferConverter, DestinationOfAnotherFormat_IsNotSupported) {
  const ForeignImage image(1, 1, KrPixel::Mono8, {7});
  KrBuffer destination;
  ASSERT_TRUE(destination.GetImage()->Alloc(1, 1, KrPixel::RGB8).IsOK());

  EXPECT_EQ(KrBufferConverter(1).Convert(&image, &destination, true, false).GetCode(), KrResult::Code::NotSupported);
  EXPECT_EQ(GetBytes(destination), Bytes(3, 0));
}

TEST(KrBufferConverter, DestinationOfAnotherPayloadType_IsInvalidInput) {
  const ForeignImage image(1, 1, KrPixel::Mono8, {7});
  KrBuffer destination(KrPayloadType::ChunkData);

  EXPECT_EQ(KrBufferConverter(1).Convert(&image, &destination, true, false).GetCode(), KrResult::Code::InvalidInput);
  EXPECT_EQ(destination.GetSize(), 0u);
}

TEST(KrBufferConverter, Null_IsInvalidInput) {
  const ForeignImage image(1, 1, KrPixel::Mono8, {7});

  EXPECT_EQ(KrBufferConverter(1).Convert(&image, nullptr, true, false).GetCode(), KrResult::Code::InvalidInput);
  ExpectRefused(nullptr, KrResult::Code::InvalidInput);
}

TEST(KrBufferConverter, UnknownFormat_IsNotSupportedAndLeavesTheDestination) {
  const ForeignImage image(1, 1, 0x81080001, {7});

  ExpectRefused(&image, KrResult::Code::NotSupported);
}

TEST(KrBufferConverter, SourceWithoutPixels_IsInvalidInput) {
  const ForeignImage withoutWidth(0, 1, KrPixel::Mono8, {7});
  const ForeignImage withoutHeight(1, 0, KrPixel::Mono8, {7});
  const KrBuffer empty;

  ExpectRefused(&withoutWidth, KrResult::Code::InvalidInput);
  ExpectRefused(&withoutHeight, KrResult::Code::InvalidInput);
  ExpectRefused(empty.GetImage(), KrResult::Code::InvalidInput);
}

TEST(KrBufferConverter, SourceThatStatesNoSize_IsBadData) {
  ForeignImage image(1, 1, KrPixel::Mono8, {7});
  image.statedSize = 0;

  ExpectRefused(&image, KrResult::Code::BadData);
}

TEST(KrBufferConverter, SourceWithoutDataThatStatesASize_IsBadData) {
  ForeignImage image(4, 4, KrPixel::Mono8, {});
  image.statedSize = 16;

  ExpectRefused(&image, KrResult::Code::BadData);
}

TEST(KrBufferConverter, SourceWhoseSizeOverflows_IsBadData) {
  ForeignImage productOf32BitsIs0(65536, 65536, KrPixel::Mono8, Bytes(64));
  ForeignImage bitsOf32BitsAre8(0x20000001, 1, KrPixel::Mono8, Bytes(64));
  ForeignImage largest(kMost, kMost, KrPixel::BGRa8, Bytes(64));
  largest.paddingX = kMost;
  largest.paddingY = kMost;

  ExpectRefused(&productOf32BitsIs0, KrResult::Code::BadData);
  ExpectRefused(&bitsOf32BitsAre8, KrResult::Code::BadData);
  ExpectRefused(&largest, KrResult::Code::BadData);
}

TEST(KrBufferConverter, SourceWhosePaddingIsNotThere_IsBadData) {
  ForeignImage image(2, 2, KrPixel::Mono8, Bytes(4));
  image.paddingX = 1;
  ExpectRefused(&image, KrResult::Code::BadData);

  image.paddingX = 0;
  image.paddingY = 1;
  ExpectRefused(&image, KrResult::Code::BadData);
}

TEST(KrBufferConverter, DestinationBeyondFourGiB_IsInvalidInput) {
  // The size that the image states is true of its format; its pixels are never reached.
  ForeignImage image(65536, 16385, KrPixel::Mono8, {1});
  image.statedSize = std::size_t{65536} * 16385;

  ExpectRefused(&image, KrResult::Code::InvalidInput);
}

TEST(KrBufferConverter, DestinationThatIsTheSource_IsInvalidInputAndUnchanged) {
  KrBuffer buffer = MakeOccupiedDestination();
  const std::uint8_t* memory = buffer.GetDataPointer();

  const KrResult result = KrBufferConverter(1).Convert(buffer.GetImage(), &buffer, true, true);

  EXPECT_EQ(result.GetCode(), KrResult::Code::InvalidInput);
  ExpectUnchanged(buffer, memory);
}

TEST(KrBufferConverter, SourceInTheDestinationsMemory_IsInvalidInputAndUnchanged) {
  KrBuffer destination = MakeOccupiedDestination();
  ForeignImage image(3, 1, KrPixel::Mono8, {});
  image.borrowed = destination.GetDataPointer() + 5;
  image.statedSize = 3;

  const KrResult result = KrBufferConverter(1).Convert(&image, &destination, true, false);

  EXPECT_EQ(result.GetCode(), KrResult::Code::InvalidInput);
  ExpectUnchanged(destination, image.borrowed - 5);
}

TEST(KrBufferConverter, SourceThatThrows_IsFailedWithTheExceptionsText) {
  const ThrowingImage throwsException(std::runtime_error("lens cap on"));
  const ThrowingImage throwsNumber(7);
  KrBuffer destination;

  const KrResult result = KrBufferConverter(1).Convert(&throwsException, &destination, true, false);

  EXPECT_EQ(result.GetCode(), KrResult::Code::Failed);
  EXPECT_NE(result.GetDescription().ToUtf8().find("lens cap on"), std::string::npos);
  ExpectRefused(&throwsNumber, KrResult::Code::Failed);
}

TEST(KrBufferConverter, TooLittleMemoryForTheDestination_IsSystemErrorAndLeavesTheDestination) {
  constexpr std::uint32_t kSide = 16384;
  KrBuffer source;
  ASSERT_TRUE(source.GetImage()->Alloc(kSide, kSide, KrPixel::Mono8).IsOK());
  const MemoryLimit limit(std::size_t{256} << 20);

  ExpectRefused(source.GetImage(), KrResult::Code::SystemError);
}

TEST(KrBufferConverter, RefusedThreads_AreSystemErrorAndLeaveTheDestination) {
  const ForeignImage image(1024, 1024, KrPixel::Mono8, Bytes(1024 * 1024));
  const KrBufferConverter converter(3);
  KrBuffer destination = MakeOccupiedDestination();
  const std::uint8_t* memory = destination.GetDataPointer();
  KrResult result;

  {
    const ThreadRefusal refusal;
    result = converter.Convert(&image, &destination, true, false);
  }

  EXPECT_EQ(result.GetCode(), KrResult::Code::SystemError);
  ExpectUnchanged(destination, memory);
  EXPECT_TRUE(converter.Convert(&image, &destination, true, false).IsOK());
}

TEST_P(EveryThreadCount, LargeImage_EqualsThatOfOneThread) {
  constexpr std::uint32_t kWidth = 1031;
  constexpr std::uint32_t kHeight = 517;
  const KrBufferConverter oneThread(1);
  const KrBufferConverter converter(GetParam());
  for (const KrPixelType type : {KrPixel::Mono8, KrPixel::Mono12p, KrPixel::BayerGB8, KrPixel::RGB8})
    for (const bool bottomUp : {false, true}) {
      ForeignImage image(kWidth, kHeight, type, MakeNoise((kWidth * 3 + 5) * kHeight));
      image.paddingX = 5;
      KrBuffer expected;
      KrBuffer destination;
      ASSERT_TRUE(oneThread.Convert(&image, &expected, true, bottomUp).IsOK());

      ASSERT_TRUE(converter.Convert(&image, &destination, true, bottomUp).IsOK());

      ASSERT_TRUE(GetBytes(destination) == GetBytes(expected)) << "format " << type << ", bottom up " << bottomUp;
    }
}

TEST_P(EveryThreadCount, SingleLineOrColumn_EqualsTheSource) {
  constexpr std::uint32_t kLength = 300'000;
  const Bytes noise = MakeNoise(kLength);
  const KrBufferConverter converter(GetParam());
  for (const ForeignImage& image :
       {ForeignImage(kLength, 1, KrPixel::Mono8, noise), ForeignImage(1, kLength, KrPixel::Mono8, noise)}) {
    KrBuffer destination;

    ASSERT_TRUE(converter.Convert(&image, &destination, true, false).IsOK());

    for (std::size_t pixel = 0; pixel < kLength; ++pixel)
      ASSERT_EQ(destination.GetDataPointer()[4 * pixel], noise[pixel]) << "pixel " << pixel;
  }
}

INSTANTIATE_TEST_SUITE_P(KrBufferConverter, EveryThreadCount, testing::Values(-1, 1, 2, 3, 4, 5, 8, 64),
                         [](const testing::TestParamInfo<int>& aInfo) {
                           return aInfo.param < 0 ? std::string("OneForEachCore") : std::to_string(aInfo.param);
                         });

TEST(KrBufferConverter, SeveralCallersOfOneConverter_GetTheirOwnImages) {
  constexpr std::uint32_t kSide = 600;
  const KrBufferConverter converter(3);
  std::atomic<int> wrong = 0;

  {
    std::vector<std::jthread> callers;
    for (std::uint8_t caller = 0; caller < 4; ++caller)
      callers.emplace_back([&converter, &wrong, caller] {
        const ForeignImage image(kSide, kSide, KrPixel::Mono8, Bytes(kSide * kSide, caller));
        KrBuffer destination;
        for (int round = 0; round < 5; ++round) {
          const KrResult result = converter.Convert(&image, &destination, true, false);
          const std::uint8_t* bgra = destination.GetDataPointer();
          for (std::size_t pixel = 0; result.IsOK() && pixel < kSide * kSide; ++pixel)
            wrong += bgra[4 * pixel] != caller || bgra[4 * pixel + 3] != 255;
          wrong += !result.IsOK();
        }
      });
  }

  EXPECT_EQ(wrong, 0);
}
