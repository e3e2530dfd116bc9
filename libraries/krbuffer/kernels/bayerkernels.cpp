#include "kernels/bayerkernels.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <type_traits>
#include <utility>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/bayerkernels.cpp"
#include <hwy/foreach_target.h>

#include "kernels/colourstores.h"

HWY_BEFORE_NAMESPACE();

namespace krbuffer::HWY_NAMESPACE {

namespace {

#if HWY_TARGET == HWY_SCALAR

/// Pixel by pixel. aFindNeighbours gives the columns to the left and the right of one.
template <LineColour Colour, typename Sample, typename FindNeighbours>
void WriteColumns(const Neighbourhood<Sample>& aLines, std::size_t aColourColumn, std::size_t aWidth, unsigned aShift,
                  const FindNeighbours& aFindNeighbours, std::uint8_t* aBgra) {
  for (std::size_t x = 0; x < aWidth; ++x) {
    const auto [left, right] = aFindNeighbours(x);
    DeepPixel pixel{};
    if (x % 2 == aColourColumn)
      InterpolateColourSite<Colour>(aLines, left, x, right, pixel);
    else
      InterpolateGreenSite<Colour>(aLines, left, x, right, pixel);
    StoreBgra(aBgra + kBgraBytes * x, static_cast<std::uint32_t>(pixel.blue) >> aShift,
              static_cast<std::uint32_t>(pixel.green) >> aShift, static_cast<std::uint32_t>(pixel.red) >> aShift,
              kOpaque);
  }
}

template <LineColour Colour>
void WriteBytes(const Neighbourhood<std::uint8_t>& aLines, std::size_t aColourColumn, std::size_t aWidth,
                std::uint8_t* aBgra, StoreKind) {
  const auto findNeighbours = [aWidth](std::size_t aX) {
    return std::pair(aX == 0 ? 1 : aX - 1, aX + 1 == aWidth ? aWidth - 2 : aX + 1);
  };
  WriteColumns<Colour>(aLines, aColourColumn, aWidth, 0, findNeighbours, aBgra);
}

template <LineColour Colour, unsigned Bits>
void WriteWords(const Neighbourhood<std::uint16_t>& aRuns, std::size_t aColourColumn, std::size_t aCount,
                std::uint8_t* aBgra, StoreKind) {
  const auto findNeighbours = [](std::size_t aX) { return std::pair(aX - 1, aX + 1); };
  WriteColumns<Colour>(aRuns, aColourColumn, aCount, Bits - 8, findNeighbours, aBgra);
}

#else

template <typename Tag>
struct Colours {
  hn::Vec<Tag> blue;
  hn::Vec<Tag> green;
  hn::Vec<Tag> red;
};

/// Samples and their means, rounded half up, by the bits above the lowest Shift: for samples that leave a word no room
/// for a sum.
template <int Shift>
struct MeansOfMeans {
  template <typename Vector>
  static HWY_INLINE Vector Show(Vector aSample) {
    if constexpr (Shift == 0)
      return aSample;
    else
      return hn::ShiftRight<Shift>(aSample);
  }
  template <typename Vector>
  static HWY_INLINE Vector ShowMean(Vector aFirst, Vector aSecond) {
    return Show(hn::AverageRound(aFirst, aSecond));
  }
  /// The mean of the rounded means of two each is 1 too great where it was rounded up and so was one of them: the two
  /// roundings are one too many.
  template <typename Vector>
  static HWY_INLINE Vector ShowMean(Vector aFirst, Vector aSecond, Vector aThird, Vector aFourth) {
    const hn::DFromV<Vector> tag;
    const Vector mean = hn::AverageRound(aFirst, aSecond);
    const Vector otherMean = hn::AverageRound(aThird, aFourth);
    const Vector wereRounded = hn::Or(hn::Xor(aFirst, aSecond), hn::Xor(aThird, aFourth));
    const Vector excess = hn::And(hn::And(wereRounded, hn::Xor(mean, otherMean)), hn::Set(tag, 1));
    return Show(hn::Sub(hn::AverageRound(mean, otherMean), excess));
  }
};

/// The same for samples of which four and 2 may be added.
template <int Shift>
struct MeansOfSums {
  template <typename Vector>
  static HWY_INLINE Vector Show(Vector aSample) {
    return hn::ShiftRight<Shift>(aSample);
  }
  template <typename Vector>
  static HWY_INLINE Vector ShowMean(Vector aFirst, Vector aSecond) {
    const hn::DFromV<Vector> tag;
    return hn::ShiftRight<Shift + 1>(hn::Add(hn::Add(aFirst, aSecond), hn::Set(tag, 1)));
  }
  template <typename Vector>
  static HWY_INLINE Vector ShowMean(Vector aFirst, Vector aSecond, Vector aThird, Vector aFourth) {
    const hn::DFromV<Vector> tag;
    const Vector sum = hn::Add(hn::Add(aFirst, aSecond), hn::Add(aThird, aFourth));
    return hn::ShiftRight<Shift + 2>(hn::Add(sum, hn::Set(tag, 2)));
  }
};

/// The pixels of a vector of columns. Ones in aColourColumns are in the columns that have the line's colour; the other
/// ones have green.
template <LineColour Colour, typename Means, typename Tag>
HWY_INLINE Colours<Tag> InterpolateVector(Tag aTag, const Neighbourhood<hn::TFromD<Tag>>& aLines, std::size_t aX,
                                          hn::Mask<Tag> aColourColumns) {
  const auto aboveLeft = hn::LoadU(aTag, aLines.above + aX - 1);
  const auto above = hn::LoadU(aTag, aLines.above + aX);
  const auto aboveRight = hn::LoadU(aTag, aLines.above + aX + 1);
  const auto left = hn::LoadU(aTag, aLines.here + aX - 1);
  const auto here = hn::LoadU(aTag, aLines.here + aX);
  const auto right = hn::LoadU(aTag, aLines.here + aX + 1);
  const auto belowLeft = hn::LoadU(aTag, aLines.below + aX - 1);
  const auto below = hn::LoadU(aTag, aLines.below + aX);
  const auto belowRight = hn::LoadU(aTag, aLines.below + aX + 1);

  const auto own = Means::Show(here);
  const auto besides = Means::ShowMean(left, right);
  const auto aboveAndBelow = Means::ShowMean(above, below);
  const auto cross = Means::ShowMean(left, right, above, below);
  const auto corners = Means::ShowMean(aboveLeft, aboveRight, belowLeft, belowRight);

  const auto lineColour = hn::IfThenElse(aColourColumns, own, besides);
  const auto green = hn::IfThenElse(aColourColumns, cross, own);
  const auto otherColour = hn::IfThenElse(aColourColumns, corners, aboveAndBelow);
  if constexpr (Colour == LineColour::Red)
    return {otherColour, green, lineColour};
  else
    return {lineColour, green, otherColour};
}

/// The columns of a vector that begins at an even column that have a line's colour; by the parity of that.
template <typename Tag>
HWY_INLINE hn::Mask<Tag> FindColumns(Tag aTag, std::size_t aParity) {
  const hn::RepartitionToWide<Tag> pairs;
  using Pair = hn::TFromD<decltype(pairs)>;
  constexpr auto kEven = static_cast<Pair>(hwy::LimitsMax<hn::TFromD<Tag>>());
  return hn::MaskFromVec(hn::BitCast(aTag, hn::Set(pairs, aParity == 0 ? kEven : static_cast<Pair>(~kEven))));
}

/// Copies of both ends of three lines of bytes, with the mirrored neighbours: what the first and the last step read.
class LineEnds {
public:
  LineEnds(const Neighbourhood<std::uint8_t>& aLines, std::size_t aWidth) : mWidth(aWidth) {
    const std::uint8_t* const lines[kLines] = {aLines.above, aLines.here, aLines.below};
    for (std::size_t line = 0; line < kLines; ++line)
      if (aWidth > hn::Lanes(PixelByteTag()))
        CopyEnds(lines[line], line);
      else
        CopyWhole(lines[line], line);
  }
  /// Column 1 of these is the first one of the step.
  Neighbourhood<std::uint8_t> GetStart() const { return {mStart[0], mStart[1], mStart[2]}; }
  Neighbourhood<std::uint8_t> GetEnd() const { return {mEnd[0], mEnd[1], mEnd[2]}; }

private:
  static constexpr std::size_t kLines = 3;

