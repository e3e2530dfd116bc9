// How kernels of colours write them where they have them in words, and lines down to a single pixel without reading or
// writing beyond them.

#include "kernels/linesteps.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

// Included once for each target, as Highway has it, and so without #pragma once.
#if defined(KRBUFFER_COLOURSTORES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef KRBUFFER_COLOURSTORES_INL_H
#undef KRBUFFER_COLOURSTORES_INL_H
#else
#define KRBUFFER_COLOURSTORES_INL_H
#endif

HWY_BEFORE_NAMESPACE();

namespace krbuffer::HWY_NAMESPACE {

#if HWY_TARGET != HWY_SCALAR

using PairTag = hn::Repartition<std::uint16_t, PixelTag>;
using PairVector = hn::Vec<PairTag>;

/// What BlockSpreader is to bytes: sorts the halves of blocks so that interleaving two vectors of words leaves them in
/// their order.
class PairSpreader {
  static constexpr std::size_t kWordsOfBlock = 4;
  static constexpr std::size_t kWordsOfHalf = 2;

  static HWY_INLINE auto MakeIndices() {
    const PixelTag words;
    const std::size_t blocks = HWY_MAX(hn::Lanes(words) / kWordsOfBlock, std::size_t{1});
    HWY_ALIGN std::uint32_t indices[kMostVectorBytes / sizeof(std::uint32_t)] = {};
    for (std::size_t i = 0; i < hn::Lanes(words); ++i) {
      const std::size_t half = i / kWordsOfBlock + i % kWordsOfBlock / kWordsOfHalf * blocks;
      indices[i] = static_cast<std::uint32_t>(half * kWordsOfHalf + i % kWordsOfHalf);
    }
    return hn::SetTableIndices(words, indices);
  }

public:
  HWY_INLINE PairSpreader() : mIndices(MakeIndices()) {}
  template <typename Vector>
  HWY_INLINE Vector Spread(Vector aVector) const {
    const PixelTag words;
    if (hn::Lanes(words) <= kWordsOfBlock)
      return aVector;
    return hn::BitCast(hn::DFromV<Vector>(), hn::TableLookupLanes(hn::BitCast(words, aVector), mIndices));
  }

private:
  decltype(hn::SetTableIndices(PixelTag(), static_cast<const std::uint32_t*>(nullptr))) mIndices;
};

/// Writes as many opaque pixels as vectors of words have lanes, two vectors of pixels. A word holds blue and green, or
/// red; the words are in the order of PairSpreader.
template <Placement Place>
HWY_INLINE void StoreSpreadPairs(PairVector aBlueAndGreen, PairVector aRed, std::uint8_t* aBgra) {
  const PairTag pairs;
  const PixelTag pixels;
  const PairVector redAndAlpha = hn::Or(aRed, hn::Set(pairs, static_cast<std::uint16_t>(kOpaque << 8)));
  StorePixels<Place>(hn::BitCast(pixels, hn::InterleaveLower(pairs, aBlueAndGreen, redAndAlpha)), aBgra);
  StorePixels<Place>(hn::BitCast(pixels, hn::InterleaveUpper(pairs, aBlueAndGreen, redAndAlpha)),
                     aBgra + hn::Lanes(PixelByteTag()));
}

/// The same with words of each colour, up to 255, in the order of the pixels.
template <Placement Place>
HWY_INLINE void StoreColourPairs(const PairSpreader& aSpreader, PairVector aBlue, PairVector aGreen, PairVector aRed,
                                 std::uint8_t* aBgra) {
  const PairVector blueAndGreen = hn::Or(aBlue, hn::ShiftLeft<8>(aGreen));
  StoreSpreadPairs<Place>(aSpreader.Spread(blueAndGreen), aSpreader.Spread(aRed), aBgra);
}

/// Writes a line by a kernel as WriteLine does, but for kernels whose first step may read and write beyond any line:
/// they need no WritePixel and no GetStepRange.
template <typename Kernel>
void WriteWholeLine(const Kernel& aKernel, std::size_t aWidth, std::uint8_t* aBgra, StoreKind aStores) {
  if (aWidth >= aKernel.GetStepPixels()) {
    WriteRange(aKernel, {0, aWidth}, aBgra, aStores);
    return;
  }
  std::uint8_t pixels[kBgraBytes * kMostVectorBytes];
  WriteSteps<Placement::Anywhere>(aKernel, 0, aKernel.GetStepPixels(), pixels);
  std::memcpy(aBgra, pixels, kBgraBytes * aWidth);
}

#endif // HWY_TARGET != HWY_SCALAR

} // namespace krbuffer::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#endif // per-target include guard
