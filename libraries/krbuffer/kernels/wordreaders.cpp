#include "kernels/wordreaders.h"

#include "kernels/readertable.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/wordreaders.cpp"
#include <hwy/foreach_target.h>

#include "kernels/linesteps.h"

HWY_BEFORE_NAMESPACE();

namespace krbuffer::HWY_NAMESPACE {

namespace {

/// Steps of one vector, wherever they begin; Derived says what one is.
template <typename Derived>
class VectorKernel {
public:
  static constexpr std::size_t kGroup = 1;

  explicit VectorKernel(std::size_t aWidth) : mWidth(aWidth) {}

#if HWY_TARGET != HWY_SCALAR
  static HWY_INLINE std::size_t GetStepPixels() {
    return hn::Lanes(PixelTag());
  }
  HWY_INLINE StepRange GetStepRange() const {
    return {0, mWidth};
  }
  template <Placement Place>
  HWY_INLINE void Step(std::size_t aX, std::uint8_t* aBgra) const {
    StorePixels<Place>(static_cast<const Derived*>(this)->ReadVector(aX), aBgra);
  }
#endif

private:
  std::size_t mWidth;
};

std::uint32_t ReadPair(const std::uint8_t* aBytes) {
  return aBytes[0] | (std::uint32_t{aBytes[1]} << 8);
}

#if HWY_TARGET != HWY_SCALAR

/// The lowest byte of each word.
HWY_INLINE PixelVector PromoteBytes(const std::uint8_t* aBytes) {
  return hn::PromoteTo(PixelTag(), hn::LoadU(hn::Rebind<std::uint8_t, PixelTag>(), aBytes));
}

HWY_INLINE auto LoadPairs(const std::uint8_t* aBytes) {
  const hn::Rebind<std::uint16_t, PixelTag> pairs;
  return hn::BitCast(pairs, hn::LoadU(hn::Repartition<std::uint8_t, decltype(pairs)>(), aBytes));
}

/// A table for moving bytes, with the same moves in each pixel.
template <std::uint8_t Blue, std::uint8_t Green, std::uint8_t Red, std::uint8_t Alpha>
HWY_INLINE PixelVector MoveBytes(PixelVector aPixels) {
  HWY_ALIGN static constexpr std::uint8_t kMoves[16] = {Blue,      Green,      Red,      Alpha,     Blue + 4, Green + 4,
                                                        Red + 4,   Alpha + 4,  Blue + 8, Green + 8, Red + 8,  Alpha + 8,
                                                        Blue + 12, Green + 12, Red + 12, Alpha + 12};
  return hn::TableLookupBytes(aPixels, hn::BitCast(PixelTag(), hn::LoadDup128(PixelByteTag(), kMoves)));
}

#endif // HWY_TARGET != HWY_SCALAR

/// One sample in a byte; Flipped is the sign bit of signed ones.
template <std::uint8_t Flipped>
class ByteKernel : public VectorKernel<ByteKernel<Flipped>> {
public:
  ByteKernel(const LineSource& aSource, std::uint32_t aLine)
      : VectorKernel<ByteKernel>(aSource.width), mSamples(aSource.GetLine(aLine)) {}

  HWY_INLINE void WritePixel(std::size_t aX, std::uint8_t* aBgra) const { StoreGrey(aBgra, mSamples[aX] ^ Flipped); }
#if HWY_TARGET != HWY_SCALAR
  HWY_INLINE PixelVector ReadVector(std::size_t aX) const {
    // The lowest byte goes to all colours, and one that is 0 to alpha.
    const PixelVector grey = MoveBytes<0, 0, 0, 3>(PromoteBytes(mSamples + aX));
    return hn::Xor(grey, hn::Set(PixelTag(), (kOpaque << 24) | (Flipped * 0x010101u)));
  }
#endif

private:
  const std::uint8_t* mSamples;
};

/// One sample in the lowest bits of two bytes, shown by its top 8 bits; bits above them are not looked at. Flipped is
/// what the sign bit adds to the byte that is shown.
template <unsigned SignificantBits, std::uint8_t Flipped>
class PairKernel : public VectorKernel<PairKernel<SignificantBits, Flipped>> {
public:
  PairKernel(const LineSource& aSource, std::uint32_t aLine)
      : VectorKernel<PairKernel>(aSource.width), mBytes(aSource.GetLine(aLine)) {}