  void CopyEnds(const std::uint8_t* aLine, std::size_t aIndex) {
    const PixelByteTag tag;
    const std::size_t step = hn::Lanes(tag);
    const std::uint8_t* last = aLine + mWidth - step;
    mStart[aIndex][0] = aLine[1];
    hn::StoreU(hn::LoadU(tag, aLine), tag, mStart[aIndex] + 1);
    mStart[aIndex][step + 1] = aLine[step];
    mEnd[aIndex][0] = last[-1];
    hn::StoreU(hn::LoadU(tag, last), tag, mEnd[aIndex] + 1);
    mEnd[aIndex][step + 1] = aLine[mWidth - 2];
  }
  /// A line that one step writes.
  void CopyWhole(const std::uint8_t* aLine, std::size_t aIndex) {
    std::fill(std::begin(mStart[aIndex]), std::end(mStart[aIndex]), std::uint8_t{0});
    mStart[aIndex][0] = aLine[1];
    std::memcpy(mStart[aIndex] + 1, aLine, mWidth);
    mStart[aIndex][mWidth + 1] = aLine[mWidth - 2];
  }

  std::size_t mWidth;
  std::uint8_t mStart[kLines][kMostVectorBytes + 2];
  std::uint8_t mEnd[kLines][kMostVectorBytes + 2];
};

/// Bytes.
template <LineColour Colour>
class ByteKernel {
public:
  static constexpr std::size_t kGroup = 1;

