#include "krbuffer/krpixelvalue.h"

#include "everyformat.h"
#include "exactimage.h"
#include "krbuffer/krbuffer.h"
#include "pixelreference.h"

#include <gmock/gmock.h>

#include <cmath>
#include <stdexcept>
#include <string>

namespace {

constexpr int kWidths[] = {1, 2, 3, 4, 5, 7, 8, 13};
constexpr int kHeight = 3;
constexpr int kPaddingX = 3;
constexpr int kPaddingY = 5;

bool CanTellSamples(const KrPixelTypeInfo& aFormat) {
  return aFormat.layout != KrPixelLayout::Other && aFormat.packing != KrPixelPacking::Other;
}

bool AreSame(double aLeft, double aRight) {
  return std::isnan(aLeft) ? std::isnan(aRight) : aLeft == aRight;
}

/// Bytes of a 2 x 1 image and what its second pixel is.
struct KnownPixel {
  const char* name;
  KrPixelType type;
  std::vector<std::uint8_t> bytes;
  std::string components;
  std::vector<double> samples;
};

} // namespace

class KrReadPixelOfFormat : public testing::TestWithParam<FormatCase> {};

INSTANTIATE_TEST_SUITE_P(EveryFormat, KrReadPixelOfFormat, testing::ValuesIn(SelectFormats(CanTellSamples)),
                         testing::PrintToStringParamName());

TEST_P(KrReadPixelOfFormat, EveryPixel_IsWhatItsBitsSay) {
  const KrPixelTypeInfo& format = GetParam().format;
  for (const int width : kWidths) {
    const ExactImage exact(format, width, kHeight, kPaddingX, kPaddingY);
    const PixelReference reference(format, width, kHeight, kPaddingX, exact.bytes);
    for (int y = 0; y < kHeight; ++y)
      for (int x = 0; x < width; ++x) {
        SCOPED_TRACE(testing::Message() << width << " wide: " << x << ", " << y);
        const std::vector<PixelReference::RawSample> expected = reference.GetRaw(x, y);
        KrPixelValue value;

        ASSERT_TRUE(
            KrReadPixel(exact.image, static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y), value).IsOK());

        ASSERT_EQ(value.sampleCount, static_cast<int>(expected.size()));
        for (std::size_t i = 0; i < expected.size(); ++i) {
          EXPECT_EQ(value.components[i], expected[i].component) << i;
          EXPECT_PRED2(AreSame, value.samples[i], expected[i].value) << i;
        }
      }
  }
}

TEST(KrReadPixel, KnownBytes_GiveTheKnownSamples) {
  const std::vector<KnownPixel> rows = {
      {"Mono8", KrPixel::Mono8, {1, 200}, "Y", {200}},
      {"Mono8s", KrPixel::Mono8s, {1, 0x80}, "Y", {-128}},
      {"Mono10", KrPixel::Mono10, {0, 0, 0xFF, 0xFF}, "Y", {1023}},
      {"Mono12p", KrPixel::Mono12p, {0, 0x50, 0xAB}, "Y", {0xAB5}},
      {"Mono12Packed", KrPixel::Mono12Packed, {0, 0x50, 0xAB}, "Y", {0xAB5}},
      {"Data16s", KrPixel::Data16s, {0, 0, 0x00, 0x80}, "Y", {-32768}},
      {"Coord3D_C32f", KrPixel::Coord3D_C32f, {0, 0, 0, 0, 0, 0, 0xC0, 0x3F}, "Y", {1.5}},
      {"Data64", KrPixel::Data64, {0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0x10, 0}, "Y", {4503599627370497.0}},
      {"BayerRG8", KrPixel::BayerRG8, {1, 200}, "G", {200}},
      {"G8", KrPixel::G8, {1, 200}, "G", {200}},
      {"BGR8", KrPixel::BGR8, {0, 0, 0, 1, 2, 3}, "BGR", {1, 2, 3}},
      {"RGB8_Planar", KrPixel::RGB8_Planar, {0, 1, 0, 2, 0, 3}, "RGB", {1, 2, 3}},
      {"RGB565p", KrPixel::RGB565p, {0, 0, 0x41, 0x18}, "RGB", {1, 2, 3}},
      {"RGBa8", KrPixel::RGBa8, {0, 0, 0, 0, 1, 2, 3, 4}, "RGBA", {1, 2, 3, 4}},
      {"YUV422_8_UYVY", KrPixel::YUV422_8_UYVY, {5, 0, 6, 7}, "YUV", {7, 5, 6}},
  };
  for (const KnownPixel& row : rows) {
    SCOPED_TRACE(row.name);
    const ForeignImage image(2, 1, row.type, row.bytes);
    KrPixelValue value;

    ASSERT_TRUE(KrReadPixel(image, 1, 0, value).IsOK());

    ASSERT_EQ(value.sampleCount, static_cast<int>(row.samples.size()));
    for (std::size_t i = 0; i < row.samples.size(); ++i) {
      EXPECT_EQ(value.components[i], row.components[i]) << i;
      EXPECT_EQ(value.samples[i], row.samples[i]) << i;
    }
  }
}

