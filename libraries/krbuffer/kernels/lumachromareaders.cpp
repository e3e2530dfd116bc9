#include "kernels/lumachromareaders.h"

#include "kernels/gathertables.h"
#include "kernels/lumachromamatrix.h"

#include <algorithm>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/lumachromareaders.cpp"
#include <hwy/foreach_target.h>

#include "kernels/colourstores.h"

HWY_BEFORE_NAMESPACE();

namespace krbuffer::HWY_NAMESPACE {

namespace {

#if HWY_TARGET != HWY_SCALAR

using SignedTag = hn::Repartition<std::int16_t, PixelTag>;
using SignedVector = hn::Vec<SignedTag>;
using SumTag = hn::Repartition<std::int32_t, PixelTag>;
using SumVector = hn::Vec<SumTag>;

/// Two words in turns in all of a vector.
HWY_INLINE SignedVector SetTurns(std::int32_t aEven, std::int32_t aOdd) {
  const auto word = static_cast<std::uint32_t>(aEven & 0xFFFF) | (static_cast<std::uint32_t>(aOdd) << 16);
  return hn::BitCast(SignedTag(), hn::Set(PixelTag(), word));
}

/// The sums of the products of words 0 and 1, 2 and 3, and so on.
HWY_INLINE SumVector MultiplyPairs(SignedVector aFirst, SignedVector aSecond) {
  const SumTag sums;
  SumVector rest = hn::Zero(sums);
  const SumVector sum = hn::ReorderWidenMulAccumulate(sums, aFirst, aSecond, hn::Zero(sums), rest);
  return hn::RearrangeToOddPlusEven(sum, rest);
}

/// What each kernel computes of luma and chroma; chroma comes as words less 128, U and V in turns.
class Mixer {
public:
  explicit HWY_INLINE Mixer(const LumaChromaMatrix& aMatrix)
      : mLuma(hn::Set(SignedTag(), aMatrix.luma)), mLumaAddend(hn::Set(SignedTag(), aMatrix.lumaAddend)),
        mWhole(SetTurns(aMatrix.blueWhole, aMatrix.redWhole)), mPart(SetTurns(aMatrix.bluePart, aMatrix.redPart)),
        mGreenHigh(SetTurns(aMatrix.greenU >> kGreenLowBits, aMatrix.greenV >> kGreenLowBits)),
        mGreenLow(SetTurns(aMatrix.greenU & kGreenLowMask, aMatrix.greenV & kGreenLowMask)),
        mGreenAddend(hn::Set(SumTag(), aMatrix.greenAddend)), mReciprocal(hn::Set(SignedTag(), aMatrix.reciprocal)) {}

  /// d-ths.
  HWY_INLINE SignedVector WeighLuma(SignedVector aLuma) const { return hn::Add(hn::Mul(aLuma, mLuma), mLumaAddend); }
  /// d-ths of blue and red in turns.
  HWY_INLINE SignedVector WeighBlueAndRed(SignedVector aChroma) const {
    return hn::Add(hn::Mul(aChroma, mWhole), hn::MulFixedPoint15(aChroma, mPart));
  }
  /// d-ths in the lower word of each sum.
  HWY_INLINE SumVector WeighGreen(SignedVector aChroma) const {
    const SumVector high = MultiplyPairs(aChroma, mGreenHigh);
    const SumVector carry = hn::ShiftRight<kGreenLowBits>(hn::Add(MultiplyPairs(aChroma, mGreenLow), mGreenAddend));
    return hn::ShiftRight<kGreenBits - kGreenLowBits>(hn::Add(high, carry));
  }
  /// Sixty-fourths of a colour, of which the whole ones are 0 to 255.
  HWY_INLINE SignedVector Mix(SignedVector aWeighedLuma, SignedVector aWeighedChroma) const {
    constexpr std::int16_t kMost = (256 << kQuotientBits) - 1;
    const SignedTag words;
    // Sums that are too great stay so.
    const SignedVector sum = hn::SaturatedAdd(aWeighedLuma, aWeighedChroma);
    const SignedVector quotient = hn::MulFixedPoint15(sum, mReciprocal);
    return hn::Min(hn::Max(quotient, hn::Zero(words)), hn::Set(words, kMost));
  }

private:
  static constexpr std::int32_t kGreenLowMask = (1 << kGreenLowBits) - 1;

