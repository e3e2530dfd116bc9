// Every luma with every chroma, in every colour space and with every set of vector instructions: the byte that is
// nearest to what the colour space defines, found with whole numbers.

#include "lumachroma.h"

#include "vectortarget.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <ostream>
#include <string>
#include <vector>

using krbuffer::LineReader;
using krbuffer::StoreKind;

using Bytes = std::vector<std::uint8_t>;

namespace {

constexpr int kValues = 256;

/// Red's and blue's parts of luma in ten-thousandths, and the ranges of luma and chroma.
struct SpaceRow {
  std::string name;
  KrPixelType sharedChroma; ///< A format in which two pixels share U and V.
  KrPixelType ownChroma;
  std::int64_t redPart;
  std::int64_t bluePart;
  std::int64_t leastLuma;
  std::int64_t lumaRange;
  std::int64_t chromaRange;
};

void PrintTo(const SpaceRow& aRow, std::ostream* aStream) {
  *aStream << aRow.name;
}

const std::vector<SpaceRow> kSpaces = {
    {"Full601", KrPixel::YUV422_8, KrPixel::YCbCr8, 2990, 1140, 0, 255, 255},
    {"Video601", KrPixel::YCbCr601_422_8, KrPixel::YCbCr601_8_CbYCr, 2990, 1140, 16, 219, 224},
    {"Video709", KrPixel::YCbCr709_422_8, KrPixel::YCbCr709_8_CbYCr, 2126, 722, 16, 219, 224},
};

/// The nearest byte to a fraction, halves up.
std::uint8_t ToByte(std::int64_t aNumerator, std::int64_t aDenominator) {
  const std::int64_t doubled = std::max<std::int64_t>(0, 2 * aNumerator + aDenominator);
  return static_cast<std::uint8_t>(std::min<std::int64_t>(255, doubled / (2 * aDenominator)));
}

/// BGRa8 of all lumas with one U and V.
void FindExpected(const SpaceRow& aSpace, int aU, int aV, Bytes& aBgra) {
  constexpr std::int64_t kOne = 10000;
  constexpr std::int64_t kWhite = 255;
  const std::int64_t green = kOne - aSpace.redPart - aSpace.bluePart;
  const std::int64_t cb = (aU - 128) * kWhite * aSpace.lumaRange * 2 * (kOne - aSpace.bluePart);
  const std::int64_t cr = (aV - 128) * kWhite * aSpace.lumaRange * 2 * (kOne - aSpace.redPart);
  const std::int64_t denominator = aSpace.lumaRange * aSpace.chromaRange * kOne;
  aBgra.clear();
  for (int luma = 0; luma < kValues; ++luma) {
    const std::int64_t y = (luma - aSpace.leastLuma) * kWhite * aSpace.chromaRange * kOne;
    aBgra.insert(aBgra.end(), {ToByte(y + cb, denominator),
                               ToByte(y * green - aSpace.bluePart * cb - aSpace.redPart * cr, denominator * green),
                               ToByte(y + cr, denominator), 255});
  }
}

/// All lumas with one U and V, in the order of the format.
void FillLine(KrPixelLayout aLayout, int aU, int aV, Bytes& aLine) {
  const auto u = static_cast<std::uint8_t>(aU);
  const auto v = static_cast<std::uint8_t>(aV);
  aLine.clear();
  for (int luma = 0; luma < kValues; ++luma) {
    const auto y = static_cast<std::uint8_t>(luma);
    if (aLayout == KrPixelLayout::YUV)
      aLine.insert(aLine.end(), {y, u, v});
    else if (aLayout == KrPixelLayout::UYV)
      aLine.insert(aLine.end(), {u, y, v});
    else
      aLine.insert(aLine.end(), {y, luma % 2 == 0 ? u : v});
  }
}

struct ReaderOfTarget {
  std::int64_t target;
  LineReader read;
};

std::vector<ReaderOfTarget> FindReaders(const KrPixelTypeInfo& aFormat) {
  std::vector<ReaderOfTarget> readers;
  for (const std::int64_t target : GetVectorTargets()) {
    const VectorTargetChoice choice(target);
    readers.push_back({target, krbuffer::FindLumaChromaReader(aFormat)});
  }
  return readers;
}

class EverySpace : public testing::TestWithParam<SpaceRow> {
protected:
  static void ExpectNearestBytes(const SpaceRow& aSpace, KrPixelType aType) {
    const KrPixelTypeInfo format = *KrFindPixelType(aType);
    const std::vector<ReaderOfTarget> readers = FindReaders(format);
    Bytes line;
    Bytes expected;
    Bytes converted(4 * kValues);
    for (int u = 0; u < kValues; ++u)
      for (int v = 0; v < kValues; ++v) {
        FindExpected(aSpace, u, v, expected);
        FillLine(format.layout, u, v, line);
        for (const ReaderOfTarget& reader : readers) {
          reader.read({line.data(), line.size(), kValues, 1}, 0, converted.data(), StoreKind::Cached);
          ASSERT_TRUE(converted == expected)
              << VectorTargetChoice::GetName(reader.target) << ", U " << u << ", V " << v;
        }
      }
  }
};

} // namespace

TEST_P(EverySpace, EveryLumaAndSharedChroma_BecomesTheNearestBytes) {
  ExpectNearestBytes(GetParam(), GetParam().sharedChroma);
}

TEST_P(EverySpace, EveryLumaAndOwnChroma_BecomesTheNearestBytes) {
  ExpectNearestBytes(GetParam(), GetParam().ownChroma);
}

INSTANTIATE_TEST_SUITE_P(LumaChroma, EverySpace, testing::ValuesIn(kSpaces),
                         [](const testing::TestParamInfo<SpaceRow>& aInfo) { return aInfo.param.name; });
