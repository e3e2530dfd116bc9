#include "bgracopier.h"

namespace krbuffer {

BgraCopier::BgraCopier(const LineSource& aSource, LineReader aReader) : LineConverter(aSource), mReader(aReader) {}

void BgraCopier::ConvertLine(std::uint32_t aLine, std::uint8_t* aDestination, StoreKind aStores) const {
  mReader(mSource, aLine, aDestination, aStores);
}

const std::uint8_t* BgraCopier::FindLine(std::uint32_t aLine) const {
  return mSource.GetLine(aLine);
}

} // namespace krbuffer