  HWY_INLINE void WritePixel(std::size_t aX, std::uint8_t* aBgra) const {
    StoreGrey(aBgra, ((ReadPair(mBytes + 2 * aX) >> kShift) & 0xFFu) ^ Flipped);
  }
#if HWY_TARGET != HWY_SCALAR
  HWY_INLINE PixelVector ReadVector(std::size_t aX) const {
    const auto shown = hn::ShiftRight<kShift>(LoadPairs(mBytes + 2 * aX));
    const PixelVector grey = MoveBytes<0, 0, 0, 3>(hn::PromoteTo(PixelTag(), shown));
    return hn::Xor(grey, hn::Set(PixelTag(), (kOpaque << 24) | (Flipped * 0x010101u)));
  }
#endif

private:
  static constexpr int kShift = SignificantBits - 8;

  const std::uint8_t* mBytes;
};

/// Red, green and blue in planes of bytes.
class PlaneKernel : public VectorKernel<PlaneKernel> {
public:
  PlaneKernel(const LineSource& aSource, std::uint32_t aLine)
      : VectorKernel<PlaneKernel>(aSource.width), mRed(aSource.GetPlaneLine(0, aLine)),
        mGreen(aSource.GetPlaneLine(1, aLine)), mBlue(aSource.GetPlaneLine(2, aLine)) {}

  HWY_INLINE void WritePixel(std::size_t aX, std::uint8_t* aBgra) const {
    StoreBgra(aBgra, mBlue[aX], mGreen[aX], mRed[aX], kOpaque);
  }
#if HWY_TARGET != HWY_SCALAR
  HWY_INLINE PixelVector ReadVector(std::size_t aX) const {
    const PixelVector red = hn::ShiftLeft<16>(PromoteBytes(mRed + aX));
    const PixelVector green = hn::ShiftLeft<8>(PromoteBytes(mGreen + aX));
    return hn::Or(hn::Or(red, green), MakeOpaque(PromoteBytes(mBlue + aX)));
  }
#endif

private:
  const std::uint8_t* mRed;
  const std::uint8_t* mGreen;
  const std::uint8_t* mBlue;
};

/// Four components in bytes, alpha last; the first one is blue, or red.
template <bool IsRedFirst>
class FourByteKernel : public VectorKernel<FourByteKernel<IsRedFirst>> {
public:
  FourByteKernel(const LineSource& aSource, std::uint32_t aLine)
      : VectorKernel<FourByteKernel>(aSource.width), mBytes(aSource.GetLine(aLine)) {}

  HWY_INLINE void WritePixel(std::size_t aX, std::uint8_t* aBgra) const {
    const std::uint8_t* pixel = mBytes + kBgraBytes * aX;
    StoreBgra(aBgra, pixel[IsRedFirst ? 2 : 0], pixel[1], pixel[IsRedFirst ? 0 : 2], pixel[3]);
  }
#if HWY_TARGET != HWY_SCALAR
  HWY_INLINE PixelVector ReadVector(std::size_t aX) const {
    const PixelVector pixels = hn::BitCast(PixelTag(), hn::LoadU(PixelByteTag(), mBytes + kBgraBytes * aX));
    if constexpr (IsRedFirst)
      return MoveBytes<2, 1, 0, 3>(pixels);
    else
      return pixels;
  }
#endif

private:
  const std::uint8_t* mBytes;
};

/// A component of 5 or 6 bits, moved to bit 10 of a word, as the nearest byte: (aComponent * 255 + aGreatest / 2) /
/// aGreatest is the upper half of a product.
struct Widening {
  std::uint16_t offset; ///< Below bit 10.
  std::uint16_t factor;

  constexpr std::uint32_t Widen(std::uint32_t aMoved) const { return ((aMoved | offset) * factor) >> 16; }
  constexpr bool IsNearest(std::uint32_t aGreatest) const {
    for (std::uint32_t component = 0; component <= aGreatest; ++component)
      if (Widen(component << 10) != (component * 255 + aGreatest / 2) / aGreatest)
        return false;
    return true;
  }
};
inline constexpr Widening kWiden5{45, 527};
inline constexpr Widening kWiden6{132, 259};
static_assert(kWiden5.IsNearest(31) && kWiden6.IsNearest(63));
inline constexpr std::uint16_t kMoved5 = 31u << 10;
inline constexpr std::uint16_t kMoved6 = 63u << 10;

/// Components of 5, 6 and 5 bits in two bytes, the first in the lowest bits.
template <bool IsRedFirst>
class Colour565Kernel : public VectorKernel<Colour565Kernel<IsRedFirst>> {
public:
  Colour565Kernel(const LineSource& aSource, std::uint32_t aLine)
      : VectorKernel<Colour565Kernel>(aSource.width), mBytes(aSource.GetLine(aLine)) {}

