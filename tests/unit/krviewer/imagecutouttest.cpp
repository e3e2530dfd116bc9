#include "panels/imagecutout.h"

#include "graphframes.h"
#include "krbuffer/krpixelvalue.h"

#include <gmock/gmock.h>

using krviewer::CopyCutout;
using krviewer::Cutout;
using krviewer::CutoutRequest;
using krviewer::kSamplePixels;
using krviewer::PlanCutout;

namespace {

using Kind = CutoutRequest::Kind;

std::uint32_t GetStep(std::uint32_t aSample, std::uint32_t aLine) {
  return (aSample * 7 + aLine * 13) % 251;
}

/// Compares each pixel of a cutout with the image's own.
void ExpectSamePixels(const IKrImage& aImage, const IKrImage& aCopy, const Cutout& aCutout) {
  for (std::uint32_t y = 0; y < aCutout.lines; ++y)
    for (std::uint32_t x = 0; x < aCutout.columns; ++x) {
      KrPixelValue expected;
      KrPixelValue copied;
      ASSERT_TRUE(KrReadPixel(aImage, aCutout.firstColumn + x, aCutout.GetImageLine(y), expected).IsOK());
      ASSERT_TRUE(KrReadPixel(aCopy, x, y, copied).IsOK());
      ASSERT_EQ(copied.samples, expected.samples) << x << ", " << y;
      ASSERT_EQ(copied.components, expected.components) << x << ", " << y;
    }
}

struct FormatCase {
  const char* name;
  KrPixelType type;
  unsigned samplesOfLine; ///< Of a line of 37 pixels; of planes, of one of them.
  unsigned bits;
};

constexpr std::uint32_t kWidth = 37;
constexpr std::uint32_t kHeight = 25;
constexpr FormatCase kFormats[] = {
    {"Mono8", KrPixel::Mono8, 37, 8},
    {"Mono10p", KrPixel::Mono10p, 37, 10},
    {"Mono12Packed", KrPixel::Mono12Packed, 37, 12},
    {"Mono1p", KrPixel::Mono1p, 37, 1},
    {"BayerGB12p", KrPixel::BayerGB12p, 37, 12},
    {"BGR10p", KrPixel::BGR10p, 3 * 37, 10},
    {"RGB565p", KrPixel::RGB565p, 37, 16},
    {"YUV411_8_UYYVYY", KrPixel::YUV411_8_UYYVYY, 56, 8},
    {"YCbCr422_8", KrPixel::YCbCr422_8, 74, 8},
};

class ImageCutoutFormats : public testing::TestWithParam<FormatCase> {};

} // namespace

TEST_P(ImageCutoutFormats, EveryRequest_ReadsAsTheImageDoes) {
  const FormatCase& format = GetParam();
  const KrBuffer frame = MakeFrame(format.type, kWidth, kHeight, format.samplesOfLine, format.bits, GetStep, 5);
  KrBuffer copy;
  for (const CutoutRequest& request :
       {CutoutRequest{Kind::Sample}, CutoutRequest{Kind::Line, 24}, CutoutRequest{Kind::Line, 11},
        CutoutRequest{Kind::Column, 36}, CutoutRequest{Kind::Column, 9}, CutoutRequest{Kind::Column, 0}}) {
    const Cutout cutout = PlanCutout(request, kWidth, kHeight);

    ASSERT_TRUE(CopyCutout(*frame.GetImage(), cutout, copy).IsOK());

    ExpectSamePixels(*frame.GetImage(), *copy.GetImage(), cutout);
  }
}

INSTANTIATE_TEST_SUITE_P(Formats, ImageCutoutFormats, testing::ValuesIn(kFormats),
                         [](const auto& aInfo) { return std::string(aInfo.param.name); });

TEST(ImageCutout, Planes_AreCopiedEach) {
  KrBuffer frame;
  ASSERT_TRUE(frame.GetImage()->Alloc(20, 9, KrPixel::RGB8_Planar, 3).IsOK());
  for (std::size_t i = 0; i < frame.GetSize(); ++i)
    frame.GetDataPointer()[i] = static_cast<std::uint8_t>(i * 5);
  const Cutout cutout = PlanCutout({Kind::Column, 17}, 20, 9);
  KrBuffer copy;

  ASSERT_TRUE(CopyCutout(*frame.GetImage(), cutout, copy).IsOK());

  ExpectSamePixels(*frame.GetImage(), *copy.GetImage(), cutout);
}

TEST(ImageCutout, SmallImage_IsSampledWhole) {
  EXPECT_EQ(PlanCutout({Kind::Sample}, 640, 481), (Cutout{.columns = 640, .lines = 481, .pairStep = 2}));
}

TEST(ImageCutout, LargeImage_IsSampledEvenlyWithinTheLimit) {
  const Cutout cutout = PlanCutout({Kind::Sample}, 4096, 3001);

  EXPECT_EQ(cutout.columns, 4096u);
  EXPECT_LE(cutout.columns * cutout.lines, kSamplePixels);
  EXPECT_GT(cutout.columns * cutout.lines, kSamplePixels / 2);
  EXPECT_LT(cutout.GetImageLine(cutout.lines - 1), 3001u);
  EXPECT_GT(cutout.GetImageLine(cutout.lines - 1), 3001u - 2 * cutout.pairStep);
}

