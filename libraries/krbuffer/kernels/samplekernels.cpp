#include "kernels/samplekernels.h"

#include "kernels/gathertables.h"

#include <algorithm>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/samplekernels.cpp"
#include <hwy/foreach_target.h>

#include "kernels/colourstores.h"

HWY_BEFORE_NAMESPACE();

namespace krbuffer::HWY_NAMESPACE {

namespace {

#if HWY_TARGET != HWY_SCALAR

// Each packing brings a vector of samples to the top of words; the bits below them are 0.

/// Samples in the lowest bits of words.
template <unsigned Bits>
class Words {
public:
  static constexpr std::size_t kSampleBits = 16;

  // Written out, as a generated one would not be compiled for the target.
  HWY_INLINE Words() {}
  HWY_INLINE PairVector Load(const std::uint8_t* aBytes) const {
    return hn::ShiftLeft<16 - Bits>(hn::BitCast(PairTag(), hn::LoadU(PixelByteTag(), aBytes)));
  }
};

/// Signed samples of whole words, of which the least becomes 0.
class SignedWords {
public:
  static constexpr std::size_t kSampleBits = 16;

  HWY_INLINE SignedWords() {}
  HWY_INLINE PairVector Load(const std::uint8_t* aBytes) const {
    const PairVector words = hn::BitCast(PairTag(), hn::LoadU(PixelByteTag(), aBytes));
    return hn::Xor(words, hn::Set(PairTag(), std::uint16_t{0x8000}));
  }
};

/// Moves the bytes of two samples into four, as Derived::FindByte says.
template <typename Packing>
class Moved {
public:
  HWY_INLINE Moved()
      : mWords(hn::SetTableIndices(PixelTag(), kTables.words.data())),
        mBytes(hn::Load(PixelByteTag(), kTables.bytes.data())) {}
  HWY_INLINE ByteVector Load(const std::uint8_t* aBytes) const {
    ByteVector read = hn::LoadU(PixelByteTag(), aBytes);
    if (hn::Lanes(PixelTag()) > 4)
      read = hn::BitCast(PixelByteTag(), hn::TableLookupLanes(hn::BitCast(PixelTag(), read), mWords));
    return hn::TableLookupBytes(read, mBytes);
  }

private:
  static constexpr GatherTables kTables = MakeGatherTables(&Packing::FindByte);

  decltype(hn::SetTableIndices(PixelTag(), static_cast<const std::uint32_t*>(nullptr))) mWords;
  ByteVector mBytes;
};

/// Samples one after the other, least significant bit first, each of which lies in two bytes.
template <unsigned Bits>
class LsbFirst {
public:
  static constexpr std::size_t kSampleBits = Bits;

  HWY_INLINE LsbFirst() : mFactors(MakeFactors()) {}
  HWY_INLINE PairVector Load(const std::uint8_t* aBytes) const {
    const PairVector aligned = hn::Mul(hn::BitCast(PairTag(), mMoved.Load(aBytes)), mFactors);
    return hn::And(aligned, hn::Set(PairTag(), static_cast<std::uint16_t>(0x10000u - (1u << (16 - Bits)))));
  }

  static constexpr int FindByte(std::size_t aPair, std::size_t aByte) {
    return static_cast<int>((2 * aPair + aByte / 2) * Bits / 8 + aByte % 2);
  }

private:
  static HWY_INLINE PairVector MakeFactors() {
    HWY_ALIGN std::uint16_t factors[kMostVectorBytes / 2];
    for (std::size_t i = 0; i < kMostVectorBytes / 2; ++i)
      factors[i] = static_cast<std::uint16_t>(1u << (16 - Bits - i * Bits % 8));
    return hn::Load(PairTag(), factors);
  }

  Moved<LsbFirst> mMoved;
  PairVector mFactors;
};

/// The same with 14 bits, of which two samples lie in four bytes.
template <>
class LsbFirst<14> {
public:
  static constexpr std::size_t kSampleBits = 14;