  HWY_INLINE void WritePixel(std::size_t aX, std::uint8_t* aBgra) const {
    const std::uint32_t word = ReadPair(mBytes + 2 * aX);
    const std::uint32_t first = kWiden5.Widen((word << 10) & kMoved5);
    const std::uint32_t green = kWiden6.Widen((word << 5) & kMoved6);
    const std::uint32_t last = kWiden5.Widen((word >> 1) & kMoved5);
    StoreBgra(aBgra, IsRedFirst ? last : first, green, IsRedFirst ? first : last, kOpaque);
  }
#if HWY_TARGET != HWY_SCALAR
  HWY_INLINE PixelVector ReadVector(std::size_t aX) const {
    const PixelTag pixels;
    const hn::Rebind<std::uint16_t, PixelTag> pairs;
    const auto words = LoadPairs(mBytes + 2 * aX);
    const auto widen = [&pairs](auto aMoved, std::uint16_t aMask, const Widening& aWidening) {
      const auto component = hn::Or(hn::And(aMoved, hn::Set(pairs, aMask)), hn::Set(pairs, aWidening.offset));
      return hn::MulHigh(component, hn::Set(pairs, aWidening.factor));
    };
    const auto first = widen(hn::ShiftLeft<10>(words), kMoved5, kWiden5);
    const auto green = widen(hn::ShiftLeft<5>(words), kMoved6, kWiden6);
    const auto last = widen(hn::ShiftRight<1>(words), kMoved5, kWiden5);
    const auto lowHalf = hn::Or(IsRedFirst ? last : first, hn::ShiftLeft<8>(green));
    const PixelVector red = hn::ShiftLeft<16>(hn::PromoteTo(pixels, IsRedFirst ? first : last));
    return MakeOpaque(hn::Or(hn::PromoteTo(pixels, lowHalf), red));
  }
#endif

private:
  const std::uint8_t* mBytes;
};

template <typename Kernel>
void ReadBy(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra, StoreKind aStores) {
  WriteLine(Kernel(aSource, aLine), aSource.width, aBgra, aStores);
}

LineReader FindReaderOfTarget(const KrPixelTypeInfo& aFormat) {
  using Layout = KrPixelLayout;
  using Packing = KrPixelPacking;
  static constexpr std::array kReaders = {
      ReaderRow{Layout::Mono, Packing::Words, 8, &ReadBy<ByteKernel<0>>},
      ReaderRow{Layout::Mono, Packing::Words, 8, &ReadBy<ByteKernel<0x80>>, KrSampleKind::Signed},
      ReaderRow{Layout::Mono, Packing::Words, 10, &ReadBy<PairKernel<10, 0>>},
      ReaderRow{Layout::Mono, Packing::Words, 12, &ReadBy<PairKernel<12, 0>>},
      ReaderRow{Layout::Mono, Packing::Words, 14, &ReadBy<PairKernel<14, 0>>},
      ReaderRow{Layout::Mono, Packing::Words, 16, &ReadBy<PairKernel<16, 0>>},
      ReaderRow{Layout::Mono, Packing::Words, 16, &ReadBy<PairKernel<16, 0x80>>, KrSampleKind::Signed},
      ReaderRow{Layout::RGBPlanar, Packing::Words, 8, &ReadBy<PlaneKernel>},
      ReaderRow{Layout::RGBa, Packing::Words, 8, &ReadBy<FourByteKernel<true>>},
      ReaderRow{Layout::BGRa, Packing::Words, 8, &ReadBy<FourByteKernel<false>>},
      ReaderRow{Layout::RGB, Packing::LsbFirst, 6, &ReadBy<Colour565Kernel<true>>},
      ReaderRow{Layout::BGR, Packing::LsbFirst, 6, &ReadBy<Colour565Kernel<false>>},
  };
  return FindReader(kReaders, aFormat);
}

} // namespace

} // namespace krbuffer::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace krbuffer {

HWY_EXPORT(FindReaderOfTarget);

LineReader FindWordReader(const KrPixelTypeInfo& aFormat) {
  return HWY_DYNAMIC_DISPATCH(FindReaderOfTarget)(aFormat);
}

} // namespace krbuffer

#endif
