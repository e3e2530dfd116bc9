// Bayer images of nothing but the least and the greatest samples, whose sums are the greatest that there are, with
// every set of vector instructions.

#include "everyformat.h"
#include "exactimage.h"
#include "imagelayout.h"
#include "lineconverter.h"
#include "noise.h"
#include "pixelreference.h"
#include "tonestore.h"
#include "vectortarget.h"

#include <gtest/gtest.h>

#include <memory>

using krbuffer::LineConverter;
using krbuffer::StoreKind;

using Bytes = std::vector<std::uint8_t>;

namespace {

bool IsBayer(const KrPixelTypeInfo& aFormat) {
  switch (aFormat.layout) {
  case KrPixelLayout::BayerGR:
  case KrPixelLayout::BayerRG:
  case KrPixelLayout::BayerGB:
  case KrPixelLayout::BayerBG:
    return true;
  default:
    return false;
  }
}

/// Bytes with all bits set or none, so many of each in a row that most samples are whole ones.
Bytes MakeExtremes(std::size_t aBytes, std::size_t aInARow, std::uint32_t aSeed) {
  const Bytes noise = MakeNoise(aBytes / aInARow + 1, aSeed);
  Bytes extremes(aBytes);
  for (std::size_t i = 0; i < aBytes; ++i)
    extremes[i] = noise[i / aInARow] < 100 ? 0x00 : 0xFF;
  return extremes;
}

std::size_t GetBytesInARow(const KrPixelTypeInfo& aFormat) {
  if (aFormat.packing != KrPixelPacking::Words)
    return 3;
  return aFormat.bitsPerSample > 8 ? 2 : 1;
}

Bytes ConvertLines(const LineConverter& aConverter) {
  const std::size_t lineBytes = std::size_t{4} * aConverter.GetSource().width;
  Bytes all;
  for (std::uint32_t y = 0; y < aConverter.GetSource().height; ++y) {
    // Its end is the end of the memory.
    const auto line = std::make_unique<std::uint8_t[]>(lineBytes);
    aConverter.ConvertLine(y, line.get(), StoreKind::Cached);
    all.insert(all.end(), line.get(), line.get() + lineBytes);
  }
  return all;
}

void ExpectReferenceOnAllTargets(const KrPixelTypeInfo& aFormat, int aWidth, int aHeight, const Bytes& aBytes) {
  const ExactImage image(aFormat, aWidth, aHeight, 0, 0, aBytes);
  const Bytes expected = PixelReference(aFormat, aWidth, aHeight, 0, image.bytes).GetBgra();
  const krbuffer::ImageShape shape{static_cast<std::uint32_t>(aWidth), static_cast<std::uint32_t>(aHeight),
                                   aFormat.type};
  krbuffer::ToneStore tones;
  for (const std::int64_t target : GetVectorTargets()) {
    const VectorTargetChoice choice(target);
    const std::unique_ptr<LineConverter> converter = krbuffer::MakeLineConverter(
        {image.memory.get(), static_cast<std::size_t>(krbuffer::GetStrideBytes(shape)), shape.width, shape.height},
        aFormat.type, KrPixel::BGRa8, tones);
    ASSERT_TRUE(ConvertLines(*converter) == expected)
        << VectorTargetChoice::GetName(target) << ", " << aWidth << " x " << aHeight;
  }
}

class EveryBayerFormat : public testing::TestWithParam<FormatCase> {
protected:
  static void ExpectReference(int aWidth, int aHeight) {
    const KrPixelTypeInfo& format = GetParam().format;
    const std::size_t bytes = PixelReference::GetImageBytes(format, aWidth, aHeight, 0, 0);
    ExpectReferenceOnAllTargets(
        format, aWidth, aHeight,
        MakeExtremes(bytes, GetBytesInARow(format), static_cast<std::uint32_t>(100 * aWidth + aHeight)));
  }
};

} // namespace

TEST_P(EveryBayerFormat, ExtremeSamplesInAllSmallWidths_EqualTheReference) {
  for (const int height : {2, 3})
    for (int width = 1; width <= 70; ++width)
      ExpectReference(width, height);
}

TEST_P(EveryBayerFormat, ExtremeSamplesInLongLines_EqualTheReference) {
  for (const int width : {2047, 4095, 4096, 4097, 4098, 4161})
    ExpectReference(width, 2);
}

TEST_P(EveryBayerFormat, GreatestSamplesAlone_AreWhite) {
  const KrPixelTypeInfo& format = GetParam().format;
  const Bytes bytes(PixelReference::GetImageBytes(format, 131, 4, 0, 0), 0xFF);

  ExpectReferenceOnAllTargets(format, 131, 4, bytes);
}

INSTANTIATE_TEST_SUITE_P(BayerExtremes, EveryBayerFormat, testing::ValuesIn(SelectFormats(IsBayer)),
                         [](const testing::TestParamInfo<FormatCase>& aInfo) {
                           return std::string(aInfo.param.format.name);
                         });
