// Conversions compared with values that were worked out apart from the library, and the list of formats that it
// converts.

#include "krbuffer/krbufferconverter.h"

#include "everyformat.h"
#include "exactimage.h"
#include "goldenfile.h"

#include <gtest/gtest.h>

#include <set>

using Bytes = std::vector<std::uint8_t>;

namespace {

const std::vector<std::string> kFiles = {"mono.txt",       "bayer.txt",       "colour.txt",
                                         "lumachroma.txt", "coordinates.txt", "edges.txt"};

/// A pixel written as red, green, blue and perhaps alpha.
Bytes ToBgra(const std::string& aPixel) {
  const Bytes rgba = ToBytes(aPixel);
  return {rgba.at(2), rgba.at(1), rgba.at(0), rgba.size() > 3 ? rgba.at(3) : std::uint8_t{255}};
}

Bytes Convert(const GoldenImage& aImage, KrPixelType aType, KrPixelType aWanted) {
  const ExactImage source(*KrFindPixelType(aType), static_cast<int>(aImage.width), static_cast<int>(aImage.height),
                          static_cast<int>(aImage.paddingX), static_cast<int>(aImage.paddingY), aImage.bytes);
  KrBuffer destination;
  EXPECT_TRUE(destination.GetImage()->Alloc(1, 1, aWanted).IsOK());
  const KrResult result = KrBufferConverter(1).Convert(&source.image, &destination, true, false);
  EXPECT_TRUE(result.IsOK()) << aImage.name << ": " << result.GetDescription().CStr();
  return {destination.GetDataPointer(), destination.GetDataPointer() + destination.GetSize()};
}

class EveryFile : public testing::TestWithParam<std::string> {};

} // namespace

TEST_P(EveryFile, EveryImage_BecomesItsPixels) {
  for (const GoldenImage& image : ReadGoldenFile(GetParam())) {
    const std::optional<KrPixelType> type = KrFindPixelType(std::string_view(image.format));
    ASSERT_TRUE(type.has_value()) << image.name;
    Bytes expected;
    for (const std::string& pixel : image.result)
      for (const std::uint8_t byte : ToBgra(pixel))
        expected.push_back(byte);

    EXPECT_EQ(Convert(image, *type, KrPixel::BGRa8), expected) << image.name << ", " << image.format;
  }
}

INSTANTIATE_TEST_SUITE_P(Golden, EveryFile, testing::ValuesIn(kFiles),
                         [](const testing::TestParamInfo<std::string>& aInfo) {
                           return aInfo.param.substr(0, aInfo.param.find('.'));
                         });

TEST(Golden, EveryPackedImage_BecomesItsSamples) {
  for (const GoldenImage& image : ReadGoldenFile("unpacking.txt")) {
    const std::optional<KrPixelType> type = KrFindPixelType(std::string_view(image.format));
    ASSERT_TRUE(type.has_value() && !image.result.empty()) << image.name;
    const std::optional<KrPixelType> wanted = KrFindPixelType(std::string_view(image.result.front()));
    ASSERT_TRUE(wanted.has_value()) << image.name;
    Bytes expected;
    for (std::size_t i = 1; i < image.result.size(); ++i)
      expected.push_back(ToBytes(image.result[i]).at(0));

    EXPECT_EQ(Convert(image, *type, *wanted), expected) << image.name << ", " << image.format;
  }
}

TEST(Golden, FormatsThatAreConverted_AreThoseOfTheFiles) {
  std::set<std::string> listed;
  for (const std::string& file : kFiles)
    for (const GoldenImage& image : ReadGoldenFile(file))
      listed.insert(image.format);

  std::set<std::string> supported;
  for (const KrPixelTypeInfo& format : krbuffer::kPixelTypes)
    if (KrBufferConverter::IsConversionSupported(format.type, KrPixel::BGRa8))
      supported.insert(std::string(format.name));

  EXPECT_EQ(supported, listed);
}

TEST(Golden, FormatsThatAreUnpackedIntoOthers_AreThoseOfTheFile) {
  std::set<std::string> listed;
  for (const GoldenImage& image : ReadGoldenFile("unpacking.txt"))
    listed.insert(image.format);

  std::set<std::string> unpacked;
  for (const KrPixelTypeInfo& format : krbuffer::kPixelTypes)
    if (KrGetUnpackedPixelType(format.type).value_or(format.type) != format.type)
      unpacked.insert(std::string(format.name));

  EXPECT_EQ(unpacked, listed);
}

TEST(Golden, FormatsThatAreUnpacked_AreThoseWithAnUnpackedFormat) {
  for (const KrPixelTypeInfo& from : krbuffer::kPixelTypes)
    for (const FormatCase& to : SelectFormats([](const KrPixelTypeInfo& aTo) { return aTo.type != KrPixel::BGRa8; }))
      EXPECT_EQ(KrBufferConverter::IsConversionSupported(from.type, to.format.type),
                KrGetUnpackedPixelType(from.type) == to.format.type)
          << from.name << " to " << to.format.name;
}
