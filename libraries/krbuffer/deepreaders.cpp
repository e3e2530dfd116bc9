#include "deepreaders.h"

#include <algorithm>
#include <array>

namespace krbuffer {

namespace {

constexpr std::size_t kComponents = 3;

template <std::size_t RedPlace, std::size_t BluePlace>
void ReadInterleaved(const LineSource& aSource, SampleReader aSamples, std::uint32_t aLine, std::uint32_t aFirst,
                     std::uint32_t aCount, DeepPixel* aPixels) {
  std::array<std::uint16_t, kComponents * kRunSamples> samples;
  aSamples(aSource.GetLine(aLine), kComponents * aFirst, kComponents * aCount, samples.data());
  for (std::size_t i = 0; i < aCount; ++i)
    aPixels[i] = {samples[kComponents * i + BluePlace], samples[kComponents * i + 1],
                  samples[kComponents * i + RedPlace]};
}

void ReadPlanar(const LineSource& aSource, SampleReader aSamples, std::uint32_t aLine, std::uint32_t aFirst,
                std::uint32_t aCount, DeepPixel* aPixels) {
  std::array<std::array<std::uint16_t, kRunSamples>, kComponents> planes;
  for (std::uint32_t plane = 0; plane < kComponents; ++plane)
    aSamples(aSource.GetPlaneLine(plane, aLine), aFirst, aCount, planes[plane].data());
  for (std::size_t i = 0; i < aCount; ++i)
    aPixels[i] = {planes[2][i], planes[1][i], planes[0][i]};
}

/// A run of a line's samples with one neighbour, mirrored at the edges of the image, at either end.
class BayerRun {
public:
  BayerRun(const LineSource& aSource, SampleReader aSamples, std::uint32_t aLine, std::uint32_t aFirst,
           std::uint32_t aCount) {
    const std::uint8_t* line = aSource.GetLine(aLine);
    const std::uint32_t end = aFirst + aCount;
    aSamples(line, aFirst, std::min(aCount + 1, aSource.width - aFirst), mSamples.data() + 1);
    mSamples[0] = ReadSample(aSamples, line, GetPrevious(aFirst));
    if (end == aSource.width)
      mSamples[aCount + 1] = mSamples[aCount - 1];
  }

  /// The run's first sample; the ones before it and after the last are there too.
  const std::uint16_t* GetSamples() const { return mSamples.data() + 1; }

private:
  std::array<std::uint16_t, kRunSamples + 2> mSamples;
};

template <LineColour Colour, std::uint32_t ColourColumn>
void InterpolateRun(const BayerRun& aAbove, const BayerRun& aHere, const BayerRun& aBelow, std::size_t aCount,
                    DeepPixel* __restrict aPixels) {
  // Columns count from the left neighbour of the run's first, which is an even one: so they have the other parity.
  const Neighbourhood<std::uint16_t> lines{aAbove.GetSamples() - 1, aHere.GetSamples() - 1, aBelow.GetSamples() - 1};
  constexpr std::uint32_t kColourColumn = 1 - ColourColumn;
  const std::size_t pairs = aCount / 2;
  for (std::size_t pair = 0; pair < pairs; ++pair) {
    const std::size_t odd = 2 * pair + 1;
    InterpolateColumn<Colour, kColourColumn>(lines, odd - 1, odd, odd + 1, aPixels[odd - 1]);
    InterpolateColumn<Colour, kColourColumn>(lines, odd, odd + 1, odd + 2, aPixels[odd]);
  }
  if (aCount % 2 != 0)
    InterpolateColumn<Colour, kColourColumn>(lines, aCount - 1, aCount, aCount + 1, aPixels[aCount - 1]);
}

using RunInterpolation = void (*)(const BayerRun& aAbove, const BayerRun& aHere, const BayerRun& aBelow,
                                  std::size_t aCount, DeepPixel* aPixels);

/// By the line's colour and the parity of the columns that have it.
constexpr RunInterpolation kRunInterpolations[2][2] = {
    {&InterpolateRun<LineColour::Red, 0>, &InterpolateRun<LineColour::Red, 1>},
    {&InterpolateRun<LineColour::Blue, 0>, &InterpolateRun<LineColour::Blue, 1>},
};

template <const RedParity& Red>
void ReadBayer(const LineSource& aSource, SampleReader aSamples, std::uint32_t aLine, std::uint32_t aFirst,
               std::uint32_t aCount, DeepPixel* aPixels) {
  if (IsThin(aSource)) {
    const auto sampleAt = [&](std::uint32_t aX, std::uint32_t aY) {
      return ReadSample(aSamples, aSource.GetLine(aY), aX);
    };
    for (std::uint32_t i = 0; i < aCount; ++i)
      InterpolateThinPixel(aSource, Red, aFirst + i, aLine, sampleAt, aPixels[i]);
    return;
  }
  const BayerRun above(aSource, aSamples, GetPrevious(aLine), aFirst, aCount);
  const BayerRun here(aSource, aSamples, aLine, aFirst, aCount);
  const BayerRun below(aSource, aSamples, GetNext(aLine, aSource.height), aFirst, aCount);
  const LineParity parity = GetLineParity(Red, aLine);
  kRunInterpolations[parity.isRed ? 0 : 1][parity.colourColumn](above, here, below, aCount, aPixels);
}

struct LayoutRow {
  KrPixelLayout layout;
  DeepReader read;
};

constexpr std::array kLayouts = {
    LayoutRow{KrPixelLayout::BayerGR, &ReadBayer<kParityGR>}, LayoutRow{KrPixelLayout::BayerRG, &ReadBayer<kParityRG>},
    LayoutRow{KrPixelLayout::BayerGB, &ReadBayer<kParityGB>}, LayoutRow{KrPixelLayout::BayerBG, &ReadBayer<kParityBG>},
    LayoutRow{KrPixelLayout::RGB, &ReadInterleaved<0, 2>},    LayoutRow{KrPixelLayout::BGR, &ReadInterleaved<2, 0>},
    LayoutRow{KrPixelLayout::RGBPlanar, &ReadPlanar},
};

} // namespace

DeepReader FindDeepReader(KrPixelLayout aLayout) {
  const auto row = std::find_if(kLayouts.begin(), kLayouts.end(),
                                [aLayout](const LayoutRow& aRow) { return aRow.layout == aLayout; });
  return row != kLayouts.end() ? row->read : nullptr;
}

} // namespace krbuffer
