#pragma once
// Conversion to BGRa8 of one component a pixel in IEEE 754 numbers of 32 bits.

#include "lineconverter.h"
#include "tonetables.h"

namespace krbuffer {

/// By default the finite minimum becomes black and the finite maximum white, an image of one value black; with a window
/// its ends do. What is no number is black, as is negative infinity; positive infinity is white.
class FloatConverter final : public LineConverter {
public:
  /// Reads the whole image for its range, unless the settings have a window.
  FloatConverter(const LineSource& aSource, const ToneSettings& aSettings);
  void ConvertLine(std::uint32_t aLine, std::uint8_t* aDestination, StoreKind aStores) const override;

private:
  std::uint8_t Show(double aValue) const;

  double mGamma;
  KrSampleWindow mWindow;
};

} // namespace krbuffer
