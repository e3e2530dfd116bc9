#include "pixelreaders.h"

#include "bayerreader.h"
#include "bgrapixel.h"
#include "lumachroma.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace krbuffer {

namespace {

void ReadMono8(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* __restrict aBgra, StoreKind) {
  const std::uint8_t* __restrict samples = aSource.GetLine(aLine);
  for (std::size_t x = 0; x < aSource.width; ++x)
    StoreGrey(aBgra + kBgraBytes * x, samples[x]);
}

/// Samples in words of 16 bits, least significant byte first; bits above the significant ones are not looked at.
template <unsigned SignificantBits>
void ReadMono16Bit(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* __restrict aBgra, StoreKind) {
  constexpr unsigned kShift = SignificantBits - 8;
  const std::uint8_t* __restrict bytes = aSource.GetLine(aLine);
  for (std::size_t x = 0; x < aSource.width; ++x) {
    const std::uint32_t word = bytes[2 * x] | (std::uint32_t{bytes[2 * x + 1]} << 8);
    StoreGrey(aBgra + kBgraBytes * x, (word >> kShift) & 0xFFu);
  }
}

/// Two samples of 12 bits in three bytes, least significant bit first. The second sample's top 8 bits are the third
/// byte; a last sample without a second one takes two bytes.
void ReadMono12p(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* __restrict aBgra, StoreKind) {
  const auto getEvenSample = [](const std::uint8_t* aBytes) {
    return (aBytes[0] >> 4) | ((std::uint32_t{aBytes[1]} & 0x0Fu) << 4);
  };
  const std::uint8_t* __restrict bytes = aSource.GetLine(aLine);
  const std::size_t pairs = aSource.width / 2;
  for (std::size_t pair = 0; pair < pairs; ++pair) {
    StoreGrey(aBgra + 2 * kBgraBytes * pair, getEvenSample(bytes + 3 * pair));
    StoreGrey(aBgra + 2 * kBgraBytes * pair + kBgraBytes, bytes[3 * pair + 2]);
  }
  if (aSource.width % 2 != 0)
    StoreGrey(aBgra + 2 * kBgraBytes * pairs, getEvenSample(bytes + 3 * pairs));
}

/// Red, green and blue in bytes of their own; the places are their offsets in the pixel.
template <std::size_t RedPlace, std::size_t BluePlace>
void ReadColour24(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* __restrict aBgra, StoreKind) {
  const std::uint8_t* __restrict bytes = aSource.GetLine(aLine);
  for (std::size_t x = 0; x < aSource.width; ++x)
    StoreBgra(aBgra + kBgraBytes * x, bytes[3 * x + BluePlace], bytes[3 * x + 1], bytes[3 * x + RedPlace], kOpaque);
}

/// Red and blue change places in a pixel's word; as bytes, this loop is not made of vectors.
void ReadRGBa8(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* __restrict aBgra, StoreKind) {
  const std::uint8_t* __restrict bytes = aSource.GetLine(aLine);
  for (std::size_t x = 0; x < aSource.width; ++x) {
    std::uint32_t word = 0;
    std::memcpy(&word, bytes + kBgraBytes * x, sizeof word);
    StoreBgra(aBgra + kBgraBytes * x, (word >> 16) & 0xFFu, (word >> 8) & 0xFFu, word & 0xFFu, word >> 24);
  }
}

void ReadBGRa8(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* __restrict aBgra, StoreKind) {
  std::copy_n(aSource.GetLine(aLine), kBgraBytes * aSource.width, aBgra);
}

/// Signed bytes, from black at -128 to white at 127.
void ReadMono8s(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* __restrict aBgra, StoreKind) {
  const std::uint8_t* __restrict samples = aSource.GetLine(aLine);
  for (std::size_t x = 0; x < aSource.width; ++x)
    StoreGrey(aBgra + kBgraBytes * x, samples[x] ^ 0x80u);
}

void ReadPlanar8(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* __restrict aBgra, StoreKind) {
  const std::uint8_t* __restrict red = aSource.GetPlaneLine(0, aLine);
  const std::uint8_t* __restrict green = aSource.GetPlaneLine(1, aLine);
  const std::uint8_t* __restrict blue = aSource.GetPlaneLine(2, aLine);
  for (std::size_t x = 0; x < aSource.width; ++x)
    StoreBgra(aBgra + kBgraBytes * x, blue[x], green[x], red[x], kOpaque);
}

/// Components of 5, 6 and 5 bits, the first in the lowest bits, widened to the nearest byte.
template <bool IsRedFirst>
void Read565(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* __restrict aBgra, StoreKind) {
  const auto widen = [](std::uint32_t aComponent, std::uint32_t aGreatest) {
    return (aComponent * 255 + aGreatest / 2) / aGreatest;
  };
  const std::uint8_t* __restrict bytes = aSource.GetLine(aLine);
  for (std::size_t x = 0; x < aSource.width; ++x) {
    const std::uint32_t word = bytes[2 * x] | (std::uint32_t{bytes[2 * x + 1]} << 8);
    const std::uint32_t first = widen(word & 0x1Fu, 0x1F);
    const std::uint32_t last = widen(word >> 11, 0x1F);
    StoreBgra(aBgra + kBgraBytes * x, IsRedFirst ? last : first, widen((word >> 5) & 0x3Fu, 0x3F),
              IsRedFirst ? first : last, kOpaque);
  }
}

/// What a reader needs to know of a format.
struct ReaderRow {
  KrPixelLayout layout;
  KrPixelPacking packing;
  std::uint8_t bitsPerSample;
  LineReader read;
  KrSampleKind sampleKind = KrSampleKind::Unsigned;
};

using Layout = KrPixelLayout;
using Packing = KrPixelPacking;

constexpr std::array kReaders = {
    ReaderRow{Layout::Mono, Packing::Words, 8, &ReadMono8},
    ReaderRow{Layout::Mono, Packing::Words, 8, &ReadMono8s, KrSampleKind::Signed},
    ReaderRow{Layout::Mono, Packing::Words, 10, &ReadMono16Bit<10>},
    ReaderRow{Layout::Mono, Packing::Words, 12, &ReadMono16Bit<12>},
    ReaderRow{Layout::Mono, Packing::Words, 14, &ReadMono16Bit<14>},
    ReaderRow{Layout::Mono, Packing::Words, 16, &ReadMono16Bit<16>},
    ReaderRow{Layout::Mono, Packing::LsbFirst, 12, &ReadMono12p},
    ReaderRow{Layout::BayerGR, Packing::Words, 8, &ReadBayerGR8},
    ReaderRow{Layout::BayerRG, Packing::Words, 8, &ReadBayerRG8},
    ReaderRow{Layout::BayerGB, Packing::Words, 8, &ReadBayerGB8},
    ReaderRow{Layout::BayerBG, Packing::Words, 8, &ReadBayerBG8},
    ReaderRow{Layout::RGB, Packing::Words, 8, &ReadColour24<0, 2>},
    ReaderRow{Layout::BGR, Packing::Words, 8, &ReadColour24<2, 0>},
    ReaderRow{Layout::RGBa, Packing::Words, 8, &ReadRGBa8},
    ReaderRow{Layout::BGRa, Packing::Words, 8, &ReadBGRa8},
    ReaderRow{Layout::RGBPlanar, Packing::Words, 8, &ReadPlanar8},
    ReaderRow{Layout::RGB, Packing::LsbFirst, 6, &Read565<true>},
    ReaderRow{Layout::BGR, Packing::LsbFirst, 6, &Read565<false>},
};

} // namespace

LineReader FindLineReader(const KrPixelTypeInfo& aFormat) {
  if (aFormat.colorSpace != KrColorSpace::None)
    return FindLumaChromaReader(aFormat);
  const auto row = std::find_if(kReaders.begin(), kReaders.end(), [&aFormat](const ReaderRow& aRow) {
    return aRow.layout == aFormat.layout && aRow.packing == aFormat.packing &&
           aRow.bitsPerSample == aFormat.bitsPerSample && aRow.sampleKind == aFormat.sampleKind;
  });
  return row != kReaders.end() ? row->read : nullptr;
}

} // namespace krbuffer
