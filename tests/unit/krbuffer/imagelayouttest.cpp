#include "imagelayout.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

using krbuffer::ImageShape;

namespace {

constexpr std::uint32_t kMost = std::numeric_limits<std::uint32_t>::max();

struct ShapeRow {
  std::string name;
  ImageShape shape;
  std::uint64_t lineBytes;
  std::uint64_t strideBytes;
  std::optional<std::uint64_t> imageBytes;
};

void PrintTo(const ShapeRow& aRow, std::ostream* aStream) {
  *aStream << aRow.name;
}

const std::vector<ShapeRow> kRows = {
    {"BytePixels", {640, 480, KrPixel::Mono8}, 640, 640, 307200},
    {"FourBytePixels", {3, 2, KrPixel::BGRa8}, 12, 12, 24},
    {"LinePaddingAfterEveryLine", {3, 2, KrPixel::Mono8, 5}, 3, 8, 16},
    {"PaddingAfterTheLastLine", {3, 2, KrPixel::Mono8, 5, 7}, 3, 8, 23},
    {"PackedPairs", {4, 3, KrPixel::Mono12p}, 6, 6, 18},
    {"PackedOddWidthRoundsUpToAByte", {5, 3, KrPixel::Mono12p}, 8, 8, 24},
    {"PackedSinglePixel", {1, 1, KrPixel::Mono12p}, 2, 2, 2},
    {"OneBitPixelsRoundUpToAByte", {9, 3, KrPixel::Mono1p}, 2, 2, 6},
    {"TwelveBitsOnTheAverageRoundUpToAByte", {5, 3, KrPixel::YUV411_8_UYYVYY}, 8, 8, 24},
    {"ThreePlanesOfBytesEachLinePadded", {5, 2, KrPixel::RGB8_Planar, 3, 4}, 5, 8, 52},
    {"ThreePlanesOfWords", {5, 2, KrPixel::RGB10_Planar}, 10, 10, 60},
    {"TwoPlanesOfPackedSamples", {5, 2, KrPixel::Coord3D_AC10p_Planar}, 7, 7, 28},
    {"Empty", {}, 0, 0, 0},
    {"BeyondFourGiB", {65536, 65536, KrPixel::RGB8}, 196608, 196608, 12884901888},
    {"WidestLine", {kMost, 1, 0x02FF0000}, 136902082529, 136902082529, 136902082529},
    {"BeyondSixtyFourBits", {kMost, kMost, 0x02FF0000}, 136902082529, 136902082529, std::nullopt},
};

class EveryShape : public testing::TestWithParam<ShapeRow> {};

} // namespace

TEST_P(EveryShape, HasItsSizesInBytes) {
  EXPECT_EQ(krbuffer::GetLineBytes(GetParam().shape), GetParam().lineBytes);
  EXPECT_EQ(krbuffer::GetStrideBytes(GetParam().shape), GetParam().strideBytes);
  EXPECT_EQ(krbuffer::GetImageBytes(GetParam().shape), GetParam().imageBytes);
}

INSTANTIATE_TEST_SUITE_P(ImageLayout, EveryShape, testing::ValuesIn(kRows),
                         [](const testing::TestParamInfo<ShapeRow>& aInfo) { return aInfo.param.name; });

TEST(ImageLayout, SizeJustWithin64Bits_IsFoundAndOneByteMoreALineIsNot) {
  // 2^32 - 1 lines of 2^32 bytes leave 2^32 bytes up to 2^64.
  const ImageShape withinLimit{kMost, kMost, KrPixel::Mono8, 1, kMost};
  const ImageShape beyondLimit{kMost, kMost, KrPixel::Mono8, 2, kMost};

  EXPECT_EQ(krbuffer::GetImageBytes(withinLimit), 0xFFFFFFFFFFFFFFFFull);
  EXPECT_EQ(krbuffer::GetImageBytes(beyondLimit), std::nullopt);
}

TEST(ImageLayout, HasPixels_WantsWidthHeightAndPixelSize) {
  EXPECT_TRUE(krbuffer::HasPixels({1, 1, KrPixel::Mono8}));
  EXPECT_FALSE(krbuffer::HasPixels({0, 1, KrPixel::Mono8}));
  EXPECT_FALSE(krbuffer::HasPixels({1, 0, KrPixel::Mono8}));
  EXPECT_FALSE(krbuffer::HasPixels({1, 1, 0x01000001}));
}
