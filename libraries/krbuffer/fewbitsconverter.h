#pragma once
// Conversion to BGRa8 of grey samples of fewer than 8 bits, whose tables are short enough for vectors.

#include "kernels/fewbitsreaders.h"
#include "lineconverter.h"
#include "tonetables.h"

namespace krbuffer {

class FewBitsConverter final : public LineConverter {
public:
  FewBitsConverter(const LineSource& aSource, FewBitsReader aReader, unsigned aBits, const ToneTables& aTables);
  void ConvertLine(std::uint32_t aLine, std::uint8_t* aDestination, StoreKind aStores) const override;

private:
  FewBitsReader mReader;
  FewBitsTable mTable{};
};

} // namespace krbuffer
