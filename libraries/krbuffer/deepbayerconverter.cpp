#include "deepbayerconverter.h"

#include "bgrapixel.h"
#include "kernels/bayerkernels.h"

#include <algorithm>
#include <array>

namespace krbuffer {

namespace {

/// Columns that are interpolated at a time: few enough for three lines of them to stay in the fastest cache, and so
/// many that the ends of runs do not count.
constexpr std::uint32_t kRunColumns = 2048;
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

} // namespace

bool DeepBayerConverter::CanConvert(const LineSource& aSource, const KrPixelTypeInfo& aFormat) {
  return FindFilter(aFormat.layout) && aFormat.bitsPerSample >= 10 && aFormat.bitsPerSample <= 16 && !IsThin(aSource);
}

DeepBayerConverter::DeepBayerConverter(const LineSource& aSource, SampleReader aSamples, const KrPixelTypeInfo& aFormat)
    : LineConverter(aSource), mSamples(aSamples), mRed(FindFilter(aFormat.layout)->red), mBits(aFormat.bitsPerSample) {}

void DeepBayerConverter::ConvertLine(std::uint32_t aLine, std::uint8_t* aDestination, StoreKind aStores) const {
  SampleRun above;
  SampleRun here;
  SampleRun below;
  const std::uint32_t width = mSource.width;
  for (std::uint32_t first = 0; first < width; first += kRunColumns) {
    const std::uint32_t count = std::min(kRunColumns, width - first);
    above.Read(mSamples, mSource.GetLine(GetPrevious(aLine)), first, count, width);
    here.Read(mSamples, mSource.GetLine(aLine), first, count, width);
    below.Read(mSamples, mSource.GetLine(GetNext(aLine, mSource.height)), first, count, width);
    InterpolateBayerWords({above.GetFirst(), here.GetFirst(), below.GetFirst()}, GetLineParity(mRed, aLine), mBits,
                          count, aDestination + kBgraBytes * first, aStores);
  }
}

} // namespace krbuffer
