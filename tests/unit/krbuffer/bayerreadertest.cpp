#include "krbuffer/krbufferconverter.h"

#include "foreignimage.h"

#include <gtest/gtest.h>

#include <array>
#include <ostream>
#include <string>
#include <vector>

namespace {

struct OrderRow {
  std::string name;
  KrPixelType type;
  std::array<std::string, 2> filter; ///< Its first two lines, in letters.
};

void PrintTo(const OrderRow& aRow, std::ostream* aStream) {
  *aStream << aRow.name;
}

const std::vector<OrderRow> kOrders = {
    {"BayerGR8", KrPixel::BayerGR8, {"GR", "BG"}},
    {"BayerRG8", KrPixel::BayerRG8, {"RG", "GB"}},
    {"BayerGB8", KrPixel::BayerGB8, {"GB", "RG"}},
    {"BayerBG8", KrPixel::BayerBG8, {"BG", "GR"}},
};

class EveryOrder : public testing::TestWithParam<OrderRow> {};

/// The converted pixels, without padding.
std::vector<std::uint8_t> Convert(const ForeignImage& aImage) {
  KrBuffer destination;
  const KrResult result = KrBufferConverter(1).Convert(&aImage, &destination, true, false);
  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  return {destination.GetDataPointer(), destination.GetDataPointer() + destination.GetSize()};
}

} // namespace

TEST(BayerReader, TwoByTwoImage_MirrorsTheOnlySampleOfEachColour) {
  const ForeignImage image(2, 2, KrPixel::BayerRG8,
                           {10, 20, //
                            30, 40});

  EXPECT_EQ(Convert(image), (std::vector<std::uint8_t>{40, 25, 10, 255, 40, 20, 10, 255, //
                                                       40, 30, 10, 255, 40, 25, 10, 255}));
}

TEST(BayerReader, ThreeByThreeImage_IsInterpolatedInTheMiddleAndMirroredAtTheEdges) {
  const ForeignImage image(3, 3, KrPixel::BayerRG8,
                           {10, 20, 50, //
                            30, 40, 70, //
                            90, 60, 130});

  EXPECT_EQ(Convert(image), (std::vector<std::uint8_t>{40, 25, 10, 255, 40, 20, 30,  255, 40, 45, 50,  255, //
                                                       40, 30, 50, 255, 40, 45, 70,  255, 40, 70, 90,  255, //
                                                       40, 45, 90, 255, 40, 60, 110, 255, 40, 65, 130, 255}));
}

TEST(BayerReader, OrderGB_HasBlueInTheFirstLineAndRedInTheSecond) {
  const ForeignImage image(2, 2, KrPixel::BayerGB8,
                           {10, 20, //
                            30, 40});

  EXPECT_EQ(Convert(image), (std::vector<std::uint8_t>{20, 10, 30, 255, 20, 25, 30, 255, //
                                                       20, 25, 30, 255, 20, 40, 30, 255}));
}

TEST(BayerReader, SingleLine_LeavesTheColourThatItLacksAt0) {
  const ForeignImage image(4, 1, KrPixel::BayerRG8, {10, 20, 50, 80});

  EXPECT_EQ(Convert(image),
            (std::vector<std::uint8_t>{0, 20, 10, 255, 0, 20, 30, 255, 0, 50, 50, 255, 0, 80, 50, 255}));
}

TEST(BayerReader, SingleColumn_LeavesTheColourThatItLacksAt0) {
  const ForeignImage image(1, 3, KrPixel::BayerGB8, {10, 20, 31});

  EXPECT_EQ(Convert(image), (std::vector<std::uint8_t>{0, 10, 20, 255, 0, 21, 20, 255, 0, 31, 20, 255}));
}

TEST(BayerReader, SinglePixel_HasItsOwnColourAlone) {
  const ForeignImage image(1, 1, KrPixel::BayerBG8, {77});

  EXPECT_EQ(Convert(image), (std::vector<std::uint8_t>{77, 0, 0, 255}));
}

TEST_P(EveryOrder, EveryColourOfAFlatColouredScene_IsFlat) {
  constexpr std::uint32_t kSide = 9;
  ForeignImage image(kSide, kSide, GetParam().type, std::vector<std::uint8_t>(kSide * kSide));
  for (std::uint32_t y = 0; y < kSide; ++y)
    for (std::uint32_t x = 0; x < kSide; ++x) {
      const char colour = GetParam().filter[y % 2][x % 2];
      image.bytes[y * kSide + x] = colour == 'R' ? 200 : colour == 'G' ? 100 : 50;
    }

  const std::vector<std::uint8_t> converted = Convert(image);

  for (std::size_t pixel = 0; pixel < kSide * kSide; ++pixel)
    ASSERT_EQ(std::vector<std::uint8_t>(&converted[4 * pixel], &converted[4 * pixel] + 4),
              (std::vector<std::uint8_t>{50, 100, 200, 255}))
        << "pixel " << pixel;
}

INSTANTIATE_TEST_SUITE_P(BayerReader, EveryOrder, testing::ValuesIn(kOrders),
                         [](const testing::TestParamInfo<OrderRow>& aInfo) { return aInfo.param.name; });