  SignedVector mLuma;
  SignedVector mLumaAddend;
  SignedVector mWhole;
  SignedVector mPart;
  SignedVector mGreenHigh;
  SignedVector mGreenLow;
  SumVector mGreenAddend;
  SignedVector mReciprocal;
};

/// The bytes of a vector by tables that were made for the source's order.
class Gatherer {
public:
  explicit HWY_INLINE Gatherer(const GatherTables& aTables)
      : mWords(hn::SetTableIndices(PixelTag(), aTables.words.data())) {}
  HWY_INLINE ByteVector LoadBlocks(const std::uint8_t* aBytes) const {
    const PixelByteTag bytes;
    const ByteVector read = hn::LoadU(bytes, aBytes);
    if (hn::Lanes(PixelTag()) <= 4)
      return read;
    return hn::BitCast(bytes, hn::TableLookupLanes(hn::BitCast(PixelTag(), read), mWords));
  }

private:
  decltype(hn::SetTableIndices(PixelTag(), static_cast<const std::uint32_t*>(nullptr))) mWords;
};

struct LumaChroma {
  SignedVector luma;
  SignedVector chroma;
};

/// Chroma in the upper bytes of words.
HWY_INLINE SignedVector CentreUpperBytes(PairVector aChroma) {
  const auto centred = hn::Xor(aChroma, hn::Set(PairTag(), std::uint16_t{0x8000}));
  return hn::ShiftRight<8>(hn::BitCast(SignedTag(), centred));
}

/// Two pixels in four bytes. The halves of blocks come in PairSpreader's order.
class TwoLumaFirst {
public:
  static constexpr std::size_t kPixels = 2;
  static constexpr std::size_t kBytes = 4;
  static constexpr std::size_t kU = 1;
  static constexpr std::size_t kV = 3;

  // Written out, as a generated one would not be compiled for the target.
  HWY_INLINE TwoLumaFirst() {}
  HWY_INLINE LumaChroma Load(const std::uint8_t* aBytes) const {
    const PairVector words = mSpreader.Spread(hn::BitCast(PairTag(), hn::LoadU(PixelByteTag(), aBytes)));
    const PairVector luma = hn::And(words, hn::Set(PairTag(), std::uint16_t{0xFF}));
    return {hn::BitCast(SignedTag(), luma), CentreUpperBytes(words)};
  }

private:
  PairSpreader mSpreader;
};

class TwoChromaFirst {
public:
  static constexpr std::size_t kPixels = 2;
  static constexpr std::size_t kBytes = 4;
  static constexpr std::size_t kU = 0;
  static constexpr std::size_t kV = 2;

  // Written out, as a generated one would not be compiled for the target.
  HWY_INLINE TwoChromaFirst() {}
  HWY_INLINE LumaChroma Load(const std::uint8_t* aBytes) const {
    const PairVector words = mSpreader.Spread(hn::BitCast(PairTag(), hn::LoadU(PixelByteTag(), aBytes)));
    const PairVector chroma = hn::And(words, hn::Set(PairTag(), std::uint16_t{0xFF}));
    return {hn::BitCast(SignedTag(), hn::ShiftRight<8>(words)),
            hn::Sub(hn::BitCast(SignedTag(), chroma), hn::Set(SignedTag(), std::int16_t{128}))};
  }

private:
  PairSpreader mSpreader;
};

/// Four pixels in six bytes, put into the order of TwoLumaFirst.
template <bool IsChromaFirst>
class Four {
public:
  static constexpr std::size_t kPixels = 4;
  static constexpr std::size_t kBytes = 6;
  static constexpr std::size_t kU = IsChromaFirst ? 0 : 2;
  static constexpr std::size_t kV = IsChromaFirst ? 3 : 5;

  HWY_INLINE Four() : mGatherer(kTables), mMoves(hn::Load(PixelByteTag(), kTables.bytes.data())) {}
  HWY_INLINE LumaChroma Load(const std::uint8_t* aBytes) const {
    const ByteVector moved = hn::TableLookupBytes(mGatherer.LoadBlocks(aBytes), mMoves);
    const PairVector words = mSpreader.Spread(hn::BitCast(PairTag(), moved));
    const PairVector luma = hn::And(words, hn::Set(PairTag(), std::uint16_t{0xFF}));
    return {hn::BitCast(SignedTag(), luma), CentreUpperBytes(words)};
  }

private:
  /// Of two pixels, which take the place of one: luma, U, luma, V.
  static constexpr int FindByte(std::size_t aPair, std::size_t aByte) {
    constexpr std::size_t kLuma[] = {IsChromaFirst ? 1 : 0, IsChromaFirst ? 2 : 1, IsChromaFirst ? 4 : 3,
                                     IsChromaFirst ? 5 : 4};
    const std::size_t place = aByte == 1 ? kU : aByte == 3 ? kV : kLuma[aPair % 2 * 2 + aByte / 2];
    return static_cast<int>(aPair / 2 * kBytes + place);
  }
  static constexpr GatherTables kTables = MakeGatherTables(&FindByte);

