#include "simulation/testpattern.h"

#include <gmock/gmock.h>

#include <vector>

using krtransport::FillPattern;
using krtransport::PatternPainter;
using krtransport::TestPattern;
using testing::Each;

namespace {

std::vector<std::uint8_t> Paint(KrPixelType aType, std::uint32_t aWidth, std::uint32_t aHeight, std::uint64_t aFrameID,
                                TestPattern aPattern = TestPattern::MovingRamp) {
  std::vector<std::uint8_t> image(std::size_t{aWidth} * aHeight * KrGetBitsPerPixel(aType) / 8);
  EXPECT_TRUE(FillPattern(aType, aWidth, aHeight, aFrameID, image.data(), aPattern));
  return image;
}

constexpr std::uint32_t kWidth = 320;
constexpr std::uint32_t kHeight = 270;

} // namespace

TEST(TestPattern, MovingRamp_Mono8_StepsByPixelLineAndFrame) {
  for (const std::uint64_t frameID : {0, 1, 255, 256, 1000}) {
    const std::vector<std::uint8_t> image = Paint(KrPixel::Mono8, kWidth, kHeight, frameID);

    for (std::uint32_t y = 0; y < kHeight; ++y) {
      for (std::uint32_t x = 0; x < kWidth; ++x)
        ASSERT_EQ(image[y * kWidth + x], (x + y + frameID) % 256) << x << ", " << y << " of frame " << frameID;
    }
  }
}

TEST(TestPattern, MovingRamp_UnpackedDeepFormats_CoverTheSamplesRange) {
  const std::pair<KrPixelType, std::uint32_t> rows[] = {
      {KrPixel::Mono10, 1023}, {KrPixel::Mono12, 4095}, {KrPixel::Mono14, 16383}, {KrPixel::Mono16, 65535}};
  for (const auto& [type, largest] : rows) {
    const std::vector<std::uint8_t> image = Paint(type, kWidth, 4, 3);

    for (std::uint32_t x = 0; x < kWidth; ++x) {
      const std::uint32_t sample = image[2 * x] + 256u * image[2 * x + 1];
      ASSERT_EQ(sample, (x + 3) % 256 * largest / 255) << largest << " at " << x;
    }
  }
}

TEST(TestPattern, MovingRamp_Mono12p_PacksTwoPixelsIntoThreeBytes) {
  for (const std::uint64_t frameID : {0, 1, 255}) {
    const std::vector<std::uint8_t> image = Paint(KrPixel::Mono12p, kWidth, kHeight, frameID);

    for (std::uint32_t y = 0; y < kHeight; ++y) {
      const std::uint8_t* const line = image.data() + y * kWidth * 3 / 2;
      for (std::uint32_t x = 0; x < kWidth; x += 2) {
        const std::uint8_t* const pair = line + x / 2 * 3;
        ASSERT_EQ(pair[0] + 256 * (pair[1] & 0xF), (x + y + frameID) % 256 * 4095 / 255);
        ASSERT_EQ((pair[1] >> 4) + 16 * pair[2], (x + 1 + y + frameID) % 256 * 4095 / 255);
      }
    }
  }
}

TEST(TestPattern, MovingRamp_ColourFormats_PutEachComponentInItsPlace) {
  const std::vector<std::uint8_t> rgb = Paint(KrPixel::RGB8, kWidth, 4, 9);
  const std::vector<std::uint8_t> bgra = Paint(KrPixel::BGRa8, kWidth, 4, 9);

  for (std::uint32_t x = 0; x < kWidth; ++x) {
    ASSERT_EQ(rgb[3 * x], (x + 9) % 256);
    ASSERT_EQ(rgb[3 * x + 1], (x + 9 + 85) % 256);
    ASSERT_EQ(rgb[3 * x + 2], (x + 9 + 170) % 256);
    ASSERT_EQ(bgra[4 * x], rgb[3 * x + 2]);
    ASSERT_EQ(bgra[4 * x + 1], rgb[3 * x + 1]);
    ASSERT_EQ(bgra[4 * x + 2], rgb[3 * x]);
    ASSERT_EQ(bgra[4 * x + 3], 255);
  }
}

TEST(TestPattern, MovingRamp_BayerFormats_GiveEachSiteItsColoursRamp) {
  struct Row {
    KrPixelType type;
    std::uint32_t leads[2][2]; // By line and column, even and odd: red 0, green 85, blue 170.
  };
  const Row rows[] = {{KrPixel::BayerGR8, {{85, 0}, {170, 85}}},
                      {KrPixel::BayerRG8, {{0, 85}, {85, 170}}},
                      {KrPixel::BayerGB8, {{85, 170}, {0, 85}}},
                      {KrPixel::BayerBG8, {{170, 85}, {85, 0}}}};
  for (const Row& row : rows) {
    for (const std::uint64_t frameID : {0, 1, 6}) {
      const std::vector<std::uint8_t> image = Paint(row.type, kWidth, kHeight, frameID);

      for (std::uint32_t y = 0; y < kHeight; ++y) {
        for (std::uint32_t x = 0; x < kWidth; ++x)
          ASSERT_EQ(image[y * kWidth + x], (x + y + frameID + row.leads[y % 2][x % 2]) % 256) << x << ", " << y;
      }
    }
  }
}

TEST(TestPattern, StaticRamp_AnyFrame_IsTheMovingRampsFirst) {
  const std::vector<std::uint8_t> first = Paint(KrPixel::BayerRG8, kWidth, kHeight, 0);

  EXPECT_EQ(Paint(KrPixel::BayerRG8, kWidth, kHeight, 77, TestPattern::StaticRamp), first);
  EXPECT_NE(Paint(KrPixel::BayerRG8, kWidth, kHeight, 77), first);
}

TEST(TestPattern, FrameCounter_FrameNumber_IsReadableInTheFirstLines) {
  const std::uint64_t frameID = 0x80C0FFEE;

  const std::vector<std::uint8_t> image = Paint(KrPixel::Mono8, kWidth, 16, frameID, TestPattern::FrameCounter);

  for (std::uint32_t line = 0; line < 8; ++line) {
    std::uint64_t number = 0;
    for (std::uint32_t block = 0; block < 32; ++block)
      number = number << 1 | (image[line * kWidth + block * (kWidth / 32) + 5] == 255 ? 1 : 0);
    EXPECT_EQ(number, frameID);
  }
  EXPECT_EQ(image[8 * kWidth], 8) << "the ramp goes on below";
}

TEST(TestPattern, Paint_ChangedFormatAndSize_ForgetsTheFormerRamp) {
  PatternPainter painter;
  std::vector<std::uint8_t> image(64 * 16 * 2);
  ASSERT_TRUE(painter.Paint(TestPattern::MovingRamp, KrPixel::Mono8, 128, 16, 1, image.data()));

  ASSERT_TRUE(painter.Paint(TestPattern::MovingRamp, KrPixel::Mono16, 64, 16, 2, image.data()));

  EXPECT_EQ(image, Paint(KrPixel::Mono16, 64, 16, 2));
}

TEST(TestPattern, Paint_FormatThatIsUnknownOrLinesWithoutByteEnd_WritesNothing) {
  std::vector<std::uint8_t> image(1024, 0xA5);

  EXPECT_FALSE(FillPattern(0x01050001, 16, 16, 0, image.data()));
  EXPECT_FALSE(FillPattern(KrPixel::Mono12p, 15, 16, 0, image.data()));
  EXPECT_FALSE(FillPattern(KrPixel::Mono8, 0, 16, 0, image.data()));

  EXPECT_THAT(image, Each(0xA5));
}
