#pragma once
// Bilinear interpolation of a Bayer image, whatever the type of its samples and of the pixels written. A missing colour
// is the mean, rounded half up, of the two or four nearest samples of that colour. The image is mirrored at its edges
// (the edge sample itself is not repeated), which keeps every line and column in its own colours; a colour that an
// image of one line or one column does not have at all is 0. Where the samples come from is left to the readers.

#include "bgrapixel.h"
#include "linesource.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace krbuffer {

enum class LineColour { Red, Blue };

/// Where the red samples are: the parity of their columns and of their lines. The blue ones are at the other parities.
struct RedParity {
  std::uint32_t column;
  std::uint32_t line;
};

inline constexpr RedParity kParityGR{1, 0};
inline constexpr RedParity kParityRG{0, 0};
inline constexpr RedParity kParityGB{0, 1};
inline constexpr RedParity kParityBG{1, 1};

/// The colour of a line, and the parity of the columns that have it; the other columns are green.
struct LineParity {
  bool isRed;
  std::uint32_t colourColumn;
};

constexpr LineParity GetLineParity(RedParity aRed, std::uint32_t aLine) {
  const bool isRed = aLine % 2 == aRed.line;
  return {isRed, isRed ? aRed.column : 1 - aRed.column};
}

/// The neighbours of an index in the mirrored image; the count is at least 2.
constexpr std::uint32_t GetPrevious(std::uint32_t aIndex) {
  return aIndex == 0 ? 1 : aIndex - 1;
}
constexpr std::uint32_t GetNext(std::uint32_t aIndex, std::uint32_t aCount) {
  return aIndex + 1 == aCount ? aCount - 2 : aIndex + 1;
}

constexpr std::uint32_t GetMean(std::uint32_t aFirst, std::uint32_t aSecond) {
  return (aFirst + aSecond + 1) / 2;
}

/// A pixel of BGRa8 in memory.
struct BgraPixel {
  std::uint8_t bytes[kBgraBytes];
};

/// A pixel at the full depth of its samples.
struct DeepPixel {
  std::uint16_t blue;
  std::uint16_t green;
  std::uint16_t red;
};

inline void StorePixel(BgraPixel& aPixel, std::uint32_t aBlue, std::uint32_t aGreen, std::uint32_t aRed) {
  StoreBgra(aPixel.bytes, aBlue, aGreen, aRed, kOpaque);
}

inline void StorePixel(DeepPixel& aPixel, std::uint32_t aBlue, std::uint32_t aGreen, std::uint32_t aRed) {
  aPixel = {static_cast<std::uint16_t>(aBlue), static_cast<std::uint16_t>(aGreen), static_cast<std::uint16_t>(aRed)};
}

template <typename Sample>
struct Neighbourhood {
  const Sample* above;
  const Sample* here;
  const Sample* below;
};

/// A pixel of a line that has green and one other colour, the line's colour.
template <LineColour Colour, typename Pixel>
void StoreSite(Pixel& aPixel, std::uint32_t aLineColour, std::uint32_t aGreen, std::uint32_t aOtherColour) {
  if constexpr (Colour == LineColour::Red)
    StorePixel(aPixel, aOtherColour, aGreen, aLineColour);
  else
    StorePixel(aPixel, aLineColour, aGreen, aOtherColour);
}

template <LineColour Colour, typename Sample, typename Pixel>
void InterpolateColourSite(const Neighbourhood<Sample>& aLines, std::size_t aLeft, std::size_t aX, std::size_t aRight,
                           Pixel& aPixel) {
  const std::uint32_t green = (aLines.here[aLeft] + aLines.here[aRight] + aLines.above[aX] + aLines.below[aX] + 2u) / 4;
  const std::uint32_t otherColour =
      (aLines.above[aLeft] + aLines.above[aRight] + aLines.below[aLeft] + aLines.below[aRight] + 2u) / 4;
  StoreSite<Colour>(aPixel, aLines.here[aX], green, otherColour);
}

template <LineColour Colour, typename Sample, typename Pixel>
void InterpolateGreenSite(const Neighbourhood<Sample>& aLines, std::size_t aLeft, std::size_t aX, std::size_t aRight,
                          Pixel& aPixel) {
  StoreSite<Colour>(aPixel, GetMean(aLines.here[aLeft], aLines.here[aRight]), aLines.here[aX],
                    GetMean(aLines.above[aX], aLines.below[aX]));
}

/// The pixel of column aX, whose neighbours are in the columns aLeft and aRight.
template <LineColour Colour, std::uint32_t ColourColumn, typename Sample, typename Pixel>
void InterpolateColumn(const Neighbourhood<Sample>& aLines, std::size_t aLeft, std::size_t aX, std::size_t aRight,
                       Pixel& aPixel) {
  if (aX % 2 == ColourColumn)
    InterpolateColourSite<Colour>(aLines, aLeft, aX, aRight, aPixel);
  else
    InterpolateGreenSite<Colour>(aLines, aLeft, aX, aRight, aPixel);
}

/// The offset in a BGRa8 pixel of the colour that the filter has at a place.
constexpr std::size_t GetFilterOffset(RedParity aRed, std::uint32_t aX, std::uint32_t aY) {
  const bool redColumn = aX % 2 == aRed.column;
  const bool redLine = aY % 2 == aRed.line;
  if (redColumn != redLine)
    return 1;
  return redColumn ? 2 : 0;
}

/// True for images of one line or one column, which have no neighbours in the other direction.
inline bool IsThin(const LineSource& aSource) {
  return aSource.width == 1 || aSource.height == 1;
}

/// A pixel of a thin image: the filter has two colours there at most, in turns. aSampleAt(x, y) gives a sample.
template <typename Pixel, typename SampleAt>
void InterpolateThinPixel(const LineSource& aSource, RedParity aRed, std::uint32_t aX, std::uint32_t aY,
                          const SampleAt& aSampleAt, Pixel& aPixel) {
  const bool isOneLine = aSource.height == 1;
  const std::uint32_t index = isOneLine ? aX : aY;
  const std::uint32_t count = isOneLine ? aSource.width : aSource.height;
  const auto sampleAt = [&](std::uint32_t aIndex) -> std::uint32_t {
    return isOneLine ? aSampleAt(aIndex, aY) : aSampleAt(aX, aIndex);
  };

  std::array<std::uint32_t, 3> colours{};
  colours[GetFilterOffset(aRed, aX, aY)] = sampleAt(index);
  if (count > 1) {
    const std::size_t neighbour = isOneLine ? GetFilterOffset(aRed, aX + 1, aY) : GetFilterOffset(aRed, aX, aY + 1);
    colours[neighbour] = GetMean(sampleAt(GetPrevious(index)), sampleAt(GetNext(index, count)));
  }
  StorePixel(aPixel, colours[0], colours[1], colours[2]);
}

} // namespace krbuffer
