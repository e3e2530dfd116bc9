#include "panels/histogram.h"

#include "krbuffer/krpixelvalue.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string>
#include <string_view>

namespace krviewer {

namespace {

constexpr unsigned kFewestBits = 8;
constexpr unsigned kMostBits = 16;
constexpr std::string_view kCounted = "YRGB";

/// The samples of a layout in the order of memory, from one repetition to the next, of an even and an odd line.
struct SampleOrder {
  KrPixelLayout layout;
  unsigned pixels; ///< In one repetition.
  std::array<std::string_view, 2> lines;
};

constexpr std::array kOrders = {
    SampleOrder{KrPixelLayout::Mono, 1, {"Y", "Y"}},
    SampleOrder{KrPixelLayout::BayerGR, 2, {"GR", "BG"}},
    SampleOrder{KrPixelLayout::BayerRG, 2, {"RG", "GB"}},
    SampleOrder{KrPixelLayout::BayerGB, 2, {"GB", "RG"}},
    SampleOrder{KrPixelLayout::BayerBG, 2, {"BG", "GR"}},
    SampleOrder{KrPixelLayout::RGB, 1, {"RGB", "RGB"}},
    SampleOrder{KrPixelLayout::BGR, 1, {"BGR", "BGR"}},
    SampleOrder{KrPixelLayout::RGBa, 1, {"RGBA", "RGBA"}},
    SampleOrder{KrPixelLayout::BGRa, 1, {"BGRA", "BGRA"}},
    SampleOrder{KrPixelLayout::YUV, 1, {"YUV", "YUV"}},
    SampleOrder{KrPixelLayout::UYV, 1, {"UYV", "UYV"}},
    SampleOrder{KrPixelLayout::YUYV, 2, {"YUYV", "YUYV"}},
    SampleOrder{KrPixelLayout::UYVY, 2, {"UYVY", "UYVY"}},
    SampleOrder{KrPixelLayout::UYYVYY, 4, {"UYYVYY", "UYYVYY"}},
    SampleOrder{KrPixelLayout::YYUYYV, 4, {"YYUYYV", "YYUYYV"}},
};

/// The samples of one line as indices of counts.
struct Samples {
  const std::uint8_t* line;
  bool isWide; ///< Two bytes each, the less significant one first.
  std::uint32_t mask;
  std::uint32_t flipped; ///< The sign, which makes the least value of signed samples 0.

  std::uint32_t Get(std::size_t aIndex) const {
    const std::uint32_t bits =
        isWide ? std::uint32_t{line[2 * aIndex]} | (std::uint32_t{line[2 * aIndex + 1]} << 8) : line[aIndex];
    return (bits ^ flipped) & mask;
  }
};

/// Counts those samples of a line that stand at one place of each repetition and belong to a pixel of the line.
struct Place {
  std::size_t sample;
  std::size_t samplesEach;
  std::size_t pixel;
  std::size_t pixelsEach;

