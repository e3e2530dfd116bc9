#include "pixelreaders.h"

#include "bayerreader.h"
#include "bgrapixel.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace krbuffer {

namespace {

void ReadMono8(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* __restrict aBgra) {
  const std::uint8_t* __restrict samples = aSource.GetLine(aLine);
  for (std::size_t x = 0; x < aSource.width; ++x)
    StoreGrey(aBgra + kBgraBytes * x, samples[x]);
}

/// Samples in words of 16 bits, least significant byte first; bits above the significant ones are not looked at.
template <unsigned SignificantBits>
void ReadMono16Bit(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* __restrict aBgra) {
  constexpr unsigned kShift = SignificantBits - 8;
  const std::uint8_t* __restrict bytes = aSource.GetLine(aLine);
  for (std::size_t x = 0; x < aSource.width; ++x) {
    const std::uint32_t word = bytes[2 * x] | (std::uint32_t{bytes[2 * x + 1]} << 8);
    StoreGrey(aBgra + kBgraBytes * x, (word >> kShift) & 0xFFu);
  }
}

/// Two samples of 12 bits in three bytes, least significant bit first. The second sample's top 8 bits are the third
/// byte; a last sample without a second one takes two bytes.
void ReadMono12p(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* __restrict aBgra) {
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
void ReadColour24(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* __restrict aBgra) {
  const std::uint8_t* __restrict bytes = aSource.GetLine(aLine);
  for (std::size_t x = 0; x < aSource.width; ++x)
    StoreBgra(aBgra + kBgraBytes * x, bytes[3 * x + BluePlace], bytes[3 * x + 1], bytes[3 * x + RedPlace], kOpaque);
}

/// Red and blue change places in a pixel's word; as bytes, this loop is not made of vectors.
void ReadRGBa8(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* __restrict aBgra) {
  const std::uint8_t* __restrict bytes = aSource.GetLine(aLine);
  for (std::size_t x = 0; x < aSource.width; ++x) {
    std::uint32_t word = 0;
    std::memcpy(&word, bytes + kBgraBytes * x, sizeof word);
    StoreBgra(aBgra + kBgraBytes * x, (word >> 16) & 0xFFu, (word >> 8) & 0xFFu, word & 0xFFu, word >> 24);
  }
}

void ReadBGRa8(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* __restrict aBgra) {
  std::copy_n(aSource.GetLine(aLine), kBgraBytes * aSource.width, aBgra);
}

struct ReaderRow {
  KrPixelType type;
  LineReader read;
};

constexpr std::array kReaders = {
    ReaderRow{KrPixel::Mono8, &ReadMono8},          ReaderRow{KrPixel::Mono10, &ReadMono16Bit<10>},
    ReaderRow{KrPixel::Mono12, &ReadMono16Bit<12>}, ReaderRow{KrPixel::Mono14, &ReadMono16Bit<14>},
    ReaderRow{KrPixel::Mono16, &ReadMono16Bit<16>}, ReaderRow{KrPixel::Mono12p, &ReadMono12p},
    ReaderRow{KrPixel::BayerGR8, &ReadBayerGR8},    ReaderRow{KrPixel::BayerRG8, &ReadBayerRG8},
    ReaderRow{KrPixel::BayerGB8, &ReadBayerGB8},    ReaderRow{KrPixel::BayerBG8, &ReadBayerBG8},
    ReaderRow{KrPixel::RGB8, &ReadColour24<0, 2>},  ReaderRow{KrPixel::BGR8, &ReadColour24<2, 0>},
    ReaderRow{KrPixel::RGBa8, &ReadRGBa8},          ReaderRow{KrPixel::BGRa8, &ReadBGRa8},
};

} // namespace

LineReader FindLineReader(KrPixelType aType) {
  const auto row =
      std::find_if(kReaders.begin(), kReaders.end(), [aType](const ReaderRow& aRow) { return aRow.type == aType; });
  return row != kReaders.end() ? row->read : nullptr;
}

} // namespace krbuffer
