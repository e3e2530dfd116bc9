#include "topbyteconverter.h"

#include "bgrapixel.h"

#include <algorithm>
#include <array>
#include <optional>

namespace krbuffer {

namespace {

constexpr std::uint32_t kComponents = 3;
constexpr std::uint32_t kRunPixels = 2048;
static_assert(kRunPixels % kSampleAlignment == 0);

struct ByteFormatRow {
  KrPixelLayout layout;
  KrPixelType type; ///< Of bytes.
};

constexpr std::array kByteFormats = {
    ByteFormatRow{KrPixelLayout::RGB, KrPixel::RGB8},
    ByteFormatRow{KrPixelLayout::BGR, KrPixel::BGR8},
    ByteFormatRow{KrPixelLayout::RGBPlanar, KrPixel::RGB8_Planar},
};

LineReader FindReaderOfBytes(KrPixelLayout aLayout) {
  const auto row = std::find_if(kByteFormats.begin(), kByteFormats.end(),
                                [aLayout](const ByteFormatRow& aRow) { return aRow.layout == aLayout; });
  const std::optional<KrPixelTypeInfo> format = row != kByteFormats.end() ? KrFindPixelType(row->type) : std::nullopt;
  return format ? FindLineReader(*format) : nullptr;
}

} // namespace

std::unique_ptr<TopByteConverter> TopByteConverter::Make(const LineSource& aSource, const KrPixelTypeInfo& aFormat) {
  const TopByteReader topBytes = FindTopByteReader(aFormat);
  const LineReader bytes = FindReaderOfBytes(aFormat.layout);
  if (!topBytes || !bytes)
    return nullptr;
  const bool isPlanar = aFormat.layout == KrPixelLayout::RGBPlanar;
  return std::unique_ptr<TopByteConverter>(new TopByteConverter(aSource, topBytes, bytes, isPlanar));
}

void TopByteConverter::ConvertLine(std::uint32_t aLine, std::uint8_t* aDestination, StoreKind aStores) const {
  std::array<std::uint8_t, kComponents * kRunPixels> run;
  for (std::uint32_t first = 0; first < mSource.width; first += kRunPixels) {
    const std::uint32_t count = std::min(kRunPixels, mSource.width - first);
    if (mIsPlanar) {
      for (std::uint32_t plane = 0; plane < kComponents; ++plane)
        mTopBytes(mSource.GetPlaneLine(plane, aLine), first, count, run.data() + kRunPixels * plane);
    } else {
      mTopBytes(mSource.GetLine(aLine), std::size_t{kComponents} * first, std::size_t{kComponents} * count, run.data());
    }
    mBytes({run.data(), kRunPixels, count, 1}, 0, aDestination + kBgraBytes * first, aStores);
  }
}

} // namespace krbuffer