TEST(ImageCutout, EveryHeight_KeepsItsLinesInsideTheImage) {
  for (std::uint32_t height = 1; height < 300; ++height) {
    const Cutout cutout = PlanCutout({Kind::Sample}, kSamplePixels / 16, height);
    ASSERT_GE(cutout.lines, 1u) << height;
    ASSERT_LT(cutout.GetImageLine(cutout.lines - 1), height);
    ASSERT_LE(cutout.lines, 16u) << height;
  }
}

TEST(ImageCutout, GreatestSizes_AreBounded) {
  const std::uint32_t greatest = 0xFFFFFFFF;
  for (const Kind kind : {Kind::Sample, Kind::Line, Kind::Column}) {
    const Cutout cutout = PlanCutout({kind, ~std::uint64_t{0}}, greatest, greatest);
    EXPECT_LE(std::uint64_t{cutout.columns} * cutout.lines, 2 * kSamplePixels);
    EXPECT_LT(std::uint64_t{cutout.firstColumn} + cutout.columns - 1, greatest);
  }
}

TEST(ImageCutout, LineOrColumnBeyondTheImage_IsTheLastOne) {
  EXPECT_EQ(PlanCutout({Kind::Line, 1000}, 64, 10), (Cutout{.columns = 64, .firstLine = 8, .lines = 2}));
  EXPECT_EQ(PlanCutout({Kind::Column, 1000}, 64, 10), (Cutout{.firstColumn = 48, .columns = 16, .lines = 10}));
}

TEST(ImageCutout, WholeImage_HoldsEveryLineAndColumn) {
  const Cutout whole = PlanCutout({Kind::Whole}, 640, 481);

  EXPECT_EQ(whole, (Cutout{.columns = 640, .lines = 481}));
  for (const CutoutRequest& request :
       {CutoutRequest{Kind::Line, 0}, CutoutRequest{Kind::Line, 480}, CutoutRequest{Kind::Line, 5000},
        CutoutRequest{Kind::Column, 0}, CutoutRequest{Kind::Column, 639}})
    EXPECT_TRUE(whole.Holds(request, 640, 481));
}

TEST(ImageCutout, Part_HoldsWhatIsInItAlone) {
  const Cutout line = PlanCutout({Kind::Line, 7}, 640, 481);
  const Cutout column = PlanCutout({Kind::Column, 100}, 640, 481);
  const Cutout sample = PlanCutout({Kind::Sample}, 4096, 3000);

  EXPECT_TRUE(line.Holds({Kind::Line, 6}, 640, 481));
  EXPECT_FALSE(line.Holds({Kind::Line, 8}, 640, 481));
  EXPECT_FALSE(line.Holds({Kind::Column, 0}, 640, 481));
  EXPECT_TRUE(column.Holds({Kind::Column, 103}, 640, 481));
  EXPECT_FALSE(column.Holds({Kind::Column, 104}, 640, 481));
  EXPECT_FALSE(sample.Holds({Kind::Line, 3}, 4096, 3000));
  EXPECT_FALSE(Cutout().Holds({Kind::Line, 0}, 640, 481));
}

TEST(ImageCutout, ImageThatIsTooLarge_IsSampledInsteadOfTakenWhole) {
  EXPECT_EQ(PlanCutout({Kind::Whole}, 16384, 16384), PlanCutout({Kind::Sample}, 16384, 16384));
}

TEST(ImageCutout, FormatOfUnknownLayout_IsRefusedByName) {
  KrBuffer frame;
  ASSERT_TRUE(frame.GetImage()->Alloc(16, 16, KrPixel::BiColorRGBG8).IsOK());
  KrBuffer copy;

  const KrResult result = CopyCutout(*frame.GetImage(), PlanCutout({Kind::Sample}, 16, 16), copy);

  EXPECT_EQ(result.GetCode(), KrResult::Code::NotSupported);
  EXPECT_THAT(result.GetDescription().ToUtf8(), testing::HasSubstr("BiColorRGBG8"));
}

TEST(ImageCutout, CutoutThatIsNotWithinTheImage_IsRefused) {
  KrBuffer frame;
  ASSERT_TRUE(frame.GetImage()->Alloc(16, 16, KrPixel::Mono8).IsOK());
  KrBuffer copy;

  for (const Cutout& cutout : {Cutout{.firstColumn = 8, .columns = 16, .lines = 16}, Cutout{.columns = 16, .lines = 17},
                               Cutout{.firstColumn = 3, .columns = 4, .lines = 4}, Cutout{}})
    EXPECT_EQ(CopyCutout(*frame.GetImage(), cutout, copy).GetCode(), KrResult::Code::BadData);
}

TEST(ImageCutout, CopyOfTheSameSize_UsesItsMemoryAgain) {
  const KrBuffer frame = MakeFrame(KrPixel::Mono8, 32, 32, 32, 8, GetStep);
  const Cutout cutout = PlanCutout({Kind::Sample}, 32, 32);
  KrBuffer copy;
  ASSERT_TRUE(CopyCutout(*frame.GetImage(), cutout, copy).IsOK());
  const std::uint8_t* const memory = copy.GetDataPointer();

  ASSERT_TRUE(CopyCutout(*frame.GetImage(), cutout, copy).IsOK());

  EXPECT_EQ(copy.GetDataPointer(), memory);
}