  Gatherer mGatherer;
  ByteVector mMoves;
  PairSpreader mSpreader;
};

/// Pixels that share their chroma with a neighbour; as many in a step as a vector has words.
template <typename Group>
class SharedChromaKernel : public Group {
public:
  static constexpr std::size_t kGroup = Group::kPixels;

  HWY_INLINE SharedChromaKernel(const std::uint8_t* aLine, const LumaChromaMatrix& aMatrix)
      : mLine(aLine), mMixer(aMatrix) {}

  static HWY_INLINE std::size_t GetStepPixels() { return hn::Lanes(PairTag()); }

  template <Placement Place>
  HWY_INLINE void StepFrom(const std::uint8_t* aBytes, std::uint8_t* aBgra) const {
    const LumaChroma source = Group::Load(aBytes);
    const SignedVector luma = mMixer.WeighLuma(source.luma);
    const SignedVector blueAndRed = mMixer.WeighBlueAndRed(source.chroma);
    const SumVector green = mMixer.WeighGreen(source.chroma);
    StoreMixed<Place>(mMixer.Mix(luma, RepeatWords<0>(blueAndRed)),
                      mMixer.Mix(luma, RepeatWords<0>(hn::BitCast(SignedTag(), green))),
                      mMixer.Mix(luma, RepeatWords<2>(blueAndRed)), aBgra);
  }

  template <Placement Place>
  HWY_INLINE void Step(std::size_t aX, std::uint8_t* aBgra) const {
    StepFrom<Place>(mLine + aX / Group::kPixels * Group::kBytes, aBgra);
  }

private:
  /// One word of each two in the place of both; by the offset of its first byte.
  template <std::uint8_t Byte>
  static HWY_INLINE SignedVector RepeatWords(SignedVector aWords) {
    HWY_ALIGN static constexpr std::uint8_t kMoves[16] = {Byte,      Byte + 1,  Byte,      Byte + 1, Byte + 4, Byte + 5,
                                                          Byte + 4,  Byte + 5,  Byte + 8,  Byte + 9, Byte + 8, Byte + 9,
                                                          Byte + 12, Byte + 13, Byte + 12, Byte + 13};
    return hn::TableLookupBytes(aWords, hn::BitCast(SignedTag(), hn::LoadDup128(PixelByteTag(), kMoves)));
  }

  template <Placement Place>
  static HWY_INLINE void StoreMixed(SignedVector aBlue, SignedVector aGreen, SignedVector aRed, std::uint8_t* aBgra) {
    const PairTag pairs;
    const auto blue = hn::ShiftRight<kQuotientBits>(hn::BitCast(pairs, aBlue));
    const auto red = hn::ShiftRight<kQuotientBits>(hn::BitCast(pairs, aRed));
    const auto green =
        hn::And(hn::ShiftLeft<8 - kQuotientBits>(hn::BitCast(pairs, aGreen)), hn::Set(pairs, std::uint16_t{0xFF00}));
    StoreSpreadPairs<Place>(hn::Or(blue, green), red, aBgra);
  }

  const std::uint8_t* mLine;
  Mixer mMixer;
};

/// Pixels of three bytes; as many in a step as a vector has.
template <bool IsLumaFirst>
struct One {
  static constexpr std::size_t kPixels = 1;
  static constexpr std::size_t kBytes = 3;
  static constexpr std::size_t kLuma = IsLumaFirst ? 0 : 1;
  static constexpr std::size_t kU = IsLumaFirst ? 1 : 0;
  static constexpr std::size_t kV = 2;

