#pragma once
// How often each value occurs in an image, for each of its colours. From which frame the image comes is left to the
// caller, how it looks to the plot.

#include "krbuffer/krbuffer.h"
#include "krbuffer/krbufferconverter.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace krviewer {

/// The values of one colour.
struct HistogramChannel {
  char component = 'Y'; ///< 'Y' grey or luma, 'R', 'G' or 'B'.
  /// Pixels of each value, from the format's least value on.
  std::vector<std::uint32_t> counts;
  std::uint64_t pixels = 0;
  double mean = 0;
  double deviation = 0; ///< The standard deviation.
  std::int64_t lowest = 0;
  std::int64_t highest = 0;
  std::uint64_t clippedLow = 0;  ///< Pixels at the format's least value.
  std::uint64_t clippedHigh = 0; ///< Pixels at its greatest.

  /// A part of the pixels in percent.
  double GetPercent(std::uint64_t aPixels) const {
    return pixels > 0 ? 100.0 * static_cast<double>(aPixels) / static_cast<double>(pixels) : 0.0;
  }
};

/// Thread: one at a time.
class Histogram {
public:
  /// Counts an image's raw values: grey, colours by the filter of Bayer formats or as components, luma; neither alpha
  /// nor chroma. NotSupported for samples of fewer than 8 or more than 16 bits and formats that cannot be unpacked;
  /// otherwise as KrBufferConverter::Convert. There are no channels then.
  KrResult Count(const IKrImage& aImage);

  /// One for each colour, in the order Y, R, G, B; empty until an image was counted.
  const std::vector<HistogramChannel>& GetChannels() const { return mChannels; }
  /// The least and the greatest value that the format has.
  std::int64_t GetLowestValue() const { return mLowestValue; }
  std::int64_t GetHighestValue() const { return mHighestValue; }

private:
  KrResult Unpack(const IKrImage& aImage, const IKrImage*& aUnpacked);

  KrBufferConverter mConverter{1};
  KrBuffer mUnpacked;
  std::vector<HistogramChannel> mChannels;
  std::int64_t mLowestValue = 0;
  std::int64_t mHighestValue = 0;
};

/// The counts as so many columns of a plot: each has the greatest count of the values that fall into it, as their sum
/// would make combs of columns that take in one value more than others. Empty for no columns or no counts.
std::vector<std::uint32_t> GatherColumns(const std::vector<std::uint32_t>& aCounts, std::size_t aColumns);

} // namespace krviewer
