#include "simulation/testpattern.h"

#include "labcameras.h"

#include <gmock/gmock.h>

#include <bit>
#include <string_view>
#include <vector>

using krtransport::FillPattern;
using krtransport::GetFrameBytes;
using krtransport::PatternPainter;
using krtransport::Picture;
using krtransport::TestPattern;
using testing::Each;

namespace {

std::vector<std::uint8_t> Paint(KrPixelType aType, std::uint32_t aWidth, std::uint32_t aHeight, std::uint64_t aFrameID,
                                TestPattern aPattern = TestPattern::MovingRamp) {
  std::vector<std::uint8_t> image(GetFrameBytes({.type = aType, .width = aWidth, .height = aHeight}));
  EXPECT_TRUE(FillPattern(aType, aWidth, aHeight, aFrameID, image.data(), aPattern));
  return image;
}

constexpr std::uint32_t kWidth = 320;
constexpr std::uint32_t kHeight = 270;

// One line of a frame, worked out by hand from the format's definition.
struct KnownLine {
  KrPixelType type;
  std::uint64_t frameID; // The first pixel's step of the ramp.
  std::uint32_t width;
  std::vector<std::uint8_t> bytes;
};

const KnownLine kKnownLines[] = {
    {KrPixel::Mono1p, 124, 10, {0xF0, 0x03}},
    {KrPixel::Mono2p, 62, 5, {0x50, 0x01}},
    {KrPixel::Mono4p, 14, 3, {0x00, 0x01}},
    {KrPixel::Mono8s, 127, 2, {0xFF, 0x00}},
    {KrPixel::Mono10, 255, 2, {0xFF, 0x03, 0x00, 0x00}},
    {KrPixel::Mono16, 1, 1, {0x01, 0x01}},
    {KrPixel::Mono10p, 254, 4, {0xFA, 0xFF, 0x0F, 0x00, 0x01}},
    {KrPixel::Mono14p, 255, 4, {0xFF, 0x3F, 0x00, 0x00, 0x04, 0x00, 0x02}},
    {KrPixel::Mono10Packed, 254, 2, {0xFE, 0x32, 0xFF}},
    {KrPixel::Mono10Packed, 254, 1, {0xFE, 0x02}},
    {KrPixel::Mono12Packed, 254, 2, {0xFE, 0xFE, 0xFF}},
    {KrPixel::Mono12Packed, 1, 2, {0x01, 0x00, 0x02}},
    {KrPixel::BayerRG12Packed, 0, 2, {0x00, 0x50, 0x56}},
    {KrPixel::BayerGB10p, 0, 2, {0x55, 0xB9, 0x0A}},
    {KrPixel::RGB565p, 8, 1, {0xE1, 0xB2}},
    {KrPixel::BGR565p, 8, 1, {0xF6, 0x0A}},
    {KrPixel::RGB10p, 0, 1, {0x00, 0x54, 0xA5, 0x2A}},
    {KrPixel::BGR12p, 0, 1, {0xAA, 0x5A, 0x55, 0x00, 0x00}},
    {KrPixel::RGB8_Planar, 0, 2, {0, 1, 85, 86, 170, 171}},
    {KrPixel::YUV422_8, 0, 2, {69, 185, 70, 79}},
    {KrPixel::YUV422_8_UYVY, 0, 2, {185, 69, 79, 70}},
    {KrPixel::YUV8_UYV, 0, 1, {185, 69, 79}},
    {KrPixel::YCbCr8, 0, 1, {69, 185, 79}},
    {KrPixel::YUV411_8_UYYVYY, 0, 4, {185, 69, 70, 79, 71, 72}},
    {KrPixel::YCbCr411_8, 0, 4, {69, 70, 185, 71, 72, 79}},
    {KrPixel::YCbCr601_422_8, 0, 2, {75, 178, 76, 85}},
    {KrPixel::YCbCr709_422_8_CbYCrY, 0, 2, {174, 79, 87, 80}},
    {KrPixel::Coord3D_C16, 1, 1, {0x01, 0x01}},
    {KrPixel::Coord3D_C32f, 1, 1, {0x00, 0x00, 0x80, 0x3F}},
    {KrPixel::Confidence8, 7, 1, {0x07}},
    {KrPixel::BayerRG4p, 0, 3, {0x50, 0x00}},
    {KrPixel::BayerGB14p, 0, 2, {0x55, 0x95, 0xBA, 0x0A}},
    {KrPixel::RGB14, 0, 1, {0x00, 0x00, 0x55, 0x15, 0xAA, 0x2A}},
    {KrPixel::BGR14, 0, 1, {0xAA, 0x2A, 0x55, 0x15, 0x00, 0x00}},
    {KrPixel::RGB10_Planar, 0, 1, {0x00, 0x00, 0x55, 0x01, 0xAA, 0x02}},
    {KrPixel::RGB12_Planar, 0, 1, {0x00, 0x00, 0x55, 0x05, 0xAA, 0x0A}},
    {KrPixel::R8, 7, 2, {0x07, 0x08}},
    {KrPixel::G10, 254, 4, {0xFA, 0xFF, 0x0F, 0x00, 0x01}},
    {KrPixel::B12, 254, 2, {0xEE, 0xFF, 0xFF}},
    {KrPixel::R16, 1, 1, {0x01, 0x01}},
    {KrPixel::Coord3D_A10p, 254, 4, {0xFA, 0xFF, 0x0F, 0x00, 0x01}},
    {KrPixel::Coord3D_B12p, 254, 2, {0xEE, 0xFF, 0xFF}},
    {KrPixel::Coord3D_A32f, 255, 2, {0x00, 0x00, 0x7F, 0x43, 0x00, 0x00, 0x00, 0x00}},
    {KrPixel::Confidence32f, 2, 1, {0x00, 0x00, 0x00, 0x40}},
    {KrPixel::Confidence1p, 124, 10, {0xF0, 0x03}},
    {KrPixel::Confidence1, 127, 2, {0x00, 0x01}},
    {KrPixel::Data8s, 127, 2, {0xFF, 0x00}},
    {KrPixel::Data16s, 127, 2, {0x7F, 0xFF, 0x80, 0x00}},
    {KrPixel::Data32f, 3, 1, {0x00, 0x00, 0x40, 0x40}},
};

std::vector<KrPixelTypeInfo> ListLabFormats() {
  std::vector<KrPixelTypeInfo> formats;
  for (const krtransport::LabGEVCamera& camera : ListLabCameras()) {
    for (const KrPixelType type : camera.pixelFormats)
      formats.push_back(*KrFindPixelType(type));
  }
  return formats;
}

bool IsBayer(KrPixelLayout aLayout) {
  return aLayout >= KrPixelLayout::BayerGR && aLayout <= KrPixelLayout::BayerBG;
}

// What a component of the ramp is stored as.
std::uint32_t GetExpectedSample(const KrPixelTypeInfo& aInfo, std::uint64_t aComponent) {
  if (aInfo.sampleKind == KrSampleKind::Float)
    return std::bit_cast<std::uint32_t>(static_cast<float>(aComponent));
  const std::uint64_t largest = (std::uint64_t{1} << aInfo.bitsPerSample) - 1;
  const std::uint64_t sample =
      aInfo.bitsPerSample < 8 ? aComponent >> (8 - aInfo.bitsPerSample) : aComponent * largest / 255;
  const std::uint64_t half = aInfo.sampleKind == KrSampleKind::Signed ? largest / 2 + 1 : 0;
  return static_cast<std::uint32_t>((sample - half) & largest);
}

// How far a site of a filter array, or a grey pixel, is ahead of red.
std::uint64_t GetLead(KrPixelLayout aLayout, std::uint32_t aX, std::uint32_t aY) {
  if (!IsBayer(aLayout))
    return 0;
  const bool redColumnIsOdd = aLayout == KrPixelLayout::BayerGR || aLayout == KrPixelLayout::BayerBG;
  const bool redLineIsOdd = aLayout == KrPixelLayout::BayerGB || aLayout == KrPixelLayout::BayerBG;
  const bool isOfRedColumn = (aX % 2 == 1) == redColumnIsOdd;
  const bool isOfRedLine = (aY % 2 == 1) == redLineIsOdd;
  return isOfRedColumn != isOfRedLine ? 85 : isOfRedLine ? 0 : 170;
}

// A sample of a format that has one for each pixel, read bit by bit.
std::uint32_t ReadSample(const std::uint8_t* aLine, const KrPixelTypeInfo& aInfo, std::uint32_t aColumn) {
  std::uint32_t sample = 0;
  for (std::uint32_t bit = 0; bit < aInfo.bitsPerSample; ++bit) {
    const std::uint32_t position = aColumn * aInfo.bitsPerPixel + bit;
    sample |= (aLine[position / 8] >> position % 8 & 1u) << bit;
  }
  return sample;
}

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

TEST(TestPattern, Off_Scene_IsTheStandingRampAsBrightAsTheSensorMakesIt) {
  struct Row {
    const char* name;
    double brightness;
  };
  PatternPainter painter; // One for all, which must not keep the brightness of the picture before.
  for (const Row& row : {Row{"plain", 1}, Row{"darker", 0.3}, Row{"brighter and clipped", 2.5}, Row{"black", 0}}) {
    SCOPED_TRACE(row.name);
    std::vector<std::uint8_t> image(kWidth * 2 * 3);

    ASSERT_TRUE(painter.Paint({.pattern = TestPattern::Off,
                               .type = KrPixel::RGB8,
                               .width = kWidth,
                               .height = 2,
                               .brightness = row.brightness},
                              77, image.data()));

    for (std::size_t i = 0; i < image.size(); ++i) {
      const std::size_t plain = (i / 3 % kWidth + i / 3 / kWidth + i % 3 * 85) % 256;
      ASSERT_EQ(image[i], std::min<std::size_t>(255, static_cast<std::size_t>(plain * row.brightness))) << i;
    }
  }
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
  ASSERT_TRUE(painter.Paint({.type = KrPixel::Mono8, .width = 128, .height = 16}, 1, image.data()));

  ASSERT_TRUE(painter.Paint({.type = KrPixel::Mono16, .width = 64, .height = 16}, 2, image.data()));

  EXPECT_EQ(image, Paint(KrPixel::Mono16, 64, 16, 2));
}

TEST(TestPattern, MovingRamp_KnownLines_AreStoredAsTheFormatSays) {
  for (const KnownLine& row : kKnownLines) {
    SCOPED_TRACE(KrFindPixelType(row.type)->name);

    EXPECT_EQ(Paint(row.type, row.width, 1, row.frameID), row.bytes);
  }
}

TEST(TestPattern, MovingRamp_FormatsOfOneSampleForEachPixel_AreRampsAtAnyWidthAndPhase) {
  int formats = 0;
  for (const KrPixelTypeInfo& info : ListLabFormats()) {
    const bool hasOneSample = info.layout == KrPixelLayout::Mono || IsBayer(info.layout);
    if (!hasOneSample || info.packing == KrPixelPacking::GigE)
      continue;
    SCOPED_TRACE(info.name);
    ++formats;
    for (const std::uint32_t width : {1u, 7u, 37u, 301u}) {
      for (std::uint64_t frameID = 250; frameID < 260; ++frameID) {
        const std::vector<std::uint8_t> image = Paint(info.type, width, 3, frameID);

        const std::size_t lineBytes = image.size() / 3;
        for (std::uint32_t y = 0; y < 3; ++y) {
          for (std::uint32_t x = 0; x < width; ++x) {
            const std::uint64_t component = (x + y + frameID + GetLead(info.layout, x, y)) % 256;
            ASSERT_EQ(ReadSample(image.data() + y * lineBytes, info, x), GetExpectedSample(info, component))
                << x << ", " << y;
          }
        }
      }
    }
  }
  EXPECT_GT(formats, 70);
}

TEST(TestPattern, MovingRamp_EveryFormatOfTheLab_MovesByOneLineWithEachFrame) {
  for (const KrPixelTypeInfo& info : ListLabFormats()) {
    SCOPED_TRACE(info.name);
    // The lines of a filter array differ by turns, so that it is two lines and two frames there.
    const std::uint32_t step = IsBayer(info.layout) ? 2 : 1;
    const std::uint32_t planes = info.layout == KrPixelLayout::RGBPlanar ? 3 : 1;
    for (std::uint64_t frameID = 0; frameID < 10; ++frameID) {
      const std::vector<std::uint8_t> image = Paint(info.type, 44, 12, frameID);
      const std::vector<std::uint8_t> later = Paint(info.type, 44, 12, frameID + step);

      const std::size_t planeBytes = image.size() / planes;
      for (std::uint32_t plane = 0; plane < planes; ++plane) {
        const auto begin = image.begin() + static_cast<std::ptrdiff_t>(plane * planeBytes);
        const auto skipped = static_cast<std::ptrdiff_t>(planeBytes / 12 * step);
        const auto end = begin + static_cast<std::ptrdiff_t>(planeBytes);
        ASSERT_TRUE(std::equal(begin + skipped, end, later.begin() + (begin - image.begin()))) << frameID;
      }
    }
  }
}

TEST(TestPattern, Offsets_OfThePicture_ShowThatPartOfTheRamp) {
  Picture whole = {.type = KrPixel::BayerRG8, .width = 64, .height = 32};
  Picture part = {.type = KrPixel::BayerRG8, .width = 16, .height = 8, .offsetX = 8, .offsetY = 6};
  std::vector<std::uint8_t> wholeImage(GetFrameBytes(whole));
  std::vector<std::uint8_t> partImage(GetFrameBytes(part));

  ASSERT_TRUE(FillPattern(whole, 41, wholeImage.data()));
  ASSERT_TRUE(FillPattern(part, 41, partImage.data()));

  for (std::size_t y = 0; y < 8; ++y) {
    for (std::size_t x = 0; x < 16; ++x)
      ASSERT_EQ(partImage[y * 16 + x], wholeImage[(y + 6) * 64 + x + 8]) << x << ", " << y;
  }
}

TEST(TestPattern, ReverseX_EveryPhase_MirrorsTheRamp) {
  for (const KrPixelType type : {KrPixel::Mono8, KrPixel::RGB8, KrPixel::Mono12p}) {
    for (std::uint64_t frameID = 0; frameID < 300; frameID += 7) {
      const std::uint32_t bits = KrGetBitsPerPixel(type);
      std::vector<std::uint8_t> mirrored(60 * 4 * bits / 8);

      ASSERT_TRUE(FillPattern({.type = type, .width = 60, .height = 4, .reverseX = true}, frameID, mirrored.data()));

      const std::vector<std::uint8_t> plain = Paint(type, 60, 4, frameID);
      for (std::uint32_t pixel = 0; pixel < 60 * bits; pixel += bits) {
        for (std::uint32_t bit = 0; bit < bits; ++bit) {
          const std::uint32_t from = pixel + bit;
          const std::uint32_t to = (59 * bits - pixel) + bit;
          ASSERT_EQ(plain[from / 8] >> from % 8 & 1, mirrored[to / 8] >> to % 8 & 1) << frameID;
        }
      }
    }
  }
}

TEST(TestPattern, FrameCounter_FormatsOfTheLab_HaveBlackAndWhiteOfTheirOwn) {
  struct Row {
    KrPixelType type;
    std::vector<std::uint8_t> black; // The first bytes.
    std::vector<std::uint8_t> white;
  };
  const Row rows[] = {{KrPixel::Mono1p, {0x00}, {0xFF}},
                      {KrPixel::Mono8s, {0x80}, {0x7F}},
                      {KrPixel::Mono10, {0x00, 0x00}, {0xFF, 0x03}},
                      {KrPixel::BayerGB12Packed, {0, 0, 0}, {0xFF, 0xFF, 0xFF}},
                      {KrPixel::RGBa8, {0, 0, 0, 255}, {255, 255, 255, 255}},
                      {KrPixel::YUV422_8, {0, 128, 0, 128}, {255, 128, 255, 128}},
                      {KrPixel::YCbCr709_8_CbYCr, {128, 16, 128}, {128, 235, 128}},
                      {KrPixel::Coord3D_C32f, {0, 0, 0, 0}, {0x00, 0x00, 0x7F, 0x43}}};
  for (const Row& row : rows) {
    SCOPED_TRACE(KrFindPixelType(row.type)->name);

    std::vector<std::uint8_t> black = Paint(row.type, 256, 8, 0, TestPattern::FrameCounter);
    std::vector<std::uint8_t> white = Paint(row.type, 256, 8, 0xFFFFFFFF, TestPattern::FrameCounter);

    black.resize(row.black.size());
    white.resize(row.white.size());
    EXPECT_EQ(black, row.black);
    EXPECT_EQ(white, row.white);
  }
}

TEST(TestPattern, Paint_FormatThatCannotBeStoredOrNoWidth_WritesNothing) {
  std::vector<std::uint8_t> image(1024, 0xA5);

  EXPECT_FALSE(FillPattern(0x01050001, 16, 16, 0, image.data()));
  EXPECT_FALSE(FillPattern(KrPixel::YCbCr420_8_YY_CbCr_Semiplanar, 16, 16, 0, image.data()));
  EXPECT_FALSE(FillPattern(KrPixel::Mono8, 0, 16, 0, image.data()));

  EXPECT_THAT(image, Each(0xA5));
}