  static constexpr int FindLuma(std::size_t aX, std::size_t aByte) {
    return aByte % 2 == 0 ? static_cast<int>(kBytes * aX + kLuma) : -1;
  }
  static constexpr int FindChroma(std::size_t aX, std::size_t aByte) {
    return aByte % 2 == 0 ? -1 : static_cast<int>(kBytes * aX + (aByte == 1 ? kU : kV));
  }
  static constexpr GatherTables kLumaTables = MakeGatherTables(&FindLuma);
  static constexpr GatherTables kChromaTables = MakeGatherTables(&FindChroma);
  static_assert(kLumaTables.words == kChromaTables.words);
};

template <typename Group>
class OwnChromaKernel : public Group {
public:
  static constexpr std::size_t kGroup = Group::kPixels;

  HWY_INLINE OwnChromaKernel(const std::uint8_t* aLine, const LumaChromaMatrix& aMatrix)
      : mLine(aLine), mGatherer(Group::kLumaTables),
        mLumaMoves(hn::Load(PixelByteTag(), Group::kLumaTables.bytes.data())),
        mChromaMoves(hn::Load(PixelByteTag(), Group::kChromaTables.bytes.data())), mMixer(aMatrix) {}

  static HWY_INLINE std::size_t GetStepPixels() { return hn::Lanes(PixelTag()); }

  template <Placement Place>
  HWY_INLINE void StepFrom(const std::uint8_t* aBytes, std::uint8_t* aBgra) const {
    const PixelTag pixels;
    const ByteVector blocks = mGatherer.LoadBlocks(aBytes);
    const SignedVector luma = mMixer.WeighLuma(hn::BitCast(SignedTag(), hn::TableLookupBytesOr0(blocks, mLumaMoves)));
    const SignedVector chroma = CentreUpperBytes(hn::BitCast(PairTag(), hn::TableLookupBytesOr0(blocks, mChromaMoves)));
    const SignedVector blueAndRed = mMixer.Mix(luma, mMixer.WeighBlueAndRed(chroma));
    const SignedVector green = mMixer.Mix(luma, hn::BitCast(SignedTag(), mMixer.WeighGreen(chroma)));
    // What stands above green in its pixel goes where alpha is set.
    const PixelVector greenBytes =
        hn::ShiftLeft<8>(hn::BitCast(pixels, hn::ShiftRight<kQuotientBits>(hn::BitCast(PairTag(), green))));
    const PixelVector otherBytes =
        hn::BitCast(pixels, hn::ShiftRight<kQuotientBits>(hn::BitCast(PairTag(), blueAndRed)));
    StorePixels<Place>(MakeOpaque(hn::Or(otherBytes, greenBytes)), aBgra);
  }

