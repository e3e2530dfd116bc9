#pragma once
// Conversion to BGRa8 of the formats that have a reader of whole lines.

#include "lineconverter.h"
#include "pixelreaders.h"

namespace krbuffer {

class ByteConverter final : public LineConverter {
public:
  ByteConverter(const LineSource& aSource, LineReader aReader) : mSource(aSource), mReader(aReader) {}
  void ConvertLine(std::uint32_t aLine, std::uint8_t* aDestination) const override {
    mReader(mSource, aLine, aDestination);
  }

private:
  LineSource mSource;
  LineReader mReader;
};

} // namespace krbuffer
