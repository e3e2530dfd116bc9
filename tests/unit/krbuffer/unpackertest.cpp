// Conversion to the format that holds the same samples unpacked.

#include "krbuffer/krbufferconverter.h"

#include "everyformat.h"
#include "exactimage.h"
#include "pixelreference.h"

#include <gtest/gtest.h>

#include <map>

using Bytes = std::vector<std::uint8_t>;

namespace {

class EveryPackedFormat : public testing::TestWithParam<FormatCase> {};
class EveryUnpackedFormat : public testing::TestWithParam<FormatCase> {};

Bytes Unpack(const IKrImage& aImage, KrPixelType aWanted, int aThreads = 1, bool aBottomUp = false) {
  KrBuffer destination;
  EXPECT_TRUE(destination.GetImage()->Alloc(1, 1, aWanted).IsOK());
  const KrResult result = KrBufferConverter(aThreads).Convert(&aImage, &destination, true, aBottomUp);
  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(destination.GetImage()->GetPixelType(), aWanted);
  return {destination.GetDataPointer(), destination.GetDataPointer() + destination.GetSize()};
}

bool IsPacked(const KrPixelTypeInfo& aFormat) {
  const std::optional<KrPixelType> unpacked = KrGetUnpackedPixelType(aFormat.type);
  return unpacked && *unpacked != aFormat.type;
}

bool IsUnpacked(const KrPixelTypeInfo& aFormat) {
  return KrGetUnpackedPixelType(aFormat.type) == aFormat.type && aFormat.type != KrPixel::BGRa8;
}

const auto kGetName = [](const testing::TestParamInfo<FormatCase>& aInfo) {
  return std::string(aInfo.param.format.name);
};

} // namespace

TEST_P(EveryPackedFormat, EverySmallSize_HasTheSamplesOfTheReference) {
  const KrPixelTypeInfo& format = GetParam().format;
  const KrPixelType unpacked = *KrGetUnpackedPixelType(format.type);
  for (const int paddingX : {0, 3})
    for (int height = 1; height <= 3; ++height)
      for (int width = 1; width <= 17; ++width) {
        const ExactImage source(format, width, height, paddingX, paddingX);
        const PixelReference reference(format, width, height, paddingX, source.bytes);

        ASSERT_EQ(Unpack(source.image, unpacked), reference.GetUnpacked()) << width << " x " << height;
      }
}

TEST_P(EveryPackedFormat, LongLines_HaveTheSamplesOfTheReference) {
  const KrPixelTypeInfo& format = GetParam().format;
  for (const int width : {255, 256, 257, 511, 512, 513, 771}) {
    const ExactImage source(format, width, 2);
    const PixelReference reference(format, width, 2, 0, source.bytes);

    ASSERT_EQ(Unpack(source.image, *KrGetUnpackedPixelType(format.type)), reference.GetUnpacked()) << width;
  }
}

TEST_P(EveryPackedFormat, OneByteTooLittle_IsBadData) {
  ExactImage source(GetParam().format, 5, 3);
  source.image.statedSize = source.bytes.size() - 1;
  KrBuffer destination;
  ASSERT_TRUE(destination.GetImage()->Alloc(5, 3, *KrGetUnpackedPixelType(GetParam().format.type)).IsOK());

  const KrResult result = KrBufferConverter(1).Convert(&source.image, &destination, true, false);

  EXPECT_EQ(result.GetCode(), KrResult::Code::BadData);
}

TEST_P(EveryUnpackedFormat, ConversionToItself_CopiesTheBytesWithoutPadding) {
  const KrPixelTypeInfo& format = GetParam().format;
  constexpr int kWidth = 5;
  constexpr int kHeight = 3;
  constexpr int kPadding = 3;
  const ExactImage source(format, kWidth, kHeight, kPadding, kPadding);
  const std::size_t lineBytes = PixelReference::GetImageBytes(format, kWidth, 1, 0, 0);
  Bytes expected;
  for (std::size_t line = 0; line < kHeight; ++line) {
    const auto begin = source.bytes.begin() + static_cast<std::ptrdiff_t>(line * (lineBytes + kPadding));
    expected.insert(expected.end(), begin, begin + static_cast<std::ptrdiff_t>(lineBytes));
  }

  EXPECT_EQ(Unpack(source.image, format.type), expected);
}

