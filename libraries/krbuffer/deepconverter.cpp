#include "deepconverter.h"

#include "bgrapixel.h"

#include <algorithm>
#include <array>
#include <utility>

namespace krbuffer {

DeepGreyConverter::DeepGreyConverter(const LineSource& aSource, SampleReader aSamples,
                                     std::shared_ptr<const ToneTables> aTables)
    : LineConverter(aSource), mSamples(aSamples), mBytes(FindLineReader(*KrFindPixelType(KrPixel::Mono8))),
      mTables(std::move(aTables)) {}

void DeepGreyConverter::ConvertLine(std::uint32_t aLine, std::uint8_t* aDestination, StoreKind aStores) const {
  const std::uint8_t* line = mSource.GetLine(aLine);
  const std::uint8_t* table = mTables->GetGreyTable();
  std::array<std::uint16_t, kRunSamples> samples;
  std::array<std::uint8_t, kRunSamples> shown;
  for (std::size_t first = 0; first < mSource.width; first += kRunSamples) {
    const std::size_t count = std::min<std::size_t>(kRunSamples, mSource.width - first);
    mSamples(line, first, count, samples.data());
    for (std::size_t i = 0; i < count; ++i)
      shown[i] = table[samples[i]];
    mBytes({shown.data(), kRunSamples, static_cast<std::uint32_t>(count), 1}, 0, aDestination + kBgraBytes * first,
           aStores);
  }
}

DeepColourConverter::DeepColourConverter(const LineSource& aSource, SampleReader aSamples, DeepReader aReader,
                                         unsigned aBits, std::shared_ptr<const ToneTables> aTables)
    : LineConverter(aSource), mSamples(aSamples), mReader(aReader), mBits(aBits), mTables(std::move(aTables)) {}

void DeepColourConverter::ConvertLine(std::uint32_t aLine, std::uint8_t* aDestination, StoreKind) const {
  constexpr auto kRun = static_cast<std::uint32_t>(kRunSamples);
  std::array<DeepPixel, kRunSamples> pixels;
  std::uint32_t count = 0;
  for (std::uint32_t first = 0; first < mSource.width; first += count) {
    count = std::min(kRun, mSource.width - first);
    mReader(mSource, mSamples, aLine, first, count, pixels.data());
    Store(pixels.data(), count, aDestination + kBgraBytes * first);
  }
}

void DeepColourConverter::Store(const DeepPixel* aPixels, std::size_t aCount, std::uint8_t* aDestination) const {
  if (!mTables) {
    const unsigned shift = mBits - 8;
    for (std::size_t i = 0; i < aCount; ++i)
      StoreBgra(aDestination + kBgraBytes * i, static_cast<std::uint32_t>(aPixels[i].blue) >> shift,
                static_cast<std::uint32_t>(aPixels[i].green) >> shift,
                static_cast<std::uint32_t>(aPixels[i].red) >> shift, kOpaque);
    return;
  }
  const std::uint8_t* blue = mTables->GetTable(ToneTables::Channel::Blue);
  const std::uint8_t* green = mTables->GetTable(ToneTables::Channel::Green);
  const std::uint8_t* red = mTables->GetTable(ToneTables::Channel::Red);
  for (std::size_t i = 0; i < aCount; ++i)
    StoreBgra(aDestination + kBgraBytes * i, blue[aPixels[i].blue], green[aPixels[i].green], red[aPixels[i].red],
              kOpaque);
}

} // namespace krbuffer
