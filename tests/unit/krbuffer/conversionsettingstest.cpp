// White balance, gamma and the sample window of a converter.

#include "krbuffer/krbufferconverter.h"

#include "everyformat.h"
#include "exactimage.h"
#include "goldenfile.h"
#include "pixelreference.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstring>
#include <limits>
#include <map>
#include <thread>

using Bytes = std::vector<std::uint8_t>;

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

struct SettingsRow {
  std::string name;
  ReferenceSettings settings;
};

const std::vector<SettingsRow> kSettings = {
    {"GammaBelow1", {.gamma = 0.45}},
    {"GammaAbove1", {.gamma = 2.2}},
    {"LeastGamma", {.gamma = 0.1}},
    {"MostGamma", {.gamma = 10}},
    {"WhiteBalanceOfRedAlone", {.red = 1.75}},
    {"WhiteBalanceThatSaturates", {.red = 16, .green = 0.5, .blue = 0}},
    {"Window", {.low = 100, .high = 900}},
    {"WindowBeyondTheSamples", {.low = -5000, .high = 100000}},
    {"WindowOfOneStep", {.low = 511.5, .high = 512}},
    {"Everything", {.red = 2, .green = 1, .blue = 0.75, .gamma = 0.7, .low = 64.5, .high = 800}},
};

class EverySupportedFormat : public testing::TestWithParam<FormatCase> {};

void Apply(const ReferenceSettings& aSettings, KrBufferConverter& aConverter) {
  ASSERT_TRUE(aConverter.SetWhiteBalance({aSettings.red, aSettings.green, aSettings.blue}).IsOK());
  ASSERT_TRUE(aConverter.SetGamma(aSettings.gamma).IsOK());
  if (aSettings.low)
    ASSERT_TRUE(aConverter.SetSampleWindow({*aSettings.low, *aSettings.high}).IsOK());
  else
    aConverter.ResetSampleWindow();
}

Bytes Convert(const KrBufferConverter& aConverter, const IKrImage& aImage) {
  KrBuffer destination;
  const KrResult result = aConverter.Convert(&aImage, &destination, true, false);
  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  return {destination.GetDataPointer(), destination.GetDataPointer() + destination.GetSize()};
}

/// The grey of every pixel.
Bytes ConvertGrey(const KrBufferConverter& aConverter, const IKrImage& aImage) {
  const Bytes bgra = Convert(aConverter, aImage);
  Bytes greys;
  for (std::size_t i = 0; i < bgra.size(); i += 4) {
    EXPECT_EQ(bgra[i], bgra[i + 1]);
    EXPECT_EQ(bgra[i], bgra[i + 2]);
    EXPECT_EQ(bgra[i + 3], 255);
    greys.push_back(bgra[i]);
  }
  return greys;
}

// What stands behind the second bar in the file of settings.
struct GoldenResult {
  ReferenceSettings settings;
  Bytes bgra;
};

GoldenResult ReadResult(const GoldenImage& aImage) {
  std::map<std::string, double> values;
  GoldenResult result;
  for (const std::string& word : aImage.result) {
    if (const std::size_t equals = word.find('='); equals != std::string::npos) {
      values[word.substr(0, equals)] = std::stod(word.substr(equals + 1));
      continue;
    }
    const Bytes rgba = ToBytes(word);
    const std::uint8_t alpha = rgba.size() > 3 ? rgba[3] : std::uint8_t{255};
    result.bgra.insert(result.bgra.end(), {rgba.at(2), rgba.at(1), rgba.at(0), alpha});
  }
  const auto find = [&values](const char* aName, double aDefault) {
    const auto value = values.find(aName);
    return value != values.end() ? value->second : aDefault;
  };
  result.settings.red = find("red", 1);
  result.settings.green = find("green", 1);
  result.settings.blue = find("blue", 1);
  result.settings.gamma = find("gamma", 1);
  if (values.contains("low")) {
    result.settings.low = values.at("low");
    result.settings.high = values.at("high");
  }
  return result;
}

ForeignImage MakeFloatImage(const std::vector<float>& aValues) {
  Bytes bytes(4 * aValues.size());
  std::memcpy(bytes.data(), aValues.data(), bytes.size());
  return {static_cast<std::uint32_t>(aValues.size()), 1, KrPixel::Coord3D_C32f, bytes};
}

} // namespace

TEST_P(EverySupportedFormat, EverySetting_EqualsTheReference) {
  KrBufferConverter converter(1);
  const ExactImage source(GetParam().format, 19, 5, 1, 1);
  const PixelReference reference(GetParam().format, 19, 5, 1, source.bytes);
  for (const SettingsRow& row : kSettings) {
    Apply(row.settings, converter);

    ASSERT_EQ(Convert(converter, source.image), reference.GetBgra(row.settings)) << row.name;
  }
}

