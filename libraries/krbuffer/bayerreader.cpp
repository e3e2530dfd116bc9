#include "bayerreader.h"

#include "bayerinterpolation.h"
#include "kernels/bayerkernels.h"

namespace krbuffer {

namespace {

void ReadBayerLine(const LineSource& aSource, RedParity aRed, std::uint32_t aLine, std::uint8_t* aBgra,
                   StoreKind aStores) {
  if (IsThin(aSource)) {
    auto* pixels = reinterpret_cast<BgraPixel*>(aBgra);
    const auto sampleAt = [&aSource](std::uint32_t aX, std::uint32_t aY) { return aSource.GetLine(aY)[aX]; };
    for (std::uint32_t x = 0; x < aSource.width; ++x)
      InterpolateThinPixel(aSource, aRed, x, aLine, sampleAt, pixels[x]);
    return;
  }
  const Neighbourhood<std::uint8_t> lines{aSource.GetLine(GetPrevious(aLine)), aSource.GetLine(aLine),
                                          aSource.GetLine(GetNext(aLine, aSource.height))};
  InterpolateBayerBytes(lines, GetLineParity(aRed, aLine), aSource.width, aBgra, aStores);
}

} // namespace

void ReadBayerGR8(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra, StoreKind aStores) {
  ReadBayerLine(aSource, kParityGR, aLine, aBgra, aStores);
}

void ReadBayerRG8(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra, StoreKind aStores) {
  ReadBayerLine(aSource, kParityRG, aLine, aBgra, aStores);
}

void ReadBayerGB8(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra, StoreKind aStores) {
  ReadBayerLine(aSource, kParityGB, aLine, aBgra, aStores);
}

void ReadBayerBG8(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra, StoreKind aStores) {
  ReadBayerLine(aSource, kParityBG, aLine, aBgra, aStores);
}

} // namespace krbuffer
