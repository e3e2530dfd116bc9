#include "pixelreaders.h"

#include "bayerreader.h"
#include "kernels/packedreaders.h"
#include "kernels/readertable.h"
#include "kernels/wordreaders.h"
#include "lumachroma.h"

#include <array>

namespace krbuffer {

namespace {

using Layout = KrPixelLayout;
using Packing = KrPixelPacking;

constexpr std::array kBayerReaders = {
    ReaderRow{Layout::BayerGR, Packing::Words, 8, &ReadBayerGR8},
    ReaderRow{Layout::BayerRG, Packing::Words, 8, &ReadBayerRG8},
    ReaderRow{Layout::BayerGB, Packing::Words, 8, &ReadBayerGB8},
    ReaderRow{Layout::BayerBG, Packing::Words, 8, &ReadBayerBG8},
};

LineReader FindBayerReader(const KrPixelTypeInfo& aFormat) {
  return FindReader(kBayerReaders, aFormat);
}

} // namespace

LineReader FindLineReader(const KrPixelTypeInfo& aFormat) {
  for (const auto find : {&FindWordReader, &FindPackedReader, &FindBayerReader, &FindLumaChromaReader})
    if (const LineReader reader = find(aFormat))
      return reader;
  return nullptr;
}

} // namespace krbuffer
