#include "krbuffer/krlineconversion.h"

#include "everyformat.h"
#include "exactimage.h"
#include "krbuffer/krbufferconverter.h"
#include "memorylimit.h"

#include <gmock/gmock.h>

#include <cstring>
#include <stdexcept>
#include <string>
#include <thread>

namespace {

bool CanBeShown(const KrPixelTypeInfo& aFormat) {
  return KrBufferConverter::IsConversionSupported(aFormat.type, KrPixel::BGRa8);
}

std::vector<std::uint8_t> GetBytes(const KrBuffer& aBuffer) {
  return {aBuffer.GetDataPointer(), aBuffer.GetDataPointer() + aBuffer.GetSize()};
}

std::vector<std::uint8_t> ConvertWhole(const KrBufferConverter& aConverter, const IKrImage& aImage) {
  KrBuffer destination;
  EXPECT_TRUE(aConverter.Convert(&aImage, &destination, true, false).IsOK());
  return GetBytes(destination);
}

/// Line by line, the last one first, as no order may matter.
std::vector<std::uint8_t> ConvertByLines(const KrLineConversion& aLines) {
  const std::size_t lineBytes = std::size_t{4} * aLines.GetWidth();
  std::vector<std::uint8_t> pixels(lineBytes * aLines.GetHeight());
  for (std::uint32_t y = aLines.GetHeight(); y-- > 0;)
    aLines.ConvertLine(y, pixels.data() + lineBytes * y);
  return pixels;
}

/// Settings that no format is left alone by.
void ChangeSettings(KrBufferConverter& aConverter) {
  EXPECT_TRUE(aConverter.SetGamma(0.5).IsOK());
  EXPECT_TRUE(aConverter.SetWhiteBalance({2, 0.5, 3}).IsOK());
  EXPECT_TRUE(aConverter.SetSampleWindow({-20, 700}).IsOK());
}

} // namespace

class KrLineConversionOfFormat : public testing::TestWithParam<FormatCase> {};

INSTANTIATE_TEST_SUITE_P(EveryFormat, KrLineConversionOfFormat, testing::ValuesIn(SelectFormats(CanBeShown)),
                         testing::PrintToStringParamName());

TEST_P(KrLineConversionOfFormat, LinesAndTheWhole_AreAsConvertWritesThem) {
  for (const int width : {1, 3, 64, 101}) {
    SCOPED_TRACE(width);
    const ExactImage exact(GetParam().format, width, 5, 3, 1);
    const KrBufferConverter converter;
    KrLineConversion lines;

    ASSERT_TRUE(lines.Open(converter, exact.image).IsOK());

    const std::vector<std::uint8_t> expected = ConvertWhole(converter, exact.image);
    EXPECT_EQ(lines.GetWidth(), static_cast<std::uint32_t>(width));
    EXPECT_EQ(lines.GetHeight(), 5u);
    EXPECT_EQ(ConvertByLines(lines), expected);
    KrBuffer whole;
    ASSERT_TRUE(lines.ConvertAll(converter, whole).IsOK());
    EXPECT_EQ(GetBytes(whole), expected);
  }
}

TEST_P(KrLineConversionOfFormat, SettingsChangedLater_AreNotTaken) {
  const ExactImage exact(GetParam().format, 21, 4);
  KrBufferConverter converter;
  ChangeSettings(converter);
  const std::vector<std::uint8_t> expected = ConvertWhole(converter, exact.image);
  KrLineConversion lines;
  ASSERT_TRUE(lines.Open(converter, exact.image).IsOK());

  ASSERT_TRUE(converter.SetGamma(1).IsOK());
  ASSERT_TRUE(converter.SetWhiteBalance({}).IsOK());
  converter.ResetSampleWindow();

  EXPECT_EQ(ConvertByLines(lines), expected);
  KrBuffer whole;
  ASSERT_TRUE(lines.ConvertAll(converter, whole).IsOK());
  EXPECT_EQ(GetBytes(whole), expected);
}