TEST_P(EverySupportedFormat, SettingsTakenBack_LeaveTheDefault) {
  KrBufferConverter converter(1);
  const ExactImage source(GetParam().format, 19, 5, 0, 0);
  Apply(kSettings.back().settings, converter);

  Apply(ReferenceSettings{}, converter);

  EXPECT_EQ(Convert(converter, source.image), Convert(KrBufferConverter(1), source.image));
}

INSTANTIATE_TEST_SUITE_P(ConversionSettings, EverySupportedFormat,
                         testing::ValuesIn(SelectFormats([](const KrPixelTypeInfo& aFormat) {
                           return KrBufferConverter::IsConversionSupported(aFormat.type, KrPixel::BGRa8);
                         })),
                         [](const testing::TestParamInfo<FormatCase>& aInfo) {
                           return std::string(aInfo.param.format.name);
                         });

TEST(ConversionSettings, EveryImageOfTheFile_BecomesItsPixels) {
  KrBufferConverter converter(1);
  for (const GoldenImage& image : ReadGoldenFile("settings.txt")) {
    const std::optional<KrPixelType> type = KrFindPixelType(std::string_view(image.format));
    ASSERT_TRUE(type.has_value()) << image.name;
    const GoldenResult expected = ReadResult(image);
    ASSERT_FALSE(expected.bgra.empty()) << image.name;
    const ExactImage source(*KrFindPixelType(*type), static_cast<int>(image.width), static_cast<int>(image.height), 0,
                            0, image.bytes);
    Apply(expected.settings, converter);

    EXPECT_EQ(Convert(converter, source.image), expected.bgra) << image.name << ", " << image.format;
  }
}

TEST(ConversionSettings, New_AreNeutral) {
  const KrBufferConverter converter;

  EXPECT_EQ(converter.GetWhiteBalance().red, 1);
  EXPECT_EQ(converter.GetWhiteBalance().green, 1);
  EXPECT_EQ(converter.GetWhiteBalance().blue, 1);
  EXPECT_EQ(converter.GetGamma(), 1);
  EXPECT_FALSE(converter.GetSampleWindow().has_value());
}

TEST(ConversionSettings, Set_AreKept) {
  KrBufferConverter converter;

  ASSERT_TRUE(converter.SetWhiteBalance({0, 16, 1.5}).IsOK());
  ASSERT_TRUE(converter.SetGamma(0.1).IsOK());
  ASSERT_TRUE(converter.SetSampleWindow({-3.5, 70000}).IsOK());

  EXPECT_EQ(converter.GetWhiteBalance().red, 0);
  EXPECT_EQ(converter.GetWhiteBalance().green, 16);
  EXPECT_EQ(converter.GetWhiteBalance().blue, 1.5);
  EXPECT_EQ(converter.GetGamma(), 0.1);
  ASSERT_TRUE(converter.GetSampleWindow().has_value());
  EXPECT_EQ(converter.GetSampleWindow()->low, -3.5);
  EXPECT_EQ(converter.GetSampleWindow()->high, 70000);
}

TEST(ConversionSettings, ResetWindow_ShowsAllSamples) {
  KrBufferConverter converter;
  ASSERT_TRUE(converter.SetSampleWindow({1, 2}).IsOK());

  converter.ResetSampleWindow();

  EXPECT_FALSE(converter.GetSampleWindow().has_value());
}

TEST(ConversionSettings, WhiteBalanceOutsideItsRange_IsInvalidInputAndChangesNothing) {
  KrBufferConverter converter;
  ASSERT_TRUE(converter.SetWhiteBalance({2, 3, 4}).IsOK());
  for (const double wrong : {-0.001, 16.001, kInfinity, -kInfinity, kNoNumber})
    for (const KrWhiteBalance& factors :
         {KrWhiteBalance{wrong, 1, 1}, KrWhiteBalance{1, wrong, 1}, KrWhiteBalance{1, 1, wrong}}) {
      const KrResult result = converter.SetWhiteBalance(factors);

      EXPECT_EQ(result.GetCode(), KrResult::Code::InvalidInput) << wrong;
      EXPECT_FALSE(result.GetDescription().IsEmpty());
      EXPECT_EQ(converter.GetWhiteBalance().red, 2);
      EXPECT_EQ(converter.GetWhiteBalance().green, 3);
      EXPECT_EQ(converter.GetWhiteBalance().blue, 4);
    }
}