  void Count(const Samples& aSamples, std::size_t aWidth, std::vector<std::uint32_t>& aCounts) const {
    for (std::size_t x = pixel, i = sample; x < aWidth; x += pixelsEach, i += samplesEach)
      ++aCounts[aSamples.Get(i)];
  }
};

KrResult RefuseFormat(KrPixelType aType) {
  const std::optional<KrPixelTypeInfo> format = KrFindPixelType(aType);
  const std::string name = format ? std::string(format->name) : "a format that is not known";
  return {KrResult::Code::NotSupported, "The values of " + name +
                                            " cannot be counted. Set the camera to a mono, Bayer, RGB or YUV format "
                                            "of 8 to 16 bits."};
}

void Summarise(HistogramChannel& aChannel, std::int64_t aLowestValue) {
  const std::vector<std::uint32_t>& counts = aChannel.counts;
  double sum = 0;
  bool isFirst = true;
  for (std::size_t i = 0; i < counts.size(); ++i) {
    if (counts[i] == 0)
      continue;
    const std::int64_t value = aLowestValue + static_cast<std::int64_t>(i);
    if (isFirst)
      aChannel.lowest = value;
    isFirst = false;
    aChannel.highest = value;
    aChannel.pixels += counts[i];
    sum += static_cast<double>(value) * counts[i];
  }
  if (aChannel.pixels == 0)
    return;
  const auto pixels = static_cast<double>(aChannel.pixels);
  aChannel.mean = sum / pixels;
  double squares = 0;
  for (std::size_t i = 0; i < counts.size(); ++i) {
    const double distance = static_cast<double>(aLowestValue + static_cast<std::int64_t>(i)) - aChannel.mean;
    squares += distance * distance * counts[i];
  }
  aChannel.deviation = std::sqrt(squares / pixels);
  aChannel.clippedLow = counts.front();
  aChannel.clippedHigh = counts.back();
}

HistogramChannel* FindChannel(std::vector<HistogramChannel>& aChannels, char aComponent) {
  const auto found = std::ranges::find(aChannels, aComponent, &HistogramChannel::component);
  return found != aChannels.end() ? &*found : nullptr;
}

void CountLine(const SampleOrder& aOrder, std::uint32_t aLine, const Samples& aSamples, std::size_t aWidth,
               std::vector<HistogramChannel>& aChannels) {
  const std::string_view order = aOrder.lines[aLine % 2];
  std::size_t pixel = 0;
  for (std::size_t i = 0; i < order.size(); ++i) {
    HistogramChannel* const channel = FindChannel(aChannels, order[i]);
    if (!channel)
      continue;
    Place{i, order.size(), pixel, aOrder.pixels}.Count(aSamples, aWidth, channel->counts);
    // In formats of several pixels a repetition each counted sample is another pixel.
    pixel += aOrder.pixels > 1 ? 1 : 0;
  }
}

} // namespace

KrResult Histogram::Unpack(const IKrImage& aImage, const IKrImage*& aUnpacked) {
  const std::optional<KrPixelType> type = KrGetUnpackedPixelType(aImage.GetPixelType());
  const std::optional<KrPixelTypeInfo> format = type ? KrFindPixelType(*type) : std::nullopt;
  if (!format || format->sampleKind == KrSampleKind::Float || format->bitsPerSample < kFewestBits ||
      format->bitsPerSample > kMostBits)
    return RefuseFormat(aImage.GetPixelType());
  IKrImage* const unpacked = mUnpacked.GetImage();
  if (unpacked->GetWidth() != aImage.GetWidth() || unpacked->GetHeight() != aImage.GetHeight() ||
      unpacked->GetPixelType() != *type)
    if (KrResult allocated = unpacked->Alloc(aImage.GetWidth(), aImage.GetHeight(), *type); !allocated.IsOK())
      return allocated;
  aUnpacked = unpacked;
  return mConverter.Convert(&aImage, &mUnpacked, false, false);
}

KrResult Histogram::Count(const IKrImage& aImage) {
  mChannels.clear();
  const IKrImage* image = nullptr;
  if (KrResult unpacked = Unpack(aImage, image); !unpacked.IsOK())
    return unpacked;
  const KrPixelTypeInfo format = *KrFindPixelType(image->GetPixelType());
  const auto* const order = std::ranges::find(kOrders, format.layout, &SampleOrder::layout);
  if (order == kOrders.end())
    return RefuseFormat(aImage.GetPixelType());

  const std::uint32_t values = 1u << format.bitsPerSample;
  const std::uint32_t sign = format.sampleKind == KrSampleKind::Signed ? values / 2 : 0;
  mLowestValue = -std::int64_t{sign};
  mHighestValue = std::int64_t{values} - 1 - sign;
  for (const char component : kCounted)
    if (order->lines[0].find(component) != std::string_view::npos ||
        order->lines[1].find(component) != std::string_view::npos)
      mChannels.push_back({.component = component, .counts = std::vector<std::uint32_t>(values)});

  const std::uint8_t* line = image->GetDataPointer();
  const std::size_t lineBytes = image->GetImageSize() / image->GetHeight();
  for (std::uint32_t y = 0; y < image->GetHeight(); ++y, line += lineBytes)
    CountLine(*order, y, {line, format.bitsPerSample > 8, values - 1, sign}, image->GetWidth(), mChannels);
  for (HistogramChannel& channel : mChannels)
    Summarise(channel, mLowestValue);
  // Formats of one colour alone have the layout of grey ones.
  KrPixelValue pixel;
  if (format.layout == KrPixelLayout::Mono && KrReadPixel(*image, 0, 0, pixel).IsOK())
    mChannels.front().component = pixel.components[0];
  return {};
}

std::vector<std::uint32_t> GatherColumns(const std::vector<std::uint32_t>& aCounts, std::size_t aColumns) {
  std::vector<std::uint32_t> columns(aCounts.empty() ? 0 : aColumns);
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const std::size_t first = i * aCounts.size() / aColumns;
    const std::size_t end = std::max((i + 1) * aCounts.size() / aColumns, first + 1);
    columns[i] = *std::max_element(aCounts.begin() + static_cast<std::ptrdiff_t>(first),
                                   aCounts.begin() + static_cast<std::ptrdiff_t>(end));
  }
  return columns;
}

} // namespace krviewer
