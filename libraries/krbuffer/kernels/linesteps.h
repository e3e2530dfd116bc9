// How kernels write a line, once for each set of vector instructions: in steps of whole vectors, where the destination
// allows it aligned or past the cache, and what is left over pixel by pixel. No byte outside the line is touched.
// What a step makes of the source is the kernels' business.

#include "bgrapixel.h"
#include "linesource.h"

#include <hwy/cache_control.h>
#include <hwy/highway.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

// Included once for each target, as Highway has it, and so without #pragma once.
#if defined(KRBUFFER_LINESTEPS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef KRBUFFER_LINESTEPS_INL_H
#undef KRBUFFER_LINESTEPS_INL_H
#else
#define KRBUFFER_LINESTEPS_INL_H
#endif

HWY_BEFORE_NAMESPACE();

namespace krbuffer::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

/// The pixels of a line that steps may write. Steps begin at the first one plus multiples of the kernel's group, and
/// they end at or before the end, which is such a place too.
struct StepRange {
  std::size_t first;
  std::size_t end;
};

#if HWY_TARGET != HWY_SCALAR

/// Pixels as words; no target's vectors are longer than 64 bytes here, so that tables have a length.
using PixelTag = hn::CappedTag<std::uint32_t, 16>;
using PixelByteTag = hn::Repartition<std::uint8_t, PixelTag>;
using PixelVector = hn::Vec<PixelTag>;
inline constexpr std::size_t kMostVectorBytes = 64;
inline constexpr std::size_t kMostStepBytes = 8 * kMostVectorBytes;
inline constexpr std::size_t kCacheLineBytes = 64;

/// What is known of the place that a vector is stored to.
enum class Placement { Anywhere, Aligned, Streamed };

/// Writes a vector of pixels; Placement::Streamed takes the alignment of a vector too.
template <Placement Place>
HWY_INLINE void StorePixels(PixelVector aPixels, std::uint8_t* aBgra) {
  const PixelByteTag bytes;
  const auto vector = hn::BitCast(bytes, aPixels);
  if constexpr (Place == Placement::Streamed)
    hn::Stream(vector, bytes, aBgra);
  else if constexpr (Place == Placement::Aligned)
    hn::Store(vector, bytes, aBgra);
  else
    hn::StoreU(vector, bytes, aBgra);
}

/// Makes pixels opaque whose alpha is 0.
HWY_INLINE PixelVector MakeOpaque(PixelVector aPixels) {
  return hn::Or(aPixels, hn::Set(PixelTag(), kOpaque << 24));
}

/// Writes as many steps as there are from aX on, whose first pixel goes to aPixel, and returns where the next one would
/// begin. Steps are compiled nowhere else: inlined wherever a line begins and ends, they take the compiler minutes.
template <Placement Place, typename Kernel>
HWY_NOINLINE std::size_t WriteSteps(const Kernel& aKernel, std::size_t aX, std::size_t aEnd, std::uint8_t* aPixel) {
  // What is stored could be the caller's kernel, for all that the compiler knows, but not this one.
  const Kernel kernel = aKernel;
  const std::size_t step = kernel.GetStepPixels();
  for (; aX + step <= aEnd; aX += step, aPixel += kBgraBytes * step)
    kernel.template Step<Place>(aX, aPixel);
  return aX;
}

/// Pixels from a place in the destination to the next one that is a multiple of some bytes, a power of two; no such
/// number where the place is not at a whole word.
struct Distance {
  std::size_t pixels;
  bool isWhole;
};

HWY_INLINE Distance FindDistance(const std::uint8_t* aBgra, std::size_t aMultiple) {
  const std::size_t bytes = (~reinterpret_cast<std::uintptr_t>(aBgra) + 1) & (aMultiple - 1);
  return {bytes / kBgraBytes, bytes % kBgraBytes == 0};
}

