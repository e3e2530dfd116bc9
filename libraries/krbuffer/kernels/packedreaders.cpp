#include "kernels/packedreaders.h"

#include "kernels/gathertables.h"
#include "kernels/readertable.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/packedreaders.cpp"
#include <hwy/foreach_target.h>

#include "kernels/linesteps.h"

HWY_BEFORE_NAMESPACE();

namespace krbuffer::HWY_NAMESPACE {

namespace {

/// Samples that lie one after the other, least significant bit first. The top 8 bits of one lie in two bytes that
/// follow each other.
template <unsigned Bits>
struct LsbFirst {
  static constexpr std::size_t kBitsPerPixel = Bits;
  static constexpr std::size_t kGroup = Bits % 4 == 0 ? 2 : 4;

  static constexpr std::size_t GetFirstBit(std::size_t aX) { return Bits * aX + Bits - 8; }
  static constexpr int FindByte(std::size_t aX, std::size_t aByte) {
    return aByte < 2 ? static_cast<int>(GetFirstBit(aX) / 8 + aByte) : -1;
  }
  /// What brings the sample's top 8 bits to the top of the two bytes.
  static constexpr std::uint16_t GetFactor(std::size_t aX) {
    return static_cast<std::uint16_t>(1u << (8 - GetFirstBit(aX) % 8));
  }
  static HWY_INLINE void WritePixel(const std::uint8_t* aLine, std::size_t aX, std::uint8_t* aBgra) {
    const std::uint8_t* bytes = aLine + GetFirstBit(aX) / 8;
    const std::size_t shift = GetFirstBit(aX) % 8;
    const std::uint32_t upper = shift != 0 ? std::uint32_t{bytes[1]} << 8 : 0;
    StoreGrey(aBgra, ((bytes[0] | upper) >> shift) & 0xFFu);
  }
};

/// Two samples in three bytes, of which the first and the last are their top 8 bits.
struct GigEPacked {
  static constexpr std::size_t kBitsPerPixel = 12;
  static constexpr std::size_t kGroup = 2;

  static constexpr int FindByte(std::size_t aX, std::size_t aByte) {
    return aByte < 3 ? static_cast<int>(aX / 2 * 3 + aX % 2 * 2) : -1;
  }
  static HWY_INLINE void WritePixel(const std::uint8_t* aLine, std::size_t aX, std::uint8_t* aBgra) {
    StoreGrey(aBgra, aLine[aX / 2 * 3 + aX % 2 * 2]);
  }
};

/// Red, green and blue in bytes of their own, the first one at the lowest place.
template <bool IsRedFirst>
struct ThreeBytes {
  static constexpr std::size_t kBitsPerPixel = 24;
  static constexpr std::size_t kGroup = 1;

  static constexpr int FindByte(std::size_t aX, std::size_t aByte) {
    return aByte < 3 ? static_cast<int>(3 * aX + (IsRedFirst ? 2 - aByte : aByte)) : -1;
  }
  static HWY_INLINE void WritePixel(const std::uint8_t* aLine, std::size_t aX, std::uint8_t* aBgra) {
    const std::uint8_t* pixel = aLine + 3 * aX;
    StoreBgra(aBgra, pixel[IsRedFirst ? 2 : 0], pixel[1], pixel[IsRedFirst ? 0 : 2], kOpaque);
  }
};

#if HWY_TARGET != HWY_SCALAR

/// Brings the bytes of a vector of pixels together; made once for a line.
template <typename Format>
class ByteGatherer {
public:
  HWY_INLINE ByteGatherer()
      : mWords(hn::SetTableIndices(PixelTag(), kTables.words.data())),
        mBytes(hn::Load(PixelByteTag(), kTables.bytes.data())) {}

  /// Source bytes that are read at once: no more than half a vector where that is enough.
  static HWY_INLINE std::size_t GetReadBytes() { return hn::Lanes(PixelByteTag()) / (kIsHalfEnough ? 2 : 1); }

  HWY_INLINE ByteVector Gather(const std::uint8_t* aBytes) const {
    const PixelByteTag bytes;
    ByteVector read = Load(aBytes);
    if (hn::Lanes(PixelTag()) > 4)
      read = hn::BitCast(bytes, hn::TableLookupLanes(hn::BitCast(PixelTag(), read), mWords));
    return hn::TableLookupBytesOr0(read, mBytes);
  }

private:
  static constexpr GatherTables kTables = MakeGatherTables(&Format::FindByte);
  static constexpr bool kIsHalfEnough = Format::kBitsPerPixel <= 14;

  static HWY_INLINE ByteVector Load(const std::uint8_t* aBytes) {
    const PixelByteTag bytes;
    if constexpr (kIsHalfEnough)
      return hn::ZeroExtendVector(bytes, hn::LoadU(hn::Half<PixelByteTag>(), aBytes));
    else
      return hn::LoadU(bytes, aBytes);
  }

