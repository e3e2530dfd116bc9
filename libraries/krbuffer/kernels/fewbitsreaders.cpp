#include "kernels/fewbitsreaders.h"

#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/fewbitsreaders.cpp"
#include <hwy/foreach_target.h>

#include "kernels/linesteps.h"

HWY_BEFORE_NAMESPACE();

namespace krbuffer::HWY_NAMESPACE {

namespace {

/// How the samples of a step come to the second byte of their pixels' words, as tables for the longest vectors; shorter
/// ones take the tables in pieces.
template <unsigned Bits>
struct StepTables {
  static constexpr std::size_t kPixels = 16;
  static constexpr std::uint8_t kNoByte = 0x80;

  alignas(64) std::array<std::uint8_t, kBgraBytes * kPixels> moves{};
  alignas(64) std::array<std::uint16_t, 2 * kPixels> factors{};

  constexpr StepTables() {
    moves.fill(kNoByte);
    for (std::size_t x = 0; x < kPixels; ++x) {
      moves[kBgraBytes * x] = static_cast<std::uint8_t>(Bits * x / 8);
      factors[2 * x] = static_cast<std::uint16_t>(1u << (8 - Bits * x % 8));
    }
  }
};

/// Samples one after the other, the first in the lowest bits.
template <unsigned Bits>
class FewBitsKernel {
public:
  static constexpr std::size_t kGroup = 8 / Bits;

  FewBitsKernel(const LineSource& aSource, std::uint32_t aLine, const FewBitsTable& aTable)
      : mLine(aSource.GetLine(aLine)), mWidth(aSource.width), mTable(aTable) {}

  HWY_INLINE void WritePixel(std::size_t aX, std::uint8_t* aBgra) const {
    StoreGrey(aBgra, mTable[(mLine[aX * Bits / 8] >> (aX * Bits % 8)) & kMask]);
  }

#if HWY_TARGET != HWY_SCALAR
  static HWY_INLINE std::size_t GetStepPixels() {
    return StepTables<Bits>::kPixels;
  }
  /// A step reads no byte but those of its own pixels.
  HWY_INLINE StepRange GetStepRange() const {
    return {0, mWidth / kGroup * kGroup};
  }

  template <Placement Place>
  HWY_INLINE void Step(std::size_t aX, std::uint8_t* aBgra) const {
    std::uint64_t samples = 0;
    std::memcpy(&samples, mLine + aX * Bits / 8, StepTables<Bits>::kPixels * Bits / 8);
    const PixelByteTag bytes;
    const auto source = hn::BitCast(bytes, hn::Set(hn::Repartition<std::uint64_t, PixelTag>(), samples));
    const std::size_t vectorBytes = hn::Lanes(bytes);
    for (std::size_t place = 0; place < kBgraBytes * StepTables<Bits>::kPixels; place += vectorBytes)
      StorePixels<Place>(MakePixels(source, place), aBgra + place);
  }

private:
  /// The pixels that lie at a place, in bytes, of the step.
  HWY_INLINE PixelVector MakePixels(ByteVector aSource, std::size_t aPlace) const {
    using PairTag = hn::Repartition<std::uint16_t, PixelTag>;
    // The second byte of each pixel to all colours; what alpha gets from the table is covered.
    HWY_ALIGN static constexpr std::uint8_t kSpread[16] = {1, 1, 1, 3, 5, 5, 5, 7, 9, 9, 9, 11, 13, 13, 13, 15};
    const PixelByteTag bytes;
    const PairTag pairs;
    const auto moved = hn::TableLookupBytesOr0(aSource, hn::LoadU(bytes, kTables.moves.data() + aPlace));
    const auto factors = hn::LoadU(pairs, kTables.factors.data() + aPlace / sizeof(std::uint16_t));
    const auto products = hn::Mul(hn::BitCast(pairs, moved), factors);
    const auto samples = hn::And(products, hn::Set(pairs, static_cast<std::uint16_t>(kMask << 8)));
    const auto spread = hn::TableLookupBytes(hn::BitCast(bytes, samples), hn::LoadDup128(bytes, kSpread));
    const auto shown = hn::TableLookupBytes(hn::LoadDup128(bytes, mTable.data()), spread);
    return MakeOpaque(hn::BitCast(PixelTag(), shown));
  }

  static constexpr StepTables<Bits> kTables{};
#endif

private:
  static constexpr unsigned kMask = (1u << Bits) - 1;

  const std::uint8_t* mLine;
  std::size_t mWidth;
  alignas(16) FewBitsTable mTable;
};

template <unsigned Bits>
void ReadBy(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra, StoreKind aStores,
            const FewBitsTable& aTable) {
  WriteLine(FewBitsKernel<Bits>(aSource, aLine, aTable), aSource.width, aBgra, aStores);
}

FewBitsReader FindReaderOfTarget(unsigned aBits) {
  switch (aBits) {
  case 1:
    return &ReadBy<1>;
  case 2:
    return &ReadBy<2>;
  case 4:
    return &ReadBy<4>;
  default:
    return nullptr;
  }
}

} // namespace

} // namespace krbuffer::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace krbuffer {

HWY_EXPORT(FindReaderOfTarget);

FewBitsReader FindFewBitsReader(const KrPixelTypeInfo& aFormat) {
  if (aFormat.layout != KrPixelLayout::Mono || aFormat.packing != KrPixelPacking::LsbFirst)
    return nullptr;
  return HWY_DYNAMIC_DISPATCH(FindReaderOfTarget)(aFormat.bitsPerSample);
}

} // namespace krbuffer

#endif