  HWY_INLINE ByteKernel(const Neighbourhood<std::uint8_t>& aLines, const LineEnds& aEnds, std::size_t aColourColumn,
                        std::size_t aWidth)
      : mLines(aLines), mEnds(&aEnds), mColourColumn(aColourColumn),
        mLastStep(aWidth - std::min(aWidth, GetStepPixels())) {}

  static HWY_INLINE std::size_t GetStepPixels() { return hn::Lanes(PixelByteTag()); }

  template <Placement Place>
  HWY_INLINE void Step(std::size_t aX, std::uint8_t* aBgra) const {
    const PixelByteTag tag;
    Neighbourhood<std::uint8_t> lines = mLines;
    std::size_t x = aX;
    if (HWY_UNLIKELY(aX == 0 || aX == mLastStep)) {
      lines = aX == 0 ? mEnds->GetStart() : mEnds->GetEnd();
      x = 1;
    }
    const auto columns = FindColumns(tag, (mColourColumn + aX) % 2);
    const Colours<PixelByteTag> colours = InterpolateVector<Colour, MeansOfMeans<0>>(tag, lines, x, columns);
    StoreColours<Place>(mSpreader, colours.blue, colours.green, colours.red, aBgra);
  }

private:
  Neighbourhood<std::uint8_t> mLines;
  const LineEnds* mEnds;
  std::size_t mColourColumn;
  std::size_t mLastStep;
  BlockSpreader mSpreader;
};

/// Words of which the shown pixels take the top 8 bits.
template <LineColour Colour, unsigned Bits>
class WordKernel {
public:
  static constexpr std::size_t kGroup = 1;

  HWY_INLINE WordKernel(const Neighbourhood<std::uint16_t>& aRuns, std::size_t aColourColumn)
      : mRuns(aRuns), mColourColumn(aColourColumn) {}

  static HWY_INLINE std::size_t GetStepPixels() { return hn::Lanes(kTag); }

