#include "byteconverter.h"

#include "bgrapixel.h"

#include <utility>

namespace krbuffer {

ByteConverter::ByteConverter(const LineSource& aSource, LineReader aReader, std::shared_ptr<const ToneTables> aTables)
    : LineConverter(aSource), mReader(aReader), mTables(std::move(aTables)) {}

void ByteConverter::ConvertLine(std::uint32_t aLine, std::uint8_t* aDestination, StoreKind aStores) const {
  if (!mTables) {
    mReader(mSource, aLine, aDestination, aStores);
    return;
  }
  // The tables take what the reader wrote: it must not leave the cache.
  mReader(mSource, aLine, aDestination, StoreKind::Cached);
  const std::uint8_t* blue = mTables->GetTable(ToneTables::Channel::Blue);
  const std::uint8_t* green = mTables->GetTable(ToneTables::Channel::Green);
  const std::uint8_t* red = mTables->GetTable(ToneTables::Channel::Red);
  for (std::size_t x = 0; x < mSource.width; ++x) {
    std::uint8_t* pixel = aDestination + kBgraBytes * x;
    StoreBgra(pixel, blue[pixel[0]], green[pixel[1]], red[pixel[2]], pixel[3]);
  }
}

} // namespace krbuffer
