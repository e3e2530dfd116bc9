#pragma once
// What an image of any format means, sample by sample and bit by bit, from the definition of the formats' packings and
// colours. Written for comparison, apart from the library's readers, with which it shares the table of formats alone;
// slow.

#include "krbuffer/krpixeltype.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// What a conversion to BGRa8 shall do besides.
struct ReferenceSettings {
  double red = 1;
  double green = 1;
  double blue = 1;
  double gamma = 1;
  std::optional<double> low = std::nullopt;
  std::optional<double> high = std::nullopt;
};

class PixelReference {
public:
  PixelReference(const KrPixelTypeInfo& aFormat, int aWidth, int aHeight, int aPaddingX,
                 const std::vector<std::uint8_t>& aBytes);

  /// The bytes that an image of the format takes.
  static std::size_t GetImageBytes(const KrPixelTypeInfo& aFormat, int aWidth, int aHeight, int aPaddingX,
                                   int aPaddingY);

  /// All samples, pixel after pixel, in one or two bytes each.
  std::vector<std::uint8_t> GetUnpacked() const;
  std::vector<std::uint8_t> GetBgra(const ReferenceSettings& aSettings = {}) const;

  struct RawSample {
    char component;
    double value;
  };
  /// What the sensor sent for one pixel: of formats with chroma Y, U and V.
  std::vector<RawSample> GetRaw(int aX, int aY) const;

private:
  struct Colour {
    double red, green, blue;
  };
  struct Range {
    double least, greatest;
  };

  int GetLineBytes() const;
  bool GetBit(int aLine, int aByte, int aBit) const;
  int GetByte(int aLine, int aByte) const { return mBytes.at(static_cast<std::size_t>(aLine * mStride + aByte)); }
  /// A component of a pixel, as the number that its bits say; signed ones are negative where their top bit is set.
  int GetSample(int aX, int aY, int aComponent) const;
  int GetSampleOf565(int aX, int aY, int aComponent) const;
  double GetFloat(int aX, int aY) const;
  /// A sample that has a word of its own, of 8 to 64 bits, by its place in the line.
  double GetWord(int aIndex, int aY) const;
  std::vector<RawSample> GetRawLumaChroma(int aX, int aY) const;
  int GetComponentCount() const;

  double InterpolateBayer(char aColour, int aX, int aY) const;
  char GetFilterColour(int aX, int aY) const;
  /// Blue, green, red of luma and chroma.
  Colour GetLumaChromaColour(int aX, int aY) const;
  /// The pixel's colours in units of its samples, or in 0 to 255 where the format's samples are no such units.
  Colour GetColour(int aX, int aY) const;

  bool IsByteColour() const;
  bool IsColour() const;
  std::uint8_t Reduce(double aValue, double aFactor, const ReferenceSettings& aSettings) const;
  std::uint8_t ReduceFloat(double aValue, const std::optional<Range>& aRange, const ReferenceSettings& aSettings) const;
  std::optional<Range> FindFloatRange() const;

  KrPixelTypeInfo mFormat;
  int mWidth;
  int mHeight;
  int mStride;
  int mPlanes;
  const std::vector<std::uint8_t>& mBytes;
};