  template <Placement Place>
  HWY_INLINE void Step(std::size_t aX, std::uint8_t* aBgra) const {
    const auto columns = FindColumns(kTag, (mColourColumn + aX) % 2);
    const Colours<Tag> colours = InterpolateVector<Colour, Means>(kTag, mRuns, aX, columns);
    StoreColourPairs<Place>(mSpreader, colours.blue, colours.green, colours.red, aBgra);
  }

private:
  using Tag = hn::Repartition<std::uint16_t, PixelTag>;
  using Means = std::conditional_t<(Bits <= 14), MeansOfSums<Bits - 8>, MeansOfMeans<Bits - 8>>;
  static constexpr Tag kTag{};

  Neighbourhood<std::uint16_t> mRuns;
  std::size_t mColourColumn;
  PairSpreader mSpreader;
};

template <LineColour Colour>
void WriteBytes(const Neighbourhood<std::uint8_t>& aLines, std::size_t aColourColumn, std::size_t aWidth,
                std::uint8_t* aBgra, StoreKind aStores) {
  const LineEnds ends(aLines, aWidth);
  WriteWholeLine(ByteKernel<Colour>(aLines, ends, aColourColumn, aWidth), aWidth, aBgra, aStores);
}

template <LineColour Colour, unsigned Bits>
void WriteWords(const Neighbourhood<std::uint16_t>& aRuns, std::size_t aColourColumn, std::size_t aCount,
                std::uint8_t* aBgra, StoreKind aStores) {
  WriteWholeLine(WordKernel<Colour, Bits>(aRuns, aColourColumn), aCount, aBgra, aStores);
}

#endif // HWY_TARGET == HWY_SCALAR

template <LineColour Colour>
void WriteWordsOf(unsigned aBits, const Neighbourhood<std::uint16_t>& aRuns, std::size_t aColourColumn,
                  std::size_t aCount, std::uint8_t* aBgra, StoreKind aStores) {
  using Writer = void (*)(const Neighbourhood<std::uint16_t>&, std::size_t, std::size_t, std::uint8_t*, StoreKind);
  static constexpr Writer kWriters[] = {&WriteWords<Colour, 10>, &WriteWords<Colour, 12>, &WriteWords<Colour, 14>,
                                        &WriteWords<Colour, 16>};
  kWriters[aBits / 2 - 5](aRuns, aColourColumn, aCount, aBgra, aStores);
}

} // namespace

void BayerBytes(const Neighbourhood<std::uint8_t>& aLines, LineParity aParity, std::size_t aWidth, std::uint8_t* aBgra,
                StoreKind aStores) {
  if (aParity.isRed)
    WriteBytes<LineColour::Red>(aLines, aParity.colourColumn, aWidth, aBgra, aStores);
  else
    WriteBytes<LineColour::Blue>(aLines, aParity.colourColumn, aWidth, aBgra, aStores);
}

void BayerWords(const Neighbourhood<std::uint16_t>& aRuns, LineParity aParity, unsigned aBits, std::size_t aCount,
                std::uint8_t* aBgra, StoreKind aStores) {
  if (aParity.isRed)
    WriteWordsOf<LineColour::Red>(aBits, aRuns, aParity.colourColumn, aCount, aBgra, aStores);
  else
    WriteWordsOf<LineColour::Blue>(aBits, aRuns, aParity.colourColumn, aCount, aBgra, aStores);
}

} // namespace krbuffer::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace krbuffer {

HWY_EXPORT(BayerBytes);
HWY_EXPORT(BayerWords);

void InterpolateBayerBytes(const Neighbourhood<std::uint8_t>& aLines, LineParity aParity, std::size_t aWidth,
                           std::uint8_t* aBgra, StoreKind aStores) {
  HWY_DYNAMIC_DISPATCH(BayerBytes)(aLines, aParity, aWidth, aBgra, aStores);
}

void InterpolateBayerWords(const Neighbourhood<std::uint16_t>& aRuns, LineParity aParity, unsigned aBits,
                           std::size_t aCount, std::uint8_t* aBgra, StoreKind aStores) {
  HWY_DYNAMIC_DISPATCH(BayerWords)(aRuns, aParity, aBits, aCount, aBgra, aStores);
}

} // namespace krbuffer

#endif // HWY_ONCE