/// Writes some pixels of a step, which begins at aX, and nothing of the others.
template <typename Kernel>
void WritePartOfStep(const Kernel& aKernel, std::size_t aX, std::size_t aFirst, std::size_t aEnd, std::uint8_t* aBgra) {
  HWY_ALIGN std::uint8_t pixels[kMostStepBytes];
  WriteSteps<Placement::Aligned>(aKernel, aX, aX + aKernel.GetStepPixels(), pixels);
  std::memcpy(aBgra + kBgraBytes * aFirst, pixels + kBgraBytes * (aFirst - aX), kBgraBytes * (aEnd - aFirst));
}

/// The range with at least one step in it, within the cache. Its ends are written by steps that overlap the aligned
/// ones between them: a pixel that is written twice is the same both times.
template <typename Kernel>
void WriteCached(const Kernel& aKernel, StepRange aRange, std::uint8_t* aBgra) {
  const std::size_t step = aKernel.GetStepPixels();
  std::size_t x = aRange.first;
  const Distance head = FindDistance(aBgra + kBgraBytes * x, hn::Lanes(PixelByteTag()));
  if (!head.isWhole || head.pixels % Kernel::kGroup != 0) {
    x = WriteSteps<Placement::Anywhere>(aKernel, x, aRange.end, aBgra + kBgraBytes * x);
  } else {
    if (head.pixels != 0)
      WriteSteps<Placement::Anywhere>(aKernel, x, x + step, aBgra + kBgraBytes * x);
    x += head.pixels;
    x = WriteSteps<Placement::Aligned>(aKernel, x, aRange.end, aBgra + kBgraBytes * x);
  }
  const std::size_t last = aRange.end - step;
  if (x < aRange.end)
    WriteSteps<Placement::Anywhere>(aKernel, last, aRange.end, aBgra + kBgraBytes * last);
}

/// The same past the cache, by whole lines of the cache. What is left over at both ends overlaps none of them: storing
/// in both ways to the same line takes longer than all else.
template <typename Kernel>
void WriteStreaming(const Kernel& aKernel, StepRange aRange, std::uint8_t* aBgra) {
  const std::size_t step = aKernel.GetStepPixels();
  const std::size_t unit = HWY_MAX(step, kCacheLineBytes / kBgraBytes);
  const Distance head = FindDistance(aBgra + kBgraBytes * aRange.first, kCacheLineBytes);
  const std::size_t first = aRange.first + head.pixels;
  if (!head.isWhole || head.pixels % Kernel::kGroup != 0 || first + unit > aRange.end) {
    WriteCached(aKernel, aRange, aBgra);
    return;
  }
  const std::size_t beforeFirst =
      WriteSteps<Placement::Anywhere>(aKernel, aRange.first, first, aBgra + kBgraBytes * aRange.first);
  if (beforeFirst < first)
    WritePartOfStep(aKernel, beforeFirst, beforeFirst, first, aBgra);
  const std::size_t end = first + (aRange.end - first) / unit * unit;
  WriteSteps<Placement::Streamed>(aKernel, first, end, aBgra + kBgraBytes * first);
  const std::size_t afterSteps = WriteSteps<Placement::Anywhere>(aKernel, end, aRange.end, aBgra + kBgraBytes * end);
  if (afterSteps < aRange.end)
    WritePartOfStep(aKernel, aRange.end - step, afterSteps, aRange.end, aBgra);
}

/// The range with at least one step in it, in the way that is wanted.
template <typename Kernel>
void WriteRange(const Kernel& aKernel, StepRange aRange, std::uint8_t* aBgra, StoreKind aStores) {
  if (aStores == StoreKind::Streaming)
    WriteStreaming(aKernel, aRange, aBgra);
  else
    WriteCached(aKernel, aRange, aBgra);
}

using ByteVector = hn::Vec<PixelByteTag>;

/// Sorts the words of a vector of bytes so that the interleaving of blocks, which knows no way from one block of 16
/// bytes to another, leaves the bytes in their order. Made once for a line.
class BlockSpreader {
public:
  HWY_INLINE BlockSpreader() : mIndices(MakeIndices()) {}

  HWY_INLINE ByteVector Spread(ByteVector aBytes) const {
    const PixelTag words;
    if (hn::Lanes(words) <= kWordsOfBlock)
      return aBytes;
    return hn::BitCast(PixelByteTag(), hn::TableLookupLanes(hn::BitCast(words, aBytes), mIndices));
  }

private:
  using Indices = decltype(hn::SetTableIndices(PixelTag(), static_cast<const std::uint32_t*>(nullptr)));