TEST_P(KrLineConversionOfFormat, LinesFound_AreThoseOfBgra8AloneAndAsTheyAreConverted) {
  const ExactImage exact(GetParam().format, 33, 5, 3, 1);
  KrLineConversion lines;
  ASSERT_TRUE(lines.Open(KrBufferConverter(), exact.image).IsOK());

  for (std::uint32_t y = 0; y < 5; ++y) {
    const std::uint8_t* found = lines.FindLine(y);

    ASSERT_EQ(found != nullptr, GetParam().format.type == KrPixel::BGRa8);
    if (found) {
      std::vector<std::uint8_t> converted(std::size_t{4} * 33);
      lines.ConvertLine(y, converted.data());
      EXPECT_EQ(std::vector<std::uint8_t>(found, found + converted.size()), converted);
    }
  }
}

TEST_P(KrLineConversionOfFormat, WithoutAlpha_IsOpaqueEverywhere) {
  const ExactImage exact(GetParam().format, 101, 5, 3, 1);
  KrLineConversion lines;
  EXPECT_FALSE(lines.HasAlpha());
  ASSERT_TRUE(lines.Open(KrBufferConverter(), exact.image).IsOK());

  const std::vector<std::uint8_t> pixels = ConvertByLines(lines);

  bool isOpaque = true;
  for (std::size_t alpha = 3; alpha < pixels.size(); alpha += 4)
    isOpaque = isOpaque && pixels[alpha] == 255;
  EXPECT_EQ(isOpaque, !lines.HasAlpha()); // Of noise, no alpha is 255 all over.
}

TEST(KrLineConversion, LinesOfBgra8WithSettings_AreNotFoundInTheImage) {
  KrBuffer image;
  ASSERT_TRUE(image.GetImage()->Alloc(4, 4, KrPixel::BGRa8).IsOK());
  KrBufferConverter converter;
  ChangeSettings(converter);
  KrLineConversion lines;

  ASSERT_TRUE(lines.Open(converter, *image.GetImage()).IsOK());

  EXPECT_EQ(lines.FindLine(0), nullptr);
}

TEST_P(KrLineConversionOfFormat, Rebound_GoesOnWithTheCopyAlone) {
  ExactImage exact(GetParam().format, 21, 4, 2, 3);
  const KrBufferConverter converter;
  const std::vector<std::uint8_t> expected = ConvertWhole(converter, exact.image);
  KrLineConversion lines;
  ASSERT_TRUE(lines.Open(converter, exact.image).IsOK());
  const ExactImage copy(GetParam().format, 21, 4, 2, 3, exact.bytes);

  ASSERT_TRUE(lines.Rebind(copy.image).IsOK());
  std::memset(exact.memory.get(), 0x55, exact.bytes.size());

  EXPECT_EQ(ConvertByLines(lines), expected);
}

TEST(KrLineConversion, FloatsRebound_KeepTheRangeFoundAtOpen) {
  const KrPixelTypeInfo format = *KrFindPixelType(KrPixel::Coord3D_C32f);
  const float values[] = {0, 1, 2, 4};
  std::vector<std::uint8_t> bytes(sizeof values);
  std::memcpy(bytes.data(), values, sizeof values);
  const ExactImage exact(format, 4, 1, 0, 0, bytes);
  const float others[] = {1, 2, 1, 2};
  std::memcpy(bytes.data(), others, sizeof others);
  const ExactImage other(format, 4, 1, 0, 0, bytes);
  const KrBufferConverter converter;
  KrLineConversion lines;
  ASSERT_TRUE(lines.Open(converter, exact.image).IsOK());

  ASSERT_TRUE(lines.Rebind(other.image).IsOK());

  const std::vector<std::uint8_t> pixels = ConvertByLines(lines);
  EXPECT_EQ(pixels[0], 64);
  EXPECT_EQ(pixels[4], 128);
}

