#pragma once
// Conversion to BGRa8 of Bayer images whose samples are wider than bytes, without tables: they are interpolated at
// their full depth by vectors and then shown by their top 8 bits.

#include "bayerinterpolation.h"
#include "krbuffer/krpixeltype.h"
#include "lineconverter.h"
#include "samplereader.h"

namespace krbuffer {

class DeepBayerConverter final : public LineConverter {
public:
  /// True for the formats and sizes that it converts: 10 to 16 bits, two lines and two columns or more.
  static bool CanConvert(const LineSource& aSource, const KrPixelTypeInfo& aFormat);

  DeepBayerConverter(const LineSource& aSource, SampleReader aSamples, const KrPixelTypeInfo& aFormat);
  void ConvertLine(std::uint32_t aLine, std::uint8_t* aDestination, StoreKind aStores) const override;
  /// Unpacks each line once.
  void ConvertLines(std::uint32_t aFirst, std::uint32_t aEnd, std::uint8_t* aDestination, std::ptrdiff_t aStrideBytes,
                    StoreKind aStores) const override;

private:
  SampleReader mSamples;
  RedParity mRed;
  unsigned mBits;
};

} // namespace krbuffer