  template <Placement Place>
  HWY_INLINE void Step(std::size_t aX, std::uint8_t* aBgra) const {
    StepFrom<Place>(mLine + aX * Group::kBytes, aBgra);
  }

private:
  const std::uint8_t* mLine;
  Gatherer mGatherer;
  ByteVector mLumaMoves;
  ByteVector mChromaMoves;
  Mixer mMixer;
};

/// Gives the last group of a line, which may end within it, the chroma of the group before it, or none, where its own
/// is not all there.
template <typename Group>
void CompleteChroma(const std::uint8_t* aLine, std::size_t aLastGroup, std::size_t aLineBytes, std::uint8_t* aGroup) {
  constexpr std::uint8_t kNone = 128;
  if (aLineBytes - aLastGroup * Group::kBytes > std::max(Group::kU, Group::kV))
    return;
  const std::uint8_t* before = aLastGroup == 0 ? nullptr : aLine + (aLastGroup - 1) * Group::kBytes;
  aGroup[Group::kU] = before ? before[Group::kU] : kNone;
  aGroup[Group::kV] = before ? before[Group::kV] : kNone;
}

/// Compiled apart from the steps of the line.
template <typename Kernel>
HWY_NOINLINE void WriteCopied(const Kernel& aKernel, const std::uint8_t* aCopy, std::uint8_t* aBgra) {
  aKernel.template StepFrom<Placement::Anywhere>(aCopy, aBgra);
}

/// Writes the pixels from aX on, at most a step, out of a copy of their bytes, so that nothing beyond the line is read
/// or written.
template <typename Kernel>
void WriteEnd(const Kernel& aKernel, const std::uint8_t* aLine, std::size_t aX, std::size_t aWidth,
              std::size_t aLineBytes, std::uint8_t* aBgra) {
  const std::size_t pixels = std::min(aWidth - aX, aKernel.GetStepPixels());
  const std::size_t first = aX / Kernel::kPixels * Kernel::kBytes;
  const std::size_t groups = (pixels + Kernel::kPixels - 1) / Kernel::kPixels;
  std::uint8_t copy[kMostVectorBytes] = {};
  std::memcpy(copy, aLine + first, std::min(groups * Kernel::kBytes, aLineBytes - first));
  if (aX + pixels == aWidth)
    CompleteChroma<Kernel>(aLine, (aWidth - 1) / Kernel::kPixels, aLineBytes, copy + (groups - 1) * Kernel::kBytes);
  std::uint8_t bgra[kBgraBytes * kMostVectorBytes];
  WriteCopied(aKernel, copy, bgra);
  std::memcpy(aBgra + kBgraBytes * aX, bgra, kBgraBytes * pixels);
}

template <typename Kernel>
void ReadByMatrix(const LineSource& aSource, std::uint32_t aLine, const LumaChromaMatrix& aMatrix, std::uint8_t* aBgra,
                  StoreKind aStores) {
  const std::uint8_t* line = aSource.GetLine(aLine);
  const std::size_t width = aSource.width;
  const std::size_t lineBytes = (width * Kernel::kBytes + Kernel::kPixels - 1) / Kernel::kPixels;
  const std::size_t readBytes = hn::Lanes(PixelByteTag());
  const Kernel kernel(line, aMatrix);
  std::size_t x = 0;
  // Steps read a whole vector of bytes.
  if (lineBytes >= readBytes && width >= kernel.GetStepPixels()) {
    const std::size_t lastGroup =
        std::min((lineBytes - readBytes) / Kernel::kBytes, (width - kernel.GetStepPixels()) / Kernel::kPixels);
    x = lastGroup * Kernel::kPixels + kernel.GetStepPixels();
    WriteRange(kernel, {0, x}, aBgra, aStores);
  }
  for (; x < width; x += kernel.GetStepPixels())
    WriteEnd(kernel, line, x, width, lineBytes, aBgra);
}

template <typename Kernel, std::size_t MatrixIndex>
void ReadBy(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra, StoreKind aStores) {
  ReadByMatrix<Kernel>(aSource, aLine, kLumaChromaMatrices[MatrixIndex], aBgra, aStores);
}

struct LumaChromaRow {
  KrPixelLayout layout;
  std::array<LineReader, kLumaChromaMatrices.size()> readers;
};

template <typename Kernel>
constexpr LumaChromaRow MakeRow(KrPixelLayout aLayout) {
  return {aLayout, {&ReadBy<Kernel, 0>, &ReadBy<Kernel, 1>, &ReadBy<Kernel, 2>}};
}

#endif // HWY_TARGET != HWY_SCALAR

LineReader FindLumaChromaOfTarget([[maybe_unused]] const KrPixelTypeInfo& aFormat) {
#if HWY_TARGET != HWY_SCALAR
  static constexpr std::array kRows = {
      MakeRow<OwnChromaKernel<One<true>>>(KrPixelLayout::YUV),
      MakeRow<OwnChromaKernel<One<false>>>(KrPixelLayout::UYV),
      MakeRow<SharedChromaKernel<TwoLumaFirst>>(KrPixelLayout::YUYV),
      MakeRow<SharedChromaKernel<TwoChromaFirst>>(KrPixelLayout::UYVY),
      MakeRow<SharedChromaKernel<Four<true>>>(KrPixelLayout::UYYVYY),
      MakeRow<SharedChromaKernel<Four<false>>>(KrPixelLayout::YYUYYV),
  };
  for (const LumaChromaRow& row : kRows)
    for (std::size_t matrix = 0; matrix < kLumaChromaMatrices.size(); ++matrix)
      if (row.layout == aFormat.layout && kLumaChromaMatrices[matrix].space == aFormat.colorSpace &&
          aFormat.bitsPerSample == 8)
        return row.readers[matrix];
#endif
  return nullptr;
}

} // namespace

} // namespace krbuffer::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace krbuffer {

HWY_EXPORT(FindLumaChromaOfTarget);

LineReader FindLumaChromaVectorReader(const KrPixelTypeInfo& aFormat) {
  return HWY_DYNAMIC_DISPATCH(FindLumaChromaOfTarget)(aFormat);
}

} // namespace krbuffer

#endif // HWY_ONCE