TEST(KrLineConversion, ReboundToAMisfit_IsInvalidInputAndGoesOnAsBefore) {
  struct Misfit {
    const char* name;
    ForeignImage image;
  };
  std::vector<Misfit> misfits;
  const auto add = [&misfits](const char* aName, std::uint32_t aWidth, std::uint32_t aHeight, KrPixelType aType,
                              std::size_t aBytes) -> ForeignImage& {
    misfits.push_back({aName, ForeignImage(aWidth, aHeight, aType, std::vector<std::uint8_t>(aBytes))});
    return misfits.back().image;
  };
  add("another width", 4, 2, KrPixel::Mono8, 100);
  add("another height", 3, 1, KrPixel::Mono8, 100);
  add("another format", 3, 2, KrPixel::R8, 100);
  add("another padding of lines", 3, 2, KrPixel::Mono8, 100).paddingX = 1;
  add("another padding of the image", 3, 2, KrPixel::Mono8, 100).paddingY = 1;
  add("fewer bytes", 3, 2, KrPixel::Mono8, 5);
  const ForeignImage image(3, 2, KrPixel::Mono8, {1, 2, 3, 4, 5, 6});
  const KrBufferConverter converter;
  KrLineConversion lines;
  ASSERT_TRUE(lines.Open(converter, image).IsOK());
  for (const Misfit& misfit : misfits) {
    SCOPED_TRACE(misfit.name);

    EXPECT_EQ(lines.Rebind(misfit.image).GetCode(), KrResult::Code::InvalidInput);

    EXPECT_EQ(ConvertByLines(lines), ConvertWhole(converter, image));
  }
}

TEST(KrLineConversion, Closed_HasNoSizeAndRefuses) {
  const ForeignImage image(3, 2, KrPixel::Mono8, {1, 2, 3, 4, 5, 6});
  const KrBufferConverter converter;
  KrLineConversion lines;
  ASSERT_TRUE(lines.Open(converter, image).IsOK());

  lines.Close();

  KrBuffer destination;
  EXPECT_FALSE(lines.IsOpen());
  EXPECT_EQ(lines.GetWidth(), 0u);
  EXPECT_EQ(lines.GetHeight(), 0u);
  EXPECT_EQ(lines.Rebind(image).GetCode(), KrResult::Code::InvalidInput);
  EXPECT_EQ(lines.ConvertAll(converter, destination).GetCode(), KrResult::Code::InvalidInput);
  EXPECT_EQ(destination.GetSize(), 0u);
}

TEST(KrLineConversion, Moved_GoesOnInTheOther) {
  const ForeignImage image(3, 2, KrPixel::Mono8, {1, 2, 3, 4, 5, 6});
  const KrBufferConverter converter;
  KrLineConversion lines;
  ASSERT_TRUE(lines.Open(converter, image).IsOK());

  const KrLineConversion moved = std::move(lines);

  EXPECT_EQ(ConvertByLines(moved), ConvertWhole(converter, image));
}

TEST(KrLineConversion, OpenedOnWhatConvertRefuses_GivesItsResultAndIsClosed) {
  struct Refused {
    const char* name;
    ForeignImage image;
  };
  const std::vector<Refused> rows = {
      {"no pixels", ForeignImage(0, 2, KrPixel::Mono8, {1})},
      {"a format that cannot be shown", ForeignImage(1, 1, KrPixel::Data64, std::vector<std::uint8_t>(8))},
      {"fewer bytes than it says", ForeignImage(3, 2, KrPixel::Mono8, {1, 2, 3})},
  };
  const ForeignImage image(3, 2, KrPixel::Mono8, {1, 2, 3, 4, 5, 6});
  const KrBufferConverter converter;
  for (const Refused& row : rows) {
    SCOPED_TRACE(row.name);
    KrBuffer destination;
    const KrResult expected = converter.Convert(&row.image, &destination, true, false);
    KrLineConversion lines;
    ASSERT_TRUE(lines.Open(converter, image).IsOK());

    const KrResult result = lines.Open(converter, row.image);

    EXPECT_FALSE(result.IsOK());
    EXPECT_EQ(result.GetCode(), expected.GetCode());
    EXPECT_EQ(result.GetDescription(), expected.GetDescription());
    EXPECT_FALSE(lines.IsOpen());
  }
}

TEST(KrLineConversion, ClassThatThrows_FailsToOpen) {
  struct ThrowingImage : ForeignImage {
    using ForeignImage::ForeignImage;
    std::uint32_t GetPaddingX() const override { throw std::runtime_error("no padding today"); }
  };
  const ThrowingImage image(1, 1, KrPixel::Mono8, {1});
  KrLineConversion lines;

  const KrResult result = lines.Open(KrBufferConverter(), image);

  EXPECT_EQ(result.GetCode(), KrResult::Code::Failed);
  EXPECT_THAT(result.GetDescription().ToUtf8(), testing::HasSubstr("no padding today"));
  EXPECT_FALSE(lines.IsOpen());
}

