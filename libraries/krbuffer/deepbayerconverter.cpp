#include "deepbayerconverter.h"

#include "bgrapixel.h"
#include "kernels/bayerkernels.h"

#include <algorithm>
#include <array>
#include <optional>

namespace krbuffer {

namespace {

/// Columns that are interpolated at a time: few enough for three lines of them to stay in the fastest cache, and so
/// many that the ends of runs do not count.
constexpr std::uint32_t kRunColumns = 4096;
static_assert(kRunColumns % kSampleAlignment == 0);

struct FilterRow {
  KrPixelLayout layout;
  RedParity red;
};

constexpr std::array kFilters = {
    FilterRow{KrPixelLayout::BayerGR, kParityGR},
    FilterRow{KrPixelLayout::BayerRG, kParityRG},
    FilterRow{KrPixelLayout::BayerGB, kParityGB},
    FilterRow{KrPixelLayout::BayerBG, kParityBG},
};

const FilterRow* FindFilter(KrPixelLayout aLayout) {
  const auto row = std::find_if(kFilters.begin(), kFilters.end(),
                                [aLayout](const FilterRow& aRow) { return aRow.layout == aLayout; });
  return row != kFilters.end() ? &*row : nullptr;
}

/// The samples of a run of columns with the neighbours at both ends, mirrored at the edges of the image.
class SampleRun {
public:
  void Read(SampleReader aSamples, const std::uint8_t* aLine, std::uint32_t aFirst, std::uint32_t aCount,
            std::uint32_t aWidth) {
    const std::uint32_t end = aFirst + aCount;
    // Runs begin at an aligned column, and so do the columns before them.
    const std::uint32_t before = std::min<std::uint32_t>(aFirst, kBefore);
    aSamples(aLine, aFirst - before, before + aCount + (end < aWidth ? 1 : 0), mSamples.data() + kBefore - before);
    if (aFirst == 0)
      mSamples[kBefore - 1] = mSamples[kBefore + 1];
    if (end == aWidth)
      mSamples[kBefore + aCount] = mSamples[kBefore + aCount - 2];
    std::fill_n(mSamples.begin() + kBefore + aCount + 1, kAfter, std::uint16_t{0});
  }
  const std::uint16_t* GetFirst() const { return mSamples.data() + kBefore; }

private:
  static constexpr std::uint32_t kBefore = kSampleAlignment;
  static constexpr std::uint32_t kAfter = kMostBayerVectorBytes / sizeof(std::uint16_t);

  alignas(64) std::array<std::uint16_t, kBefore + kRunColumns + 1 + kAfter> mSamples;
};

/// The same columns of three lines that follow each other, each read when it is first asked for.
class LineRing {
public:
  LineRing(const LineSource& aSource, SampleReader aSamples, std::uint32_t aFirst, std::uint32_t aCount)
      : mSource(aSource), mSamples(aSamples), mFirst(aFirst), mCount(aCount) {}

  const std::uint16_t* GetSamples(std::uint32_t aLine) {
    const std::size_t place = aLine % kLines;
    if (mLines[place] != aLine) {
      mRuns[place].Read(mSamples, mSource.GetLine(aLine), mFirst, mCount, mSource.width);
      mLines[place] = aLine;
    }
    return mRuns[place].GetFirst();
  }

private:
  static constexpr std::size_t kLines = 3;

  const LineSource& mSource;
  SampleReader mSamples;
  std::uint32_t mFirst;
  std::uint32_t mCount;
  std::array<std::optional<std::uint32_t>, kLines> mLines;
  std::array<SampleRun, kLines> mRuns;
};

} // namespace

bool DeepBayerConverter::CanConvert(const LineSource& aSource, const KrPixelTypeInfo& aFormat) {
  return FindFilter(aFormat.layout) && aFormat.bitsPerSample >= 10 && aFormat.bitsPerSample <= 16 && !IsThin(aSource);
}

DeepBayerConverter::DeepBayerConverter(const LineSource& aSource, SampleReader aSamples, const KrPixelTypeInfo& aFormat)
    : LineConverter(aSource), mSamples(aSamples), mRed(FindFilter(aFormat.layout)->red), mBits(aFormat.bitsPerSample) {}

void DeepBayerConverter::ConvertLine(std::uint32_t aLine, std::uint8_t* aDestination, StoreKind aStores) const {
  ConvertLines(aLine, aLine + 1, aDestination, 0, aStores);
}

void DeepBayerConverter::ConvertLines(std::uint32_t aFirst, std::uint32_t aEnd, std::uint8_t* aDestination,
                                      std::ptrdiff_t aStrideBytes, StoreKind aStores) const {
  for (std::uint32_t first = 0; first < mSource.width; first += kRunColumns) {
    const std::uint32_t count = std::min(kRunColumns, mSource.width - first);
    LineRing lines(mSource, mSamples, first, count);
    std::uint8_t* destination = aDestination + kBgraBytes * first;
    for (std::uint32_t line = aFirst; line < aEnd; ++line) {
      const std::uint16_t* above = lines.GetSamples(GetPrevious(line));
      const std::uint16_t* here = lines.GetSamples(line);
      const std::uint16_t* below = lines.GetSamples(GetNext(line, mSource.height));
      InterpolateBayerWords({above, here, below}, GetLineParity(mRed, line), mBits, count,
                            destination + aStrideBytes * static_cast<std::ptrdiff_t>(line - aFirst), aStores);
    }
  }
}

} // namespace krbuffer