TEST(ConversionSettings, GammaOutsideItsRange_IsInvalidInputAndChangesNothing) {
  KrBufferConverter converter;
  ASSERT_TRUE(converter.SetGamma(10).IsOK());
  for (const double wrong : {0.0, 0.0999, 10.001, -1.0, kInfinity, kNoNumber}) {
    EXPECT_EQ(converter.SetGamma(wrong).GetCode(), KrResult::Code::InvalidInput) << wrong;
    EXPECT_EQ(converter.GetGamma(), 10);
  }
}

TEST(ConversionSettings, WindowWithoutExtent_IsInvalidInputAndChangesNothing) {
  KrBufferConverter converter;
  ASSERT_TRUE(converter.SetSampleWindow({10, 20}).IsOK());
  const double most = std::numeric_limits<double>::max();
  for (const KrSampleWindow& wrong :
       {KrSampleWindow{5, 5}, KrSampleWindow{6, 5}, KrSampleWindow{kNoNumber, 5}, KrSampleWindow{5, kNoNumber},
        KrSampleWindow{-kInfinity, 5}, KrSampleWindow{5, kInfinity}, KrSampleWindow{-most, most}}) {
    EXPECT_EQ(converter.SetSampleWindow(wrong).GetCode(), KrResult::Code::InvalidInput);
    EXPECT_EQ(converter.GetSampleWindow()->low, 10);
    EXPECT_EQ(converter.GetSampleWindow()->high, 20);
  }
}

TEST(ConversionSettings, Window_ShowsItsEndsAsBlackAndWhite) {
  const ForeignImage image(5, 1, KrPixel::Mono12, {0x63, 0, 0x64, 0, 0xC8, 0, 0x2C, 1, 0x2D, 1});
  KrBufferConverter converter(1);

  ASSERT_TRUE(converter.SetSampleWindow({100, 300}).IsOK());

  // Samples 99, 100, 200, 300, 301; the middle is 127.5, rounded up.
  EXPECT_EQ(ConvertGrey(converter, image), (Bytes{0, 0, 128, 255, 255}));
}

TEST(ConversionSettings, WindowOfSignedSamples_CountsInTheirOwnValues) {
  const ForeignImage image(3, 1, KrPixel::Data16s, {0x9C, 0xFF, 0x00, 0x00, 0x64, 0x00});
  KrBufferConverter converter(1);

  ASSERT_TRUE(converter.SetSampleWindow({-100, 100}).IsOK());

  EXPECT_EQ(ConvertGrey(converter, image), (Bytes{0, 128, 255}));
}

TEST(ConversionSettings, AWindow_LeavesFormatsOf8BitsAsTheyAre) {
  const ForeignImage image(3, 1, KrPixel::Mono8, {0, 77, 255});
  KrBufferConverter converter(1);

  ASSERT_TRUE(converter.SetSampleWindow({50, 60}).IsOK());

  EXPECT_EQ(ConvertGrey(converter, image), (Bytes{0, 77, 255}));
}

TEST(ConversionSettings, WhiteBalance_IsAppliedBeforeGammaAndClamped) {
  const ForeignImage image(2, 1, KrPixel::RGB8, {51, 51, 51, 200, 200, 200});
  KrBufferConverter converter(1);
  ASSERT_TRUE(converter.SetWhiteBalance({2, 1, 0}).IsOK());
  ASSERT_TRUE(converter.SetGamma(2).IsOK());

  // 51 is 0.2: red (0.4)^2 * 255 = 40.8, green (0.2)^2 * 255 = 10.2; 200 doubled is white, its green 156.86.
  EXPECT_EQ(Convert(converter, image), (Bytes{0, 10, 41, 255, 0, 157, 255, 255}));
}

TEST(ConversionSettings, Gamma_LeavesAlpha) {
  const ForeignImage image(1, 1, KrPixel::RGBa8, {51, 51, 51, 51});
  KrBufferConverter converter(1);

  ASSERT_TRUE(converter.SetGamma(2).IsOK());

  EXPECT_EQ(Convert(converter, image), (Bytes{10, 10, 10, 51}));
}

TEST(ConversionSettings, WhiteBalance_LeavesGrey) {
  const ForeignImage image(1, 1, KrPixel::Mono12, {0xFF, 0x07});
  KrBufferConverter converter(1);

  ASSERT_TRUE(converter.SetWhiteBalance({2, 3, 4}).IsOK());

  EXPECT_EQ(ConvertGrey(converter, image), (Bytes{127}));
}

