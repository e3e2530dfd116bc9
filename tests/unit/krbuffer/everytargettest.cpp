// Conversion to BGRa8 of every format with every set of vector instructions, line by line: equal to the reference, and
// without touching a byte that is not the line's.

#include "everyformat.h"
#include "guardedmemory.h"
#include "imagelayout.h"
#include "kernels/linestores.h"
#include "krbuffer/krbufferconverter.h"
#include "lineconverter.h"
#include "noise.h"
#include "pixelreaders.h"
#include "pixelreference.h"
#include "tonestore.h"
#include "vectortarget.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <set>

using krbuffer::LineConverter;
using krbuffer::LineSource;
using krbuffer::StoreKind;

using Bytes = std::vector<std::uint8_t>;

namespace {

constexpr int kMostWidth = 70;
constexpr int kMostHeight = 4;
constexpr std::size_t kBgraBytes = 4;
constexpr std::uint8_t kGuard = GuardedMemory::kGuard;

/// An image of noise that ends so many bytes before its memory does.
struct NoiseImage {
  NoiseImage(const KrPixelTypeInfo& aFormat, int aWidth, int aHeight, std::size_t aDistance)
      : format(aFormat), content(MakeNoise(PixelReference::GetImageBytes(aFormat, aWidth, aHeight, 0, 0),
                                           static_cast<std::uint32_t>(31 * aWidth + aHeight))),
        memory(aDistance, content.size()) {
    std::copy(content.begin(), content.end(), memory.GetContent());
    const krbuffer::ImageShape shape{static_cast<std::uint32_t>(aWidth), static_cast<std::uint32_t>(aHeight),
                                     aFormat.type};
    source = {memory.GetContent(), static_cast<std::size_t>(krbuffer::GetStrideBytes(shape)), shape.width,
              shape.height};
  }

  std::unique_ptr<LineConverter> MakeConverter() const {
    krbuffer::ToneStore tones;
    return krbuffer::MakeLineConverter(source, format.type, KrPixel::BGRa8, tones);
  }

  KrPixelTypeInfo format;
  Bytes content;
  GuardedMemory memory;
  LineSource source;
};

/// Each line is written into memory of its own, so that one that is too long is not mended by the next one.
Bytes ConvertLines(const LineConverter& aConverter, StoreKind aStores, std::size_t aDistance) {
  Bytes all;
  for (std::uint32_t y = 0; y < aConverter.GetSource().height; ++y) {
    const GuardedMemory line(aDistance, kBgraBytes * aConverter.GetSource().width);
    aConverter.ConvertLine(y, line.GetContent(), aStores);
    all.insert(all.end(), line.GetContent(), line.GetContent() + line.bytes);
    EXPECT_THAT(line.GetGuard(), testing::Each(kGuard)) << "around line " << y;
  }
  return all;
}

bool IsSupported(const KrPixelTypeInfo& aFormat) {
  return krbuffer::CanConvertLines(aFormat.type, KrPixel::BGRa8);
}

void ExpectReferenceOnAllTargets(const KrPixelTypeInfo& aFormat, int aWidth, int aHeight, std::size_t aSourceDistance,
                                 std::size_t aDestinationDistance) {
  const NoiseImage image(aFormat, aWidth, aHeight, aSourceDistance);
  const Bytes expected = PixelReference(aFormat, aWidth, aHeight, 0, image.content).GetBgra();
  for (const std::int64_t target : GetVectorTargets()) {
    const VectorTargetChoice choice(target);
    const std::unique_ptr<LineConverter> converter = image.MakeConverter();
    for (const StoreKind stores : {StoreKind::Cached, StoreKind::Streaming})
      ASSERT_EQ(ConvertLines(*converter, stores, aDestinationDistance), expected)
          << aWidth << " x " << aHeight << ", " << VectorTargetChoice::GetName(target)
          << (stores == StoreKind::Streaming ? ", streaming" : "") << ", destination " << aDestinationDistance
          << " bytes before the end";
  }
}

class EveryFormatOnEveryTarget : public testing::TestWithParam<FormatCase> {};

} // namespace

