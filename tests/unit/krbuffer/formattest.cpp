// Conversion to BGRa8 of every format, compared with the reference.

#include "krbuffer/krbufferconverter.h"

#include "everyformat.h"
#include "exactimage.h"
#include "pixelreference.h"

#include <gtest/gtest.h>

using Bytes = std::vector<std::uint8_t>;

namespace {

class EverySupportedFormat : public testing::TestWithParam<FormatCase> {};

bool IsSupported(const KrPixelTypeInfo& aFormat) {
  return KrBufferConverter::IsConversionSupported(aFormat.type, KrPixel::BGRa8);
}

Bytes Convert(const KrBufferConverter& aConverter, const IKrImage& aImage) {
  KrBuffer destination;
  const KrResult result = aConverter.Convert(&aImage, &destination, true, false);
  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  return {destination.GetDataPointer(), destination.GetDataPointer() + destination.GetSize()};
}

void ExpectReference(const KrPixelTypeInfo& aFormat, int aWidth, int aHeight, int aPaddingX, int aPaddingY) {
  const ExactImage source(aFormat, aWidth, aHeight, aPaddingX, aPaddingY);
  const PixelReference reference(aFormat, aWidth, aHeight, aPaddingX, source.bytes);

  ASSERT_EQ(Convert(KrBufferConverter(1), source.image), reference.GetBgra())
      << aWidth << " x " << aHeight << ", padding " << aPaddingX << " and " << aPaddingY;
}

} // namespace

TEST_P(EverySupportedFormat, EverySmallSize_EqualsTheReference) {
  for (const int padding : {0, 1, 3})
    for (int height = 1; height <= 5; ++height)
      for (int width = 1; width <= 17; ++width)
        ExpectReference(GetParam().format, width, height, padding, padding);
}

TEST_P(EverySupportedFormat, LongLines_EqualTheReference) {
  for (const int width : {255, 256, 257, 513, 770})
    ExpectReference(GetParam().format, width, 3, 0, 0);
}

TEST_P(EverySupportedFormat, PaddingAfterTheImageAlone_IsNotLookedAt) {
  ExpectReference(GetParam().format, 7, 2, 0, 5);
}

TEST_P(EverySupportedFormat, TallImage_EqualsTheReference) {
  ExpectReference(GetParam().format, 3, 61, 2, 0);
}

TEST_P(EverySupportedFormat, AllBitsSetOrNone_EqualTheReference) {
  const KrPixelTypeInfo& format = GetParam().format;
  const std::size_t size = PixelReference::GetImageBytes(format, 5, 3, 0, 0);
  for (const std::uint8_t byte : {0x00, 0xFF}) {
    const ExactImage source(format, 5, 3, 0, 0, Bytes(size, byte));
    const PixelReference reference(format, 5, 3, 0, source.bytes);

    EXPECT_EQ(Convert(KrBufferConverter(1), source.image), reference.GetBgra()) << int{byte};
  }
}

TEST_P(EverySupportedFormat, SeveralThreads_EqualOne) {
  // Large enough to be shared among threads.
  const ExactImage source(GetParam().format, 701, 377, 1, 0);
  const Bytes expected = Convert(KrBufferConverter(1), source.image);

  for (const int threads : {2, 7})
    ASSERT_TRUE(Convert(KrBufferConverter(threads), source.image) == expected) << threads << " threads";
}

TEST_P(EverySupportedFormat, OneByteTooLittle_IsBadDataAndLeavesTheDestination) {
  for (const int width : {1, 5, 8}) {
    ExactImage source(GetParam().format, width, 3);
    source.image.statedSize = source.bytes.size() - 1;
    KrBuffer destination;

    const KrResult result = KrBufferConverter(1).Convert(&source.image, &destination, true, false);

    EXPECT_EQ(result.GetCode(), KrResult::Code::BadData) << width;
    EXPECT_EQ(destination.GetSize(), 0u);
  }
}

TEST_P(EverySupportedFormat, ImageOfABuffer_HasTheSizeOfTheReferenceAndIsConverted) {
  const KrPixelTypeInfo& format = GetParam().format;
  KrBuffer source;

  ASSERT_TRUE(source.GetImage()->Alloc(7, 3, format.type, 2, 1).IsOK());

  EXPECT_EQ(source.GetSize(), PixelReference::GetImageBytes(format, 7, 3, 2, 1));
  EXPECT_TRUE(source.DescribeImage(7, 3, format.type, 2, 1).IsOK());
  EXPECT_EQ(source.DescribeImage(7, 3, format.type, 2, 2).GetCode(), KrResult::Code::BadData);
  EXPECT_EQ(Convert(KrBufferConverter(1), *source.GetImage()).size(), 84u);
}

INSTANTIATE_TEST_SUITE_P(Format, EverySupportedFormat, testing::ValuesIn(SelectFormats(IsSupported)),
                         [](const testing::TestParamInfo<FormatCase>& aInfo) {
                           return std::string(aInfo.param.format.name);
                         });
