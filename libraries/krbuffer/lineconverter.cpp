#include "lineconverter.h"

#include "byteconverter.h"
#include "unpacker.h"

namespace krbuffer {

bool CanConvertLines(KrPixelType aSource, KrPixelType aDestination) {
  return aDestination == KrPixel::BGRa8 ? FindLineReader(aSource) != nullptr : CanUnpack(aSource, aDestination);
}

std::unique_ptr<LineConverter> MakeLineConverter(const LineSource& aSource, KrPixelType aSourceType,
                                                 KrPixelType aDestinationType) {
  if (aDestinationType != KrPixel::BGRa8)
    return MakeUnpacker(aSource, aSourceType, aDestinationType);
  const LineReader reader = FindLineReader(aSourceType);
  return reader ? std::make_unique<ByteConverter>(aSource, reader) : nullptr;
}

} // namespace krbuffer