TEST(VectorTargets, Chosen_AreRunByTheKernels) {
  for (const std::int64_t target : GetVectorTargets()) {
    const VectorTargetChoice choice(target);

    EXPECT_EQ(VectorTargetChoice::AskKernel(), target) << VectorTargetChoice::GetName(target);
  }
}

TEST(VectorTargets, EachOfThem_HasAReaderOfItsOwn) {
  const KrPixelTypeInfo mono8 = *KrFindPixelType(KrPixel::Mono8);
  std::set<krbuffer::LineReader> readers;

  for (const std::int64_t target : GetVectorTargets()) {
    const VectorTargetChoice choice(target);
    readers.insert(krbuffer::FindLineReader(mono8));
  }

  EXPECT_EQ(readers.size(), GetVectorTargets().size());
}

TEST_P(EveryFormatOnEveryTarget, AllSmallSizes_EqualTheReference) {
  for (int height = 1; height <= kMostHeight; ++height)
    for (int width = 1; width <= kMostWidth; ++width)
      ExpectReferenceOnAllTargets(GetParam().format, width, height, 0, 0);
}

TEST_P(EveryFormatOnEveryTarget, AllAlignments_EqualTheReference) {
  for (const std::size_t distance : {0, 1, 2, 3, 4, 8, 12, 16, 20, 24, 28, 32, 36, 44, 48, 52, 60, 63, 64})
    ExpectReferenceOnAllTargets(GetParam().format, 203, 2, distance % 17, distance);
}

TEST_P(EveryFormatOnEveryTarget, BytesAfterALine_AreLeftAlone) {
  constexpr std::size_t kAfter = 128;
  for (const int width : {1, 15, 16, 33, 64, 67, 131}) {
    const NoiseImage image(GetParam().format, width, 2, 1);
    for (const std::int64_t target : GetVectorTargets()) {
      const VectorTargetChoice choice(target);
      const std::unique_ptr<LineConverter> converter = image.MakeConverter();
      for (const StoreKind stores : {StoreKind::Cached, StoreKind::Streaming}) {
        const std::size_t lineBytes = kBgraBytes * static_cast<std::size_t>(width);
        const GuardedMemory line(0, lineBytes + kAfter);

        converter->ConvertLine(1, line.GetContent(), stores);

        ASSERT_THAT(Bytes(line.GetContent() + lineBytes, line.GetContent() + line.bytes), testing::Each(kGuard))
            << width << ", " << VectorTargetChoice::GetName(target);
      }
    }
  }
}

TEST(LargeImages, AreWrittenPastTheCache_AndEqualAPlainLoop) {
  constexpr std::uint32_t kWidth = 4099;
  constexpr std::uint32_t kHeight = 2049;
  KrBuffer source;
  ASSERT_TRUE(source.GetImage()->Alloc(kWidth, kHeight, KrPixel::Mono8).IsOK());
  const Bytes noise = MakeNoise(source.GetSize());
  std::copy(noise.begin(), noise.end(), source.GetDataPointer());
  ASSERT_EQ(krbuffer::ChooseStores(kBgraBytes * noise.size()), StoreKind::Streaming);

  for (const int threads : {1, 3}) {
    KrBuffer destination;
    ASSERT_TRUE(KrBufferConverter(threads).Convert(source.GetImage(), &destination, true, false).IsOK());

    const std::uint8_t* pixel = destination.GetDataPointer();
    const bool isEqual = std::all_of(noise.begin(), noise.end(), [&pixel](std::uint8_t aGrey) {
      const bool isRight = pixel[0] == aGrey && pixel[1] == aGrey && pixel[2] == aGrey && pixel[3] == 255;
      pixel += kBgraBytes;
      return isRight;
    });
    EXPECT_TRUE(isEqual) << threads << " threads";
  }
}

TEST(LargeImages, SmallerThanCaches_AreNotWrittenPastThem) {
  EXPECT_EQ(krbuffer::ChooseStores(1920 * 1080 * kBgraBytes), StoreKind::Cached);
}

INSTANTIATE_TEST_SUITE_P(Format, EveryFormatOnEveryTarget, testing::ValuesIn(SelectFormats(IsSupported)),
                         [](const testing::TestParamInfo<FormatCase>& aInfo) {
                           return std::string(aInfo.param.format.name);
                         });