  HWY_INLINE LsbFirst() {}
  HWY_INLINE PairVector Load(const std::uint8_t* aBytes) const {
    const PixelTag pairs;
    const PixelVector read = hn::BitCast(pairs, mMoved.Load(aBytes));
    const PixelVector both = hn::OddEven(hn::ShiftRight<4>(read), read);
    const PixelVector first = hn::And(hn::ShiftLeft<2>(both), hn::Set(pairs, 0x0000FFFCu));
    const PixelVector second = hn::And(hn::ShiftLeft<4>(both), hn::Set(pairs, 0xFFFC0000u));
    return hn::BitCast(PairTag(), hn::Or(first, second));
  }

  static constexpr int FindByte(std::size_t aPair, std::size_t aByte) {
    return static_cast<int>(aPair * 28 / 8 + aByte);
  }

private:
  Moved<LsbFirst> mMoved;
};

/// Two samples in three bytes, of which the middle one has the low bits of both.
template <unsigned Bits>
class GigEPacked {
public:
  static constexpr std::size_t kSampleBits = 12;

  HWY_INLINE GigEPacked() {}
  HWY_INLINE PairVector Load(const std::uint8_t* aBytes) const {
    constexpr int kLowBits = Bits - 8;
    constexpr auto kLowMask = static_cast<std::uint16_t>(0x100u - (1u << (8 - kLowBits)));
    const PairTag words;
    const PairVector read = hn::BitCast(words, mMoved.Load(aBytes));
    const PairVector low = hn::OddEven(hn::ShiftLeft<4 - kLowBits>(read), hn::ShiftLeft<8 - kLowBits>(read));
    return hn::Or(hn::And(read, hn::Set(words, std::uint16_t{0xFF00})), hn::And(low, hn::Set(words, kLowMask)));
  }

