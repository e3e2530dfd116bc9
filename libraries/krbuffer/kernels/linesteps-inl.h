// How kernels write a line, once for each set of vector instructions: in steps of whole vectors, where the destination
// allows it aligned or past the cache, and what is left over pixel by pixel. No byte outside the line is touched.
// What a step makes of the source is the kernels' business.

#include "bgrapixel.h"
#include "linesource.h"

#include <hwy/cache_control.h>
#include <hwy/highway.h>

#include <cstddef>
#include <cstdint>

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

/// Pixels from a place in the destination to the next one with a vector's alignment; less than a vector's. Nothing
/// aligns what is not even at a whole word.
HWY_INLINE bool FindAlignedPixel(const std::uint8_t* aBgra, std::size_t& aPixels) {
  const std::size_t vectorBytes = hn::Lanes(PixelByteTag());
  const std::size_t distance = (~reinterpret_cast<std::uintptr_t>(aBgra) + 1) & (vectorBytes - 1);
  aPixels = distance / kBgraBytes;
  return distance % kBgraBytes == 0;
}

/// Writes as many steps as there are from aX on and returns where the next one would begin.
template <Placement Place, typename Kernel>
HWY_INLINE std::size_t WriteSteps(const Kernel& aKernel, std::size_t aX, std::size_t aEnd, std::uint8_t* aBgra) {
  const std::size_t step = aKernel.GetStepPixels();
  for (; aX + step <= aEnd; aX += step)
    aKernel.template Step<Place>(aX, aBgra + kBgraBytes * aX);
  return aX;
}

/// The range with at least one step in it. Its ends are written by steps that overlap the aligned ones between them: a
/// pixel that is written twice is the same both times.
template <typename Kernel>
HWY_INLINE void WriteRange(const Kernel& aKernel, StepRange aRange, std::uint8_t* aBgra, StoreKind aStores) {
  std::size_t x = aRange.first;
  std::size_t head = 0;
  if (!FindAlignedPixel(aBgra + kBgraBytes * aRange.first, head) || head % Kernel::kGroup != 0) {
    x = WriteSteps<Placement::Anywhere>(aKernel, x, aRange.end, aBgra);
  } else {
    if (head != 0)
      aKernel.template Step<Placement::Anywhere>(x, aBgra + kBgraBytes * x);
    x = aStores == StoreKind::Streaming ? WriteSteps<Placement::Streamed>(aKernel, x + head, aRange.end, aBgra)
                                        : WriteSteps<Placement::Aligned>(aKernel, x + head, aRange.end, aBgra);
  }
  const std::size_t last = aRange.end - aKernel.GetStepPixels();
  if (x < aRange.end)
    aKernel.template Step<Placement::Anywhere>(last, aBgra + kBgraBytes * last);
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
///   GetStepPixels()                 pixels of a step, a multiple of kGroup and of a vector;
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