  static constexpr std::size_t kWordsOfBlock = 4;

  static HWY_INLINE Indices MakeIndices() {
    const PixelTag words;
    const std::size_t blocks = HWY_MAX(hn::Lanes(words) / kWordsOfBlock, std::size_t{1});
    HWY_ALIGN std::uint32_t indices[kMostVectorBytes / sizeof(std::uint32_t)] = {};
    for (std::size_t i = 0; i < hn::Lanes(words); ++i)
      indices[i] = static_cast<std::uint32_t>(i / kWordsOfBlock + i % kWordsOfBlock * blocks);
    return hn::SetTableIndices(words, indices);
  }

  Indices mIndices;
};

/// Writes as many opaque pixels as vectors of bytes have lanes, four vectors of pixels.
template <Placement Place>
HWY_INLINE void StoreColours(const BlockSpreader& aSpreader, ByteVector aBlue, ByteVector aGreen, ByteVector aRed,
                             std::uint8_t* aBgra) {
  const PixelByteTag bytes;
  const hn::Repartition<std::uint16_t, PixelTag> pairs;
  const PixelTag pixels;
  const auto blue = aSpreader.Spread(aBlue);
  const auto green = aSpreader.Spread(aGreen);
  const auto red = aSpreader.Spread(aRed);
  const auto alpha = hn::Set(bytes, static_cast<std::uint8_t>(kOpaque));
  const auto lowerStart = hn::BitCast(pairs, hn::InterleaveLower(bytes, blue, green));
  const auto lowerEnd = hn::BitCast(pairs, hn::InterleaveLower(bytes, red, alpha));
  const auto upperStart = hn::BitCast(pairs, hn::InterleaveUpper(bytes, blue, green));
  const auto upperEnd = hn::BitCast(pairs, hn::InterleaveUpper(bytes, red, alpha));
  const std::size_t vectorBytes = hn::Lanes(bytes);
  StorePixels<Place>(hn::BitCast(pixels, hn::InterleaveLower(pairs, lowerStart, lowerEnd)), aBgra);
  StorePixels<Place>(hn::BitCast(pixels, hn::InterleaveUpper(pairs, lowerStart, lowerEnd)), aBgra + vectorBytes);
  StorePixels<Place>(hn::BitCast(pixels, hn::InterleaveLower(pairs, upperStart, upperEnd)), aBgra + 2 * vectorBytes);
  StorePixels<Place>(hn::BitCast(pixels, hn::InterleaveUpper(pairs, upperStart, upperEnd)), aBgra + 3 * vectorBytes);
}

#endif // HWY_TARGET != HWY_SCALAR

/// Writes a line by a kernel, which has
///   kGroup                          pixels after which the source is on a whole byte, or in the same phase, again;
///   WritePixel(aX, aBgra)           writes one pixel, without vectors;
/// and, on all targets but HWY_SCALAR, which has none of the operations that move bytes within vectors,
///   GetStepPixels()                 pixels of a step, a power of two, at least kGroup and a vector, at most 8 vectors;
///   GetStepRange()                  the pixels for which a step does not read beyond the line;
///   Step<Placement>(aX, aBgra)      writes one step, each vector of it by StorePixels<Placement>.
template <typename Kernel>
HWY_INLINE void WriteLine(const Kernel& aKernel, std::size_t aWidth, std::uint8_t* aBgra,
                          [[maybe_unused]] StoreKind aStores) {
  std::size_t x = 0;
#if HWY_TARGET != HWY_SCALAR
  const StepRange range = aKernel.GetStepRange();
  if (range.first + aKernel.GetStepPixels() <= range.end) {
    for (; x < range.first; ++x)
      aKernel.WritePixel(x, aBgra + kBgraBytes * x);
    WriteRange(aKernel, range, aBgra, aStores);
    x = range.end;
  }
#endif
  for (; x < aWidth; ++x)
    aKernel.WritePixel(x, aBgra + kBgraBytes * x);
}

} // namespace krbuffer::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#endif // per-target include guard
