#include "bayerreader.h"

#include "bayerinterpolation.h"

namespace krbuffer {

namespace {

using Lines = Neighbourhood<std::uint8_t>;

/// A line of an image with at least two lines and two columns. The columns between the edges are read in pairs, whose
/// parity the compiler knows: the loop has no branch and can be made of vectors.
template <LineColour Colour, std::uint32_t ColourColumn>
void ReadLine(const Lines& aLines, std::uint32_t aWidth, BgraPixel* __restrict aPixels) {
  const Lines lines = aLines;
  InterpolateColumn<Colour, ColourColumn>(lines, 1, 0, 1, aPixels[0]);
  const std::size_t pairs = (aWidth - 2) / 2;
  for (std::size_t pair = 0; pair < pairs; ++pair) {
    const std::size_t odd = 2 * pair + 1;
    InterpolateColumn<Colour, ColourColumn>(lines, odd - 1, odd, odd + 1, aPixels[odd]);
    InterpolateColumn<Colour, ColourColumn>(lines, odd, odd + 1, odd + 2, aPixels[odd + 1]);
  }
  for (auto x = static_cast<std::uint32_t>(2 * pairs + 1); x < aWidth; ++x)
    InterpolateColumn<Colour, ColourColumn>(lines, GetPrevious(x), x, GetNext(x, aWidth), aPixels[x]);
}

using InnerLineReader = void (*)(const Lines& aLines, std::uint32_t aWidth, BgraPixel* aPixels);

/// By the line's colour and the parity of the columns that have it.
constexpr InnerLineReader kLineReaders[2][2] = {
    {&ReadLine<LineColour::Red, 0>, &ReadLine<LineColour::Red, 1>},
    {&ReadLine<LineColour::Blue, 0>, &ReadLine<LineColour::Blue, 1>},
};

void ReadBayerLine(const LineSource& aSource, RedParity aRed, std::uint32_t aLine, std::uint8_t* aBgra) {
  auto* pixels = reinterpret_cast<BgraPixel*>(aBgra);
  if (IsThin(aSource)) {
    const auto sampleAt = [&aSource](std::uint32_t aX, std::uint32_t aY) { return aSource.GetLine(aY)[aX]; };
    for (std::uint32_t x = 0; x < aSource.width; ++x)
      InterpolateThinPixel(aSource, aRed, x, aLine, sampleAt, pixels[x]);
    return;
  }
  const Lines lines{aSource.GetLine(GetPrevious(aLine)), aSource.GetLine(aLine),
                    aSource.GetLine(GetNext(aLine, aSource.height))};
  const LineParity parity = GetLineParity(aRed, aLine);
  kLineReaders[parity.isRed ? 0 : 1][parity.colourColumn](lines, aSource.width, pixels);
}

} // namespace

void ReadBayerGR8(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra, StoreKind) {
  ReadBayerLine(aSource, kParityGR, aLine, aBgra);
}

void ReadBayerRG8(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra, StoreKind) {
  ReadBayerLine(aSource, kParityRG, aLine, aBgra);
}

void ReadBayerGB8(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra, StoreKind) {
  ReadBayerLine(aSource, kParityGB, aLine, aBgra);
}

void ReadBayerBG8(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra, StoreKind) {
  ReadBayerLine(aSource, kParityBG, aLine, aBgra);
}

} // namespace krbuffer