TEST(ConversionSettings, Unpacking_TakesNoNoticeOfThem) {
  const ForeignImage image(2, 1, KrPixel::Mono12p, {0xBC, 0x3A, 0x12});
  KrBufferConverter converter(1);
  Apply(kSettings.back().settings, converter);
  KrBuffer destination;
  ASSERT_TRUE(destination.GetImage()->Alloc(2, 1, KrPixel::Mono12).IsOK());

  ASSERT_TRUE(converter.Convert(&image, &destination, false, false).IsOK());

  EXPECT_EQ(Bytes(destination.GetDataPointer(), destination.GetDataPointer() + 4), (Bytes{0xBC, 0x0A, 0x23, 0x01}));
}

TEST(FloatConversion, MinimumToMaximum_BecomesBlackToWhite) {
  EXPECT_EQ(ConvertGrey(KrBufferConverter(1), MakeFloatImage({-1.5f, -1.0f, 0.0f, 0.5f})), (Bytes{0, 64, 191, 255}));
}

TEST(FloatConversion, WhatIsNotFinite_IsLeftOutOfTheRange) {
  constexpr float kFloatInfinity = std::numeric_limits<float>::infinity();
  const ForeignImage image =
      MakeFloatImage({0.0f, kFloatInfinity, -kFloatInfinity, std::numeric_limits<float>::quiet_NaN(), 10.0f, 4.0f});

  EXPECT_EQ(ConvertGrey(KrBufferConverter(1), image), (Bytes{0, 255, 0, 0, 255, 102}));
}

TEST(FloatConversion, ImageOfOneValue_IsBlack) {
  EXPECT_EQ(ConvertGrey(KrBufferConverter(1), MakeFloatImage({7.5f, 7.5f})), (Bytes{0, 0}));
}

TEST(FloatConversion, ImageWithoutAFiniteValue_IsBlackButForPositiveInfinity) {
  constexpr float kFloatInfinity = std::numeric_limits<float>::infinity();
  const ForeignImage image = MakeFloatImage({std::numeric_limits<float>::quiet_NaN(), -kFloatInfinity, kFloatInfinity});

  EXPECT_EQ(ConvertGrey(KrBufferConverter(1), image), (Bytes{0, 0, 255}));
}

TEST(FloatConversion, LargestExtent_DoesNotOverflow) {
  constexpr float kMost = std::numeric_limits<float>::max();

  EXPECT_EQ(ConvertGrey(KrBufferConverter(1), MakeFloatImage({-kMost, 0.0f, kMost})), (Bytes{0, 128, 255}));
}

TEST(FloatConversion, ValuesBetweenTheEnds_AreRoundedToTheNearest) {
  constexpr int kValuesOfATone = 3;
  std::vector<float> values;
  Bytes expected;
  for (int value = 0; value <= 255 * kValuesOfATone; ++value) {
    values.push_back(static_cast<float>(value));
    expected.push_back(static_cast<std::uint8_t>((value + 1) / kValuesOfATone));
  }

  EXPECT_EQ(ConvertGrey(KrBufferConverter(1), MakeFloatImage(values)), expected);
}

TEST(FloatConversion, Window_TakesThePlaceOfTheRange) {
  KrBufferConverter converter(1);

  ASSERT_TRUE(converter.SetSampleWindow({0, 2}).IsOK());

  EXPECT_EQ(ConvertGrey(converter, MakeFloatImage({-1.0f, 0.5f, 2.0f, 50.0f})), (Bytes{0, 64, 255, 255}));
}

TEST(ConversionSettings, ChangedWhileConverting_EveryImageHasOneOfTheSettingsThroughout) {
  constexpr std::uint32_t kSide = 600;
  const ForeignImage image(kSide, kSide, KrPixel::RGB8, Bytes(kSide * kSide * 3, 51));
  KrBufferConverter converter(2);
  std::atomic<bool> ends = false;
  std::atomic<int> wrong = 0;

  {
    std::jthread changer([&] {
      for (int round = 0; !ends; ++round)
        wrong += !converter.SetWhiteBalance(round % 2 == 0 ? KrWhiteBalance{2, 2, 2} : KrWhiteBalance{}).IsOK();
    });
    for (int round = 0; round < 20; ++round) {
      const Bytes bgra = Convert(converter, image);
      const std::uint8_t first = bgra.empty() ? std::uint8_t{0} : bgra.front();
      wrong += first != 51 && first != 102;
      for (std::size_t i = 0; i < bgra.size(); ++i)
        wrong += bgra[i] != (i % 4 == 3 ? 255 : first);
    }
    ends = true;
  }

  EXPECT_EQ(wrong, 0);
}