  decltype(hn::SetTableIndices(PixelTag(), static_cast<const std::uint32_t*>(nullptr))) mWords;
  ByteVector mBytes;
};

/// Pixels whose bytes stand in the source as they are.
template <typename Format>
class ByteMaker {
public:
  HWY_INLINE PixelVector Make(ByteVector aGathered) const { return MakeOpaque(hn::BitCast(PixelTag(), aGathered)); }
};

/// Pixels that are to be cut out of the two bytes that were gathered.
template <typename Format>
class BitMaker {
public:
  HWY_INLINE BitMaker() : mFactors(MakeFactors()), mMoves(hn::LoadDup128(PixelByteTag(), kMoves)) {}
  HWY_INLINE PixelVector Make(ByteVector aGathered) const {
    const PixelByteTag bytes;
    const auto products = hn::Mul(hn::BitCast(PairTag(), aGathered), mFactors);
    return MakeOpaque(hn::BitCast(PixelTag(), hn::TableLookupBytes(hn::BitCast(bytes, products), mMoves)));
  }

private:
  using PairTag = hn::Repartition<std::uint16_t, PixelTag>;

  /// The second byte of each pixel goes to all colours, and one that is 0 to alpha.
  HWY_ALIGN static constexpr std::uint8_t kMoves[16] = {1, 1, 1, 3, 5, 5, 5, 7, 9, 9, 9, 11, 13, 13, 13, 15};

  static HWY_INLINE auto MakeFactors() {
    HWY_ALIGN std::uint16_t factors[2 * kMostVectorPixels] = {};
    for (std::size_t x = 0; x < kMostVectorPixels; ++x)
      factors[2 * x] = Format::GetFactor(x);
    return hn::Load(PairTag(), factors);
  }

  hn::Vec<PairTag> mFactors;
  ByteVector mMoves;
};

template <typename Format>
struct MakerOf {
  using Type = ByteMaker<Format>;
};
template <unsigned Bits>
struct MakerOf<LsbFirst<Bits>> {
  using Type = BitMaker<LsbFirst<Bits>>;
};

#endif // HWY_TARGET != HWY_SCALAR

template <typename Format>
class PackedKernel {
public:
  static constexpr std::size_t kGroup = Format::kGroup;

  HWY_INLINE PackedKernel(const LineSource& aSource, std::uint32_t aLine)
      : mLine(aSource.GetLine(aLine)), mWidth(aSource.width) {}

  HWY_INLINE void WritePixel(std::size_t aX, std::uint8_t* aBgra) const { Format::WritePixel(mLine, aX, aBgra); }

#if HWY_TARGET != HWY_SCALAR
  static HWY_INLINE std::size_t GetStepPixels() {
    return hn::Lanes(PixelTag());
  }
  HWY_INLINE StepRange GetStepRange() const {
    constexpr std::size_t kGroupBytes = kGroup * Format::kBitsPerPixel / 8;
    const std::size_t lineBytes = (mWidth * Format::kBitsPerPixel + 7) / 8;
    const std::size_t readBytes = ByteGatherer<Format>::GetReadBytes();
    if (mWidth < GetStepPixels() || lineBytes < readBytes)
      return {0, 0};
    const std::size_t lastGroup = HWY_MIN((mWidth - GetStepPixels()) / kGroup, (lineBytes - readBytes) / kGroupBytes);
    return {0, lastGroup * kGroup + GetStepPixels()};
  }
  template <Placement Place>
  HWY_INLINE void Step(std::size_t aX, std::uint8_t* aBgra) const {
    StorePixels<Place>(mMaker.Make(mGatherer.Gather(mLine + aX * Format::kBitsPerPixel / 8)), aBgra);
  }

private:
  ByteGatherer<Format> mGatherer;
  typename MakerOf<Format>::Type mMaker;
#endif

private:
  const std::uint8_t* mLine;
  std::size_t mWidth;
};

template <typename Format>
void ReadBy(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra, StoreKind aStores) {
  WriteLine(PackedKernel<Format>(aSource, aLine), aSource.width, aBgra, aStores);
}

LineReader FindReaderOfTarget(const KrPixelTypeInfo& aFormat) {
  using Layout = KrPixelLayout;
  using Packing = KrPixelPacking;
  static constexpr std::array kReaders = {
      ReaderRow{Layout::Mono, Packing::LsbFirst, 10, &ReadBy<LsbFirst<10>>},
      ReaderRow{Layout::Mono, Packing::LsbFirst, 12, &ReadBy<LsbFirst<12>>},
      ReaderRow{Layout::Mono, Packing::LsbFirst, 14, &ReadBy<LsbFirst<14>>},
      ReaderRow{Layout::Mono, Packing::GigE, 10, &ReadBy<GigEPacked>},
      ReaderRow{Layout::Mono, Packing::GigE, 12, &ReadBy<GigEPacked>},
      ReaderRow{Layout::RGB, Packing::Words, 8, &ReadBy<ThreeBytes<true>>},
      ReaderRow{Layout::BGR, Packing::Words, 8, &ReadBy<ThreeBytes<false>>},
  };
  return FindReader(kReaders, aFormat);
}

} // namespace

} // namespace krbuffer::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace krbuffer {

HWY_EXPORT(FindReaderOfTarget);

LineReader FindPackedReader(const KrPixelTypeInfo& aFormat) {
  return HWY_DYNAMIC_DISPATCH(FindReaderOfTarget)(aFormat);
}

} // namespace krbuffer

#endif
