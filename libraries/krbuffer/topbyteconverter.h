#pragma once
// Conversion to BGRa8 of three colours whose samples are wider than bytes, without tables: the samples' top 8 bits make
// an image of bytes, a run of pixels at a time, which the reader of such images takes.

#include "kernels/samplekernels.h"
#include "krbuffer/krpixeltype.h"
#include "lineconverter.h"
#include "pixelreaders.h"

#include <memory>

namespace krbuffer {

class TopByteConverter final : public LineConverter {
public:
  /// Null for formats that this is no way for.
  static std::unique_ptr<TopByteConverter> Make(const LineSource& aSource, const KrPixelTypeInfo& aFormat);
  void ConvertLine(std::uint32_t aLine, std::uint8_t* aDestination, StoreKind aStores) const override;

private:
  TopByteConverter(const LineSource& aSource, TopByteReader aTopBytes, LineReader aBytes, bool aIsPlanar)
      : LineConverter(aSource), mTopBytes(aTopBytes), mBytes(aBytes), mIsPlanar(aIsPlanar) {}

  TopByteReader mTopBytes;
  LineReader mBytes;
  bool mIsPlanar;
};

} // namespace krbuffer