INSTANTIATE_TEST_SUITE_P(Unpacker, EveryPackedFormat, testing::ValuesIn(SelectFormats(IsPacked)), kGetName);
INSTANTIATE_TEST_SUITE_P(Unpacker, EveryUnpackedFormat, testing::ValuesIn(SelectFormats(IsUnpacked)), kGetName);

TEST(Unpacker, PairsOfFormats_AreThoseOfTheList) {
  const std::map<KrPixelType, KrPixelType> expected = {
      {KrPixel::Mono10p, KrPixel::Mono10},       {KrPixel::Mono10Packed, KrPixel::Mono10},
      {KrPixel::Mono12p, KrPixel::Mono12},       {KrPixel::Mono12Packed, KrPixel::Mono12},
      {KrPixel::Mono14p, KrPixel::Mono14},       {KrPixel::BayerRG12Packed, KrPixel::BayerRG12},
      {KrPixel::BayerGB10p, KrPixel::BayerGB10}, {KrPixel::BayerBG14p, KrPixel::BayerBG14},
      {KrPixel::RGB10p, KrPixel::RGB10},         {KrPixel::BGR12p, KrPixel::BGR12},
      {KrPixel::RGBa10p, KrPixel::RGBa10},       {KrPixel::RGB8_Planar, KrPixel::RGB8},
      {KrPixel::RGB16_Planar, KrPixel::RGB16},   {KrPixel::Mono16, KrPixel::Mono16},
      {KrPixel::YUV422_8, KrPixel::YUV422_8},
  };

  for (const auto& [from, to] : expected)
    EXPECT_TRUE(KrBufferConverter::IsConversionSupported(from, to)) << from << " to " << to;
}

TEST(Unpacker, FormatsWithFewerThan8BitsOrOfTheirOwnPacking_AreNotUnpacked) {
  for (const KrPixelType type : {KrPixel::Mono1p, KrPixel::Mono4p, KrPixel::BayerRG4p, KrPixel::RGB565p,
                                 KrPixel::RGB10V1Packed, KrPixel::RGB10p32, KrPixel::Coord3D_ABC10p})
    for (const KrPixelTypeInfo& wanted : krbuffer::kPixelTypes)
      EXPECT_FALSE(wanted.type != KrPixel::BGRa8 && KrBufferConverter::IsConversionSupported(type, wanted.type))
          << type << " to " << wanted.name;
}

TEST(Unpacker, Mono12pPairOfABCand123_BecomesWords) {
  const ForeignImage image(2, 1, KrPixel::Mono12p, {0xBC, 0x3A, 0x12});

  EXPECT_EQ(Unpack(image, KrPixel::Mono12), (Bytes{0xBC, 0x0A, 0x23, 0x01}));
}

TEST(Unpacker, BottomUpInSeveralThreads_HasTheSamplesInReverseLines) {
  const KrPixelTypeInfo format = *KrFindPixelType(KrPixel::RGB10_Planar);
  constexpr int kWidth = 700;
  constexpr int kHeight = 400;
  const ExactImage source(format, kWidth, kHeight, 5, 0);
  const Bytes topDown = Unpack(source.image, KrPixel::RGB10, 1, false);
  const std::size_t lineBytes = topDown.size() / kHeight;

  const Bytes bottomUp = Unpack(source.image, KrPixel::RGB10, 3, true);

  ASSERT_EQ(bottomUp.size(), topDown.size());
  for (std::size_t line = 0; line < kHeight; ++line)
    ASSERT_TRUE(std::equal(bottomUp.begin() + static_cast<std::ptrdiff_t>(line * lineBytes),
                           bottomUp.begin() + static_cast<std::ptrdiff_t>((line + 1) * lineBytes),
                           topDown.begin() + static_cast<std::ptrdiff_t>((kHeight - 1 - line) * lineBytes)))
        << "line " << line;
}
