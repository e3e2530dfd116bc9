#include "unpacker.h"

#include "imagelayout.h"
#include "layoutsamples.h"

#include <algorithm>
#include <array>

namespace krbuffer {

namespace {

constexpr std::uint32_t kPlanes = 3;

void StoreSample(std::uint8_t* aBytes, std::size_t aBytesPerSample, std::uint16_t aSample) {
  aBytes[0] = static_cast<std::uint8_t>(aSample);
  if (aBytesPerSample == 2)
    aBytes[1] = static_cast<std::uint8_t>(aSample >> 8);
}

} // namespace

void LineCopier::ConvertLine(std::uint32_t aLine, std::uint8_t* aDestination, StoreKind) const {
  std::copy_n(mSource.GetLine(aLine), mLineBytes, aDestination);
}

void Unpacker::ConvertLine(std::uint32_t aLine, std::uint8_t* aDestination, StoreKind) const {
  std::array<std::uint16_t, kRunSamples> samples;
  for (std::size_t first = 0; first < mSamplesPerLine; first += kRunSamples) {
    const std::size_t count = std::min(kRunSamples, mSamplesPerLine - first);
    mReader(mSource.GetLine(aLine), first, count, samples.data());
    for (std::size_t i = 0; i < count; ++i)
      StoreSample(aDestination + 2 * (first + i), 2, samples[i]);
  }
}

void PlaneMerger::ConvertLine(std::uint32_t aLine, std::uint8_t* aDestination, StoreKind) const {
  std::array<std::uint16_t, kRunSamples> samples;
  for (std::uint32_t plane = 0; plane < kPlanes; ++plane)
    for (std::size_t first = 0; first < mSource.width; first += kRunSamples) {
      const std::size_t count = std::min<std::size_t>(kRunSamples, mSource.width - first);
      mReader(mSource.GetPlaneLine(plane, aLine), first, count, samples.data());
      for (std::size_t i = 0; i < count; ++i)
        StoreSample(aDestination + mBytesPerSample * (kPlanes * (first + i) + plane), mBytesPerSample, samples[i]);
    }
}

bool CanUnpack(KrPixelType aSource, KrPixelType aDestination) {
  return KrGetUnpackedPixelType(aSource) == aDestination;
}

std::unique_ptr<LineConverter> MakeUnpacker(const LineSource& aSource, KrPixelType aSourceType,
                                            KrPixelType aDestinationType) {
  if (!CanUnpack(aSourceType, aDestinationType))
    return nullptr;
  if (aSourceType == aDestinationType) {
    const ImageShape shape{aSource.width, aSource.height, aSourceType};
    return std::make_unique<LineCopier>(aSource, static_cast<std::size_t>(GetLineBytes(shape)));
  }
  const std::optional<KrPixelTypeInfo> format = KrFindPixelType(aSourceType);
  const SampleReader reader = format ? FindSampleReader(*format) : nullptr;
  if (!reader)
    return nullptr;
  if (format->layout == KrPixelLayout::RGBPlanar)
    return std::make_unique<PlaneMerger>(aSource, reader, format->bitsPerSample > 8 ? 2 : 1);
  return std::make_unique<Unpacker>(aSource, reader, CountSamplesOfFourPixels(format->layout) / 4);
}

} // namespace krbuffer