TEST(KrReadPixel, FormatsWhoseSamplesCannotBeTold_AreNotSupported) {
  const auto cannotTell = [](const KrPixelTypeInfo& aFormat) { return !CanTellSamples(aFormat); };
  for (const FormatCase& row : SelectFormats(cannotTell)) {
    SCOPED_TRACE(row.format.name);
    const ForeignImage image(2, 2, row.format.type, std::vector<std::uint8_t>(1000));
    KrPixelValue value;

    EXPECT_EQ(KrReadPixel(image, 0, 0, value).GetCode(), KrResult::Code::NotSupported);
    EXPECT_EQ(value.sampleCount, 0);
  }
}

TEST(KrReadPixel, PlaceOutsideTheImage_IsInvalidInputAndLeavesTheValue) {
  const ForeignImage image(3, 2, KrPixel::Mono8, {1, 2, 3, 4, 5, 6});
  KrPixelValue value;
  ASSERT_TRUE(KrReadPixel(image, 2, 1, value).IsOK());

  EXPECT_EQ(KrReadPixel(image, 3, 1, value).GetCode(), KrResult::Code::InvalidInput);
  EXPECT_EQ(KrReadPixel(image, 2, 2, value).GetCode(), KrResult::Code::InvalidInput);

  EXPECT_EQ(value.samples[0], 6);
}

TEST(KrReadPixel, FewerBytesThanTheImageSays_IsBadData) {
  ForeignImage image(3, 2, KrPixel::Mono8, {1, 2, 3, 4, 5});
  KrPixelValue value;

  EXPECT_EQ(KrReadPixel(image, 0, 0, value).GetCode(), KrResult::Code::BadData);

  EXPECT_EQ(value.sampleCount, 0);
}

TEST(KrReadPixel, ImageOfNothing_IsInvalidInput) {
  const KrBuffer empty;
  KrPixelValue value;

  EXPECT_EQ(KrReadPixel(*empty.GetImage(), 0, 0, value).GetCode(), KrResult::Code::InvalidInput);
}

TEST(KrReadPixel, ClassThatThrows_Fails) {
  struct ThrowingImage : ForeignImage {
    using ForeignImage::ForeignImage;
    std::uint32_t GetPaddingX() const override { throw std::runtime_error("no padding today"); }
  };
  const ThrowingImage image(1, 1, KrPixel::Mono8, {1});
  KrPixelValue value;

  const KrResult result = KrReadPixel(image, 0, 0, value);

  EXPECT_EQ(result.GetCode(), KrResult::Code::Failed);
  EXPECT_THAT(result.GetDescription().ToUtf8(), testing::HasSubstr("no padding today"));
}
