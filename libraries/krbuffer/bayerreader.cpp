#include "bayerreader.h"

#include "bgrapixel.h"

#include <cstddef>

namespace krbuffer {

namespace {

enum class LineColour { Red, Blue };

/// Where the red samples are: the parity of their columns and of their lines. The blue ones are at the other parities.
struct RedParity {
  std::uint32_t column;
  std::uint32_t line;
};

constexpr RedParity kParityGR{1, 0};
constexpr RedParity kParityRG{0, 0};
constexpr RedParity kParityGB{0, 1};
constexpr RedParity kParityBG{1, 1};

/// The neighbours of an index in the mirrored image; the count is at least 2.
std::uint32_t GetPrevious(std::uint32_t aIndex) {
  return aIndex == 0 ? 1 : aIndex - 1;
}
std::uint32_t GetNext(std::uint32_t aIndex, std::uint32_t aCount) {
  return aIndex + 1 == aCount ? aCount - 2 : aIndex + 1;
}

std::uint32_t GetMean(std::uint32_t aFirst, std::uint32_t aSecond) {
  return (aFirst + aSecond + 1) / 2;
}

struct Neighbourhood {
  const std::uint8_t* above;
  const std::uint8_t* here;
  const std::uint8_t* below;
};

/// A pixel of a line that has green and one other colour, the line's colour.
template <LineColour Colour>
void StoreSite(std::uint8_t* aPixel, std::uint32_t aLineColour, std::uint32_t aGreen, std::uint32_t aOtherColour) {
  if constexpr (Colour == LineColour::Red)
    StoreBgra(aPixel, aOtherColour, aGreen, aLineColour, kOpaque);
  else
    StoreBgra(aPixel, aLineColour, aGreen, aOtherColour, kOpaque);
}

template <LineColour Colour>
void ReadColourSite(const Neighbourhood& aLines, std::size_t aLeft, std::size_t aX, std::size_t aRight,
                    std::uint8_t* aPixel) {
  const std::uint32_t green = (aLines.here[aLeft] + aLines.here[aRight] + aLines.above[aX] + aLines.below[aX] + 2u) / 4;
  const std::uint32_t otherColour =
      (aLines.above[aLeft] + aLines.above[aRight] + aLines.below[aLeft] + aLines.below[aRight] + 2u) / 4;
  StoreSite<Colour>(aPixel, aLines.here[aX], green, otherColour);
}

template <LineColour Colour>
void ReadGreenSite(const Neighbourhood& aLines, std::size_t aLeft, std::size_t aX, std::size_t aRight,
                   std::uint8_t* aPixel) {
  StoreSite<Colour>(aPixel, GetMean(aLines.here[aLeft], aLines.here[aRight]), aLines.here[aX],
                    GetMean(aLines.above[aX], aLines.below[aX]));
}

template <LineColour Colour, std::uint32_t ColourColumn>
void ReadColumn(const Neighbourhood& aLines, std::size_t aLeft, std::size_t aX, std::size_t aRight,
                std::uint8_t* aBgra) {
  if (aX % 2 == ColourColumn)
    ReadColourSite<Colour>(aLines, aLeft, aX, aRight, aBgra + kBgraBytes * aX);
  else
    ReadGreenSite<Colour>(aLines, aLeft, aX, aRight, aBgra + kBgraBytes * aX);
}

/// A line of an image with at least two lines and two columns. The columns between the edges are read in pairs, whose
/// parity the compiler knows: the loop has no branch and can be made of vectors.
template <LineColour Colour, std::uint32_t ColourColumn>
void ReadLine(const Neighbourhood& aLines, std::uint32_t aWidth, std::uint8_t* __restrict aBgra) {
  const Neighbourhood lines = aLines;
  ReadColumn<Colour, ColourColumn>(lines, 1, 0, 1, aBgra);
  const std::size_t pairs = (aWidth - 2) / 2;
  for (std::size_t pair = 0; pair < pairs; ++pair) {
    const std::size_t odd = 2 * pair + 1;
    ReadColumn<Colour, ColourColumn>(lines, odd - 1, odd, odd + 1, aBgra);
    ReadColumn<Colour, ColourColumn>(lines, odd, odd + 1, odd + 2, aBgra);
  }
  for (auto x = static_cast<std::uint32_t>(2 * pairs + 1); x < aWidth; ++x)
    ReadColumn<Colour, ColourColumn>(lines, GetPrevious(x), x, GetNext(x, aWidth), aBgra);
}

using InnerLineReader = void (*)(const Neighbourhood& aLines, std::uint32_t aWidth, std::uint8_t* aBgra);

/// By the line's colour and the parity of the columns that have it.
constexpr InnerLineReader kLineReaders[2][2] = {
    {&ReadLine<LineColour::Red, 0>, &ReadLine<LineColour::Red, 1>},
    {&ReadLine<LineColour::Blue, 0>, &ReadLine<LineColour::Blue, 1>},
};

/// The offset in a BGRa8 pixel of the colour that the filter has at a place.
std::size_t GetFilterOffset(RedParity aRed, std::uint32_t aX, std::uint32_t aY) {
  const bool redColumn = aX % 2 == aRed.column;
  const bool redLine = aY % 2 == aRed.line;
  if (redColumn != redLine)
    return 1;
  return redColumn ? 2 : 0;
}

/// A pixel of an image of one line or one column: the filter has two colours there at most, in turns.
void ReadThinPixel(const LineSource& aSource, RedParity aRed, std::uint32_t aX, std::uint32_t aY,
                   std::uint8_t* aPixel) {
  const bool isOneLine = aSource.height == 1;
  const std::size_t stepBytes = isOneLine ? 1 : aSource.strideBytes;
  const std::uint32_t index = isOneLine ? aX : aY;
  const std::uint32_t count = isOneLine ? aSource.width : aSource.height;

  StoreBgra(aPixel, 0, 0, 0, kOpaque);
  aPixel[GetFilterOffset(aRed, aX, aY)] = aSource.data[stepBytes * index];
  if (count == 1)
    return;
  const std::size_t neighbourOffset = isOneLine ? GetFilterOffset(aRed, aX + 1, aY) : GetFilterOffset(aRed, aX, aY + 1);
  aPixel[neighbourOffset] = static_cast<std::uint8_t>(
      GetMean(aSource.data[stepBytes * GetPrevious(index)], aSource.data[stepBytes * GetNext(index, count)]));
}

void ReadBayerLine(const LineSource& aSource, RedParity aRed, std::uint32_t aLine, std::uint8_t* aBgra) {
  if (aSource.width == 1 || aSource.height == 1) {
    for (std::uint32_t x = 0; x < aSource.width; ++x)
      ReadThinPixel(aSource, aRed, x, aLine, aBgra + kBgraBytes * x);
    return;
  }
  const Neighbourhood lines{aSource.GetLine(GetPrevious(aLine)), aSource.GetLine(aLine),
                            aSource.GetLine(GetNext(aLine, aSource.height))};
  const bool isRedLine = aLine % 2 == aRed.line;
  const std::uint32_t colourColumn = isRedLine ? aRed.column : 1 - aRed.column;
  kLineReaders[isRedLine ? 0 : 1][colourColumn](lines, aSource.width, aBgra);
}

} // namespace

void ReadBayerGR8(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra) {
  ReadBayerLine(aSource, kParityGR, aLine, aBgra);
}

void ReadBayerRG8(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra) {
  ReadBayerLine(aSource, kParityRG, aLine, aBgra);
}

void ReadBayerGB8(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra) {
  ReadBayerLine(aSource, kParityGB, aLine, aBgra);
}

void ReadBayerBG8(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra) {
  ReadBayerLine(aSource, kParityBG, aLine, aBgra);
}

} // namespace krbuffer
