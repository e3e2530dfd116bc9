#include "samplereader.h"

#include "kernels/samplekernels.h"

#include <algorithm>
#include <array>
#include <utility>

namespace krbuffer {

namespace {

/// A sample of a group that begins on a byte, out of the bytes that its bits lie in.
template <unsigned Bits, std::size_t Index>
std::uint16_t ExtractSample(const std::uint8_t* aGroup) {
  constexpr std::size_t kFirstByte = Index * Bits / 8;
  constexpr std::size_t kEndByte = (Index * Bits + Bits + 7) / 8;
  std::uint32_t bits = 0;
  for (std::size_t byte = kFirstByte; byte < kEndByte; ++byte)
    bits |= std::uint32_t{aGroup[byte]} << (8 * (byte - kFirstByte));
  return static_cast<std::uint16_t>((bits >> (Index * Bits % 8)) & ((1u << Bits) - 1));
}

template <unsigned Bits, std::size_t... Index>
void ReadGroup(const std::uint8_t* aGroup, std::uint16_t* aSamples, std::index_sequence<Index...>) {
  ((aSamples[Index] = ExtractSample<Bits, Index>(aGroup)), ...);
}

/// Bits that lie one after the other, the least significant first: whole groups at once, then a byte at a time, when a
/// sample needs it.
template <unsigned Bits>
void ReadLsbFirst(const std::uint8_t* aLine, std::size_t aFirst, std::size_t aCount, std::uint16_t* aSamples) {
  constexpr std::uint32_t kMask = (1u << Bits) - 1;
  const std::uint8_t* bytes = aLine + aFirst * Bits / 8;
  std::size_t i = 0;
  for (; i + kSampleAlignment <= aCount; i += kSampleAlignment, bytes += kSampleAlignment * Bits / 8)
    ReadGroup<Bits>(bytes, aSamples + i, std::make_index_sequence<kSampleAlignment>());
  std::uint32_t bits = 0;
  for (unsigned bitsThere = 0; i < aCount; ++i, bitsThere -= Bits) {
    for (; bitsThere < Bits; bitsThere += 8)
      bits |= std::uint32_t{*bytes++} << bitsThere;
    aSamples[i] = static_cast<std::uint16_t>(bits & kMask);
    bits >>= Bits;
  }
}

/// Two samples in three bytes: the first one's high 8 bits, the low bits of both (the second one's in the upper half of
/// the byte), the second one's high 8 bits.
template <unsigned Bits>
void ReadGigEPacked(const std::uint8_t* aLine, std::size_t aFirst, std::size_t aCount, std::uint16_t* aSamples) {
  constexpr unsigned kLowBits = Bits - 8;
  constexpr std::uint32_t kLowMask = (1u << kLowBits) - 1;
  const auto join = [](std::uint32_t aHigh, std::uint32_t aLow) {
    return static_cast<std::uint16_t>((aHigh << kLowBits) | (aLow & kLowMask));
  };
  const std::uint8_t* bytes = aLine + aFirst / 2 * 3;
  const std::size_t pairs = aCount / 2;
  for (std::size_t pair = 0; pair < pairs; ++pair, bytes += 3) {
    aSamples[2 * pair] = join(bytes[0], bytes[1]);
    aSamples[2 * pair + 1] = join(bytes[2], bytes[1] >> 4);
  }
  if (aCount % 2 != 0)
    aSamples[aCount - 1] = join(bytes[0], bytes[1]);
}

/// Samples in bytes of their own; Flipped is the sign bit of signed ones.
template <unsigned Bits, unsigned Flipped>
void ReadBytes(const std::uint8_t* aLine, std::size_t aFirst, std::size_t aCount, std::uint16_t* aSamples) {
  constexpr unsigned kMask = (1u << Bits) - 1;
  for (std::size_t i = 0; i < aCount; ++i)
    aSamples[i] = static_cast<std::uint16_t>((aLine[aFirst + i] & kMask) ^ Flipped);
}

/// Samples in words of 16 bits, least significant byte first; Flipped is the sign bit of signed ones.
template <unsigned Bits, unsigned Flipped>
void ReadWords(const std::uint8_t* aLine, std::size_t aFirst, std::size_t aCount, std::uint16_t* aSamples) {
  constexpr std::uint32_t kMask = (1u << Bits) - 1;
  const std::uint8_t* bytes = aLine + 2 * aFirst;
  for (std::size_t i = 0; i < aCount; ++i) {
    const std::uint32_t word = bytes[2 * i] | (std::uint32_t{bytes[2 * i + 1]} << 8);
    aSamples[i] = static_cast<std::uint16_t>((word & kMask) ^ Flipped);
  }
}

struct PackingRow {
  KrPixelPacking packing;
  KrSampleKind sampleKind;
  std::uint8_t bitsPerSample;
  SampleReader read;
};

constexpr std::array kPackings = {
    PackingRow{KrPixelPacking::LsbFirst, KrSampleKind::Unsigned, 1, &ReadLsbFirst<1>},
    PackingRow{KrPixelPacking::LsbFirst, KrSampleKind::Unsigned, 2, &ReadLsbFirst<2>},
    PackingRow{KrPixelPacking::LsbFirst, KrSampleKind::Unsigned, 4, &ReadLsbFirst<4>},
    PackingRow{KrPixelPacking::LsbFirst, KrSampleKind::Unsigned, 10, &ReadLsbFirst<10>},
    PackingRow{KrPixelPacking::LsbFirst, KrSampleKind::Unsigned, 12, &ReadLsbFirst<12>},
    PackingRow{KrPixelPacking::LsbFirst, KrSampleKind::Unsigned, 14, &ReadLsbFirst<14>},
    PackingRow{KrPixelPacking::GigE, KrSampleKind::Unsigned, 10, &ReadGigEPacked<10>},
    PackingRow{KrPixelPacking::GigE, KrSampleKind::Unsigned, 12, &ReadGigEPacked<12>},
    PackingRow{KrPixelPacking::Words, KrSampleKind::Unsigned, 1, &ReadBytes<1, 0>},
    PackingRow{KrPixelPacking::Words, KrSampleKind::Unsigned, 8, &ReadBytes<8, 0>},
    PackingRow{KrPixelPacking::Words, KrSampleKind::Signed, 8, &ReadBytes<8, 0x80>},
    PackingRow{KrPixelPacking::Words, KrSampleKind::Unsigned, 10, &ReadWords<10, 0>},
    PackingRow{KrPixelPacking::Words, KrSampleKind::Unsigned, 12, &ReadWords<12, 0>},
    PackingRow{KrPixelPacking::Words, KrSampleKind::Unsigned, 14, &ReadWords<14, 0>},
    PackingRow{KrPixelPacking::Words, KrSampleKind::Unsigned, 16, &ReadWords<16, 0>},
    PackingRow{KrPixelPacking::Words, KrSampleKind::Signed, 16, &ReadWords<16, 0x8000>},
};

} // namespace

SampleReader FindSampleReader(const KrPixelTypeInfo& aFormat) {
  if (const SampleReader reader = FindSampleVectorReader(aFormat))
    return reader;
  const auto row = std::find_if(kPackings.begin(), kPackings.end(), [&aFormat](const PackingRow& aRow) {
    return aRow.packing == aFormat.packing && aRow.sampleKind == aFormat.sampleKind &&
           aRow.bitsPerSample == aFormat.bitsPerSample;
  });
  return row != kPackings.end() ? row->read : nullptr;
}

std::uint16_t ReadSample(SampleReader aReader, const std::uint8_t* aLine, std::size_t aIndex) {
  std::array<std::uint16_t, kSampleAlignment> samples;
  const std::size_t first = aIndex / kSampleAlignment * kSampleAlignment;
  aReader(aLine, first, aIndex - first + 1, samples.data());
  return samples[aIndex - first];
}

} // namespace krbuffer
