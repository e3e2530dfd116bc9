#pragma once
// Conversion to BGRa8 of the formats that have a reader of whole lines; tables, where there are any, are applied to the
// bytes that it wrote.

#include "lineconverter.h"
#include "pixelreaders.h"
#include "tonetables.h"

#include <memory>

namespace krbuffer {

class ByteConverter final : public LineConverter {
public:
  /// Tables, which may be null, have one entry for each byte.
  ByteConverter(const LineSource& aSource, LineReader aReader, std::shared_ptr<const ToneTables> aTables);
  void ConvertLine(std::uint32_t aLine, std::uint8_t* aDestination, StoreKind aStores) const override;

private:
  LineReader mReader;
  std::shared_ptr<const ToneTables> mTables;
};

} // namespace krbuffer
