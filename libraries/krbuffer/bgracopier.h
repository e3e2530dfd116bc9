#pragma once
// "Conversion" of images that are BGRa8 already, to which no settings apply: their lines can be had without a copy.

#include "lineconverter.h"
#include "pixelreaders.h"

namespace krbuffer {

class BgraCopier final : public LineConverter {
public:
  /// The reader is that of BGRa8.
  BgraCopier(const LineSource& aSource, LineReader aReader);
  void ConvertLine(std::uint32_t aLine, std::uint8_t* aDestination, StoreKind aStores) const override;
  const std::uint8_t* FindLine(std::uint32_t aLine) const override;

private:
  LineReader mReader;
};

} // namespace krbuffer