TEST(KrLineConversion_ConvertAll, DestinationOfAnotherPayload_BecomesAnImage) {
  const ForeignImage image(3, 2, KrPixel::Mono8, {1, 2, 3, 4, 5, 6});
  const KrBufferConverter converter;
  KrLineConversion lines;
  ASSERT_TRUE(lines.Open(converter, image).IsOK());
  KrBuffer destination(KrPayloadType::File);

  ASSERT_TRUE(lines.ConvertAll(converter, destination).IsOK());

  ASSERT_NE(destination.GetImage(), nullptr);
  EXPECT_EQ(destination.GetImage()->GetPixelType(), KrPixel::BGRa8);
  EXPECT_EQ(GetBytes(destination), ConvertWhole(converter, image));
}

TEST(KrLineConversion_ConvertAll, DestinationThatFits_KeepsItsMemoryAndPadding) {
  const ForeignImage image(1, 2, KrPixel::Mono8, {7, 9});
  const KrBufferConverter converter;
  KrLineConversion lines;
  ASSERT_TRUE(lines.Open(converter, image).IsOK());
  KrBuffer destination;
  ASSERT_TRUE(destination.GetImage()->Alloc(1, 2, KrPixel::BGRa8, 1).IsOK());
  const std::uint8_t* const memory = destination.GetDataPointer();

  ASSERT_TRUE(lines.ConvertAll(converter, destination).IsOK());

  EXPECT_EQ(destination.GetDataPointer(), memory);
  EXPECT_EQ(GetBytes(destination), (std::vector<std::uint8_t>{7, 7, 7, 255, 0, 9, 9, 9, 255, 0}));
}

TEST(KrLineConversion_ConvertAll, OwnMemory_IsInvalidInputAndUnchanged) {
  KrBuffer buffer;
  ASSERT_TRUE(buffer.GetImage()->Alloc(2, 2, KrPixel::BGRa8).IsOK());
  std::memset(buffer.GetDataPointer(), 7, buffer.GetSize());
  const KrBufferConverter converter;
  KrLineConversion lines;
  ASSERT_TRUE(lines.Open(converter, *buffer.GetImage()).IsOK());

  EXPECT_EQ(lines.ConvertAll(converter, buffer).GetCode(), KrResult::Code::InvalidInput);

  EXPECT_EQ(GetBytes(buffer), std::vector<std::uint8_t>(16, 7));
}

TEST(KrLineConversion_ConvertAll, TooLittleMemory_LeavesTheDestination) {
  constexpr std::uint32_t kSide = 8192;
  KrBuffer buffer;
  ASSERT_TRUE(buffer.GetImage()->Alloc(kSide, kSide, KrPixel::Mono8).IsOK());
  const KrBufferConverter converter(1);
  KrLineConversion lines;
  ASSERT_TRUE(lines.Open(converter, *buffer.GetImage()).IsOK());
  KrBuffer destination(KrPayloadType::File);
  const MemoryLimit limit(std::size_t{16} << 20);

  EXPECT_EQ(lines.ConvertAll(converter, destination).GetCode(), KrResult::Code::SystemError);

  EXPECT_EQ(destination.GetPayloadType(), KrPayloadType::File);
  EXPECT_EQ(destination.GetSize(), 0u);
}

TEST(KrLineConversion_Threads, LinesOfOneImageInSeveralThreads_AreRight) {
  const KrPixelTypeInfo format = *KrFindPixelType(KrPixel::BayerRG12p);
  const ExactImage exact(format, 301, 200);
  const KrBufferConverter converter;
  KrLineConversion lines;
  ASSERT_TRUE(lines.Open(converter, exact.image).IsOK());
  const std::size_t lineBytes = 301 * 4;
  std::vector<std::uint8_t> pixels(lineBytes * 200);

  {
    std::vector<std::jthread> threads;
    for (std::uint32_t first = 0; first < 4; ++first)
      threads.emplace_back([&, first] {
        for (std::uint32_t y = first; y < 200; y += 4)
          lines.ConvertLine(y, pixels.data() + lineBytes * y);
      });
  }

  EXPECT_EQ(pixels, ConvertWhole(converter, exact.image));
}
