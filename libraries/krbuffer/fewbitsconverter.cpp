#include "fewbitsconverter.h"

#include <algorithm>

namespace krbuffer {

FewBitsConverter::FewBitsConverter(const LineSource& aSource, FewBitsReader aReader, unsigned aBits,
                                   const ToneTables& aTables)
    : LineConverter(aSource), mReader(aReader) {
  std::copy_n(aTables.GetGreyTable(), std::size_t{1} << aBits, mTable.begin());
}

void FewBitsConverter::ConvertLine(std::uint32_t aLine, std::uint8_t* aDestination, StoreKind aStores) const {
  mReader(mSource, aLine, aDestination, aStores, mTable);
}

} // namespace krbuffer
