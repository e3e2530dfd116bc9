// Samples of every packing, whole and by their top 8 bits, with every set of vector instructions.

#include "kernels/samplekernels.h"

#include "everyformat.h"
#include "noise.h"
#include "pixelreference.h"
#include "vectortarget.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

using krbuffer::SampleReader;
using krbuffer::TopByteReader;

using Bytes = std::vector<std::uint8_t>;
using Samples = std::vector<std::uint16_t>;

namespace {

constexpr int kMostSamples = 150;

bool IsGreyOfWords(const KrPixelTypeInfo& aFormat) {
  return aFormat.layout == KrPixelLayout::Mono && aFormat.bitsPerSample >= 10 && aFormat.bitsPerSample <= 16;
}

/// From the format's definition; signed samples with half of their range added.
Samples FindExpected(const KrPixelTypeInfo& aFormat, int aWidth, const Bytes& aLine) {
  const Bytes unpacked = PixelReference(aFormat, aWidth, 1, 0, aLine).GetUnpacked();
  const std::uint16_t flipped = aFormat.sampleKind == KrSampleKind::Signed ? 0x8000 : 0;
  Samples samples;
  for (std::size_t i = 0; i < unpacked.size(); i += 2)
    samples.push_back(static_cast<std::uint16_t>((unpacked[i] + 256 * unpacked[i + 1]) ^ flipped));
  return samples;
}

/// A line whose memory ends with it, and what a reader shall find in it.
struct Line {
  Line(const KrPixelTypeInfo& aFormat, int aWidth)
      : bytes(MakeNoise(PixelReference::GetImageBytes(aFormat, aWidth, 1, 0, 0), static_cast<std::uint32_t>(aWidth))),
        memory(std::make_unique<std::uint8_t[]>(bytes.size())), samples(FindExpected(aFormat, aWidth, bytes)) {
    std::copy(bytes.begin(), bytes.end(), memory.get());
  }

  Bytes bytes;
  std::unique_ptr<std::uint8_t[]> memory;
  Samples samples;
};

class EveryDeepFormat : public testing::TestWithParam<FormatCase> {};

} // namespace

TEST_P(EveryDeepFormat, SamplesOnEveryTarget_EqualTheReference) {
  for (int width = 1; width <= kMostSamples; ++width) {
    const Line line(GetParam().format, width);
    for (const std::int64_t target : GetVectorTargets()) {
      const VectorTargetChoice choice(target);
      const SampleReader reader = krbuffer::FindSampleReader(GetParam().format);
      for (std::size_t first = 0; first < line.samples.size(); first += 24) {
        const std::size_t count = line.samples.size() - first;
        const auto samples = std::make_unique<std::uint16_t[]>(count);

        reader(line.memory.get(), first, count, samples.get());

        ASSERT_TRUE(std::equal(samples.get(), samples.get() + count, line.samples.begin() + static_cast<int>(first)))
            << VectorTargetChoice::GetName(target) << ", " << width << " samples from " << first;
      }
    }
  }
}

TEST_P(EveryDeepFormat, TopBytesOnEveryTargetThatHasThem_EqualTheReference) {
  const unsigned shift = GetParam().format.bitsPerSample - 8u;
  std::size_t targets = 0;
  for (const std::int64_t target : GetVectorTargets()) {
    const VectorTargetChoice choice(target);
    const TopByteReader reader = krbuffer::FindTopByteReader(GetParam().format);
    targets += reader ? 1 : 0;
    for (int width = 1; reader && width <= kMostSamples; ++width) {
      const Line line(GetParam().format, width);
      const auto topBytes = std::make_unique<std::uint8_t[]>(line.samples.size());

      reader(line.memory.get(), 0, line.samples.size(), topBytes.get());

      for (std::size_t i = 0; i < line.samples.size(); ++i)
        ASSERT_EQ(topBytes[i], line.samples[i] >> shift) << VectorTargetChoice::GetName(target) << ", " << width;
    }
  }

  // All but the one without vectors.
  EXPECT_EQ(targets + 1, GetVectorTargets().size());
}

INSTANTIATE_TEST_SUITE_P(SampleKernels, EveryDeepFormat, testing::ValuesIn(SelectFormats(IsGreyOfWords)),
                         [](const testing::TestParamInfo<FormatCase>& aInfo) {
                           return std::string(aInfo.param.format.name);
                         });