  /// The byte with the top bits goes above the one in the middle.
  static constexpr int FindByte(std::size_t aPair, std::size_t aByte) {
    constexpr int kPlaces[] = {1, 0, 1, 2};
    return static_cast<int>(3 * aPair) + kPlaces[aByte];
  }

private:
  Moved<GigEPacked> mMoved;
};

/// What becomes of samples at the top of words: themselves.
template <unsigned Bits>
struct Whole {
  using Value = std::uint16_t;
  static HWY_INLINE void Store(PairVector aAligned, std::uint16_t* aSamples) {
    hn::StoreU(hn::ShiftRight<16 - Bits>(aAligned), PairTag(), aSamples);
  }
};

struct TopByte {
  using Value = std::uint8_t;
  static HWY_INLINE void Store(PairVector aAligned, std::uint8_t* aBytes) {
    const hn::Rebind<std::uint8_t, PairTag> bytes;
    hn::StoreU(hn::TruncateTo(bytes, hn::ShiftRight<8>(aAligned)), bytes, aBytes);
  }
};

/// Where the bytes of the last steps of a line are read: a copy with room for a whole vector after them.
class EndCopy {
public:
  /// aBytes are followed by aCount bytes of the line, and preceded by aBefore ones.
  EndCopy(const std::uint8_t* aBytes, std::size_t aCount, std::size_t aBefore) {
    const PixelByteTag bytes;
    const std::size_t vectorBytes = hn::Lanes(bytes);
    if (aCount <= vectorBytes && aBefore + aCount >= vectorBytes) {
      // The line's last vector at once takes less time than a few bytes one by one.
      hn::Store(hn::LoadU(bytes, aBytes + aCount - vectorBytes), bytes, mCopy);
      mFirst = mCopy + (vectorBytes - aCount);
    } else {
      std::memcpy(mCopy, aBytes, std::min(aCount, kMostVectorBytes));
      mFirst = mCopy;
    }
  }
  const std::uint8_t* GetFirst() const { return mFirst; }

private:
  HWY_ALIGN std::uint8_t mCopy[2 * kMostVectorBytes] = {};
  const std::uint8_t* mFirst;
};

/// Steps of a vector while that is all there, and then ones from and to copies.
template <typename Packing, typename Result>
void ReadBy(const std::uint8_t* aLine, std::size_t aFirst, std::size_t aCount, typename Result::Value* aResults) {
  const auto countBytes = [](std::size_t aSamples) { return (aSamples * Packing::kSampleBits + 7) / 8; };
  const std::size_t step = hn::Lanes(PairTag());
  const std::size_t readBytes = hn::Lanes(PixelByteTag());
  const std::size_t bytesThere = countBytes(aCount);
  const std::uint8_t* bytes = aLine + countBytes(aFirst);
  const Packing packing;
  std::size_t i = 0;
  for (; i + step <= aCount && countBytes(i) + readBytes <= bytesThere; i += step)
    Result::Store(packing.Load(bytes + countBytes(i)), aResults + i);
  for (; i < aCount; i += step) {
    const std::size_t samples = std::min(step, aCount - i);
    const EndCopy source(bytes + countBytes(i), countBytes(samples), countBytes(i));
    typename Result::Value results[kMostVectorBytes / 2];
    Result::Store(packing.Load(source.GetFirst()), results);
    std::copy_n(results, samples, aResults + i);
  }
}

struct SampleRow {
  KrPixelPacking packing;
  KrSampleKind sampleKind;
  std::uint8_t bitsPerSample;
  SampleReader readSamples;
  TopByteReader readTopBytes;
};

template <typename Packing, unsigned Bits>
constexpr SampleRow MakeRow(KrPixelPacking aPacking, KrSampleKind aKind = KrSampleKind::Unsigned) {
  return {aPacking, aKind, Bits, &ReadBy<Packing, Whole<Bits>>, &ReadBy<Packing, TopByte>};
}

const SampleRow* FindRow(const KrPixelTypeInfo& aFormat) {
  static constexpr std::array kRows = {
      MakeRow<Words<10>, 10>(KrPixelPacking::Words),
      MakeRow<Words<12>, 12>(KrPixelPacking::Words),
      MakeRow<Words<14>, 14>(KrPixelPacking::Words),
      MakeRow<Words<16>, 16>(KrPixelPacking::Words),
      MakeRow<SignedWords, 16>(KrPixelPacking::Words, KrSampleKind::Signed),
      MakeRow<LsbFirst<10>, 10>(KrPixelPacking::LsbFirst),
      MakeRow<LsbFirst<12>, 12>(KrPixelPacking::LsbFirst),
      MakeRow<LsbFirst<14>, 14>(KrPixelPacking::LsbFirst),
      MakeRow<GigEPacked<10>, 10>(KrPixelPacking::GigE),
      MakeRow<GigEPacked<12>, 12>(KrPixelPacking::GigE),
  };
  const auto row = std::find_if(kRows.begin(), kRows.end(), [&aFormat](const SampleRow& aRow) {
    return aRow.packing == aFormat.packing && aRow.sampleKind == aFormat.sampleKind &&
           aRow.bitsPerSample == aFormat.bitsPerSample;
  });
  return row != kRows.end() ? &*row : nullptr;
}

#endif // HWY_TARGET != HWY_SCALAR

SampleReader FindSamplesOfTarget([[maybe_unused]] const KrPixelTypeInfo& aFormat) {
#if HWY_TARGET != HWY_SCALAR
  if (const SampleRow* row = FindRow(aFormat))
    return row->readSamples;
#endif
  return nullptr;
}

TopByteReader FindTopBytesOfTarget([[maybe_unused]] const KrPixelTypeInfo& aFormat) {
#if HWY_TARGET != HWY_SCALAR
  if (const SampleRow* row = FindRow(aFormat))
    return row->readTopBytes;
#endif
  return nullptr;
}

} // namespace

} // namespace krbuffer::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace krbuffer {

HWY_EXPORT(FindSamplesOfTarget);
HWY_EXPORT(FindTopBytesOfTarget);

SampleReader FindSampleVectorReader(const KrPixelTypeInfo& aFormat) {
  return HWY_DYNAMIC_DISPATCH(FindSamplesOfTarget)(aFormat);
}

TopByteReader FindTopByteReader(const KrPixelTypeInfo& aFormat) {
  return HWY_DYNAMIC_DISPATCH(FindTopBytesOfTarget)(aFormat);
}

} // namespace krbuffer

#endif // HWY_ONCE
