#include "simulation/lineencoder.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <numeric>
#include <string_view>

namespace krtransport {

namespace {

constexpr std::uint32_t kByteBits = 8;
constexpr std::uint8_t kLargest = 255;

// The components of a pixel in the order in which they are stored, by letter: R G B, K for grey, a for alpha.
struct ComponentRow {
  KrPixelLayout layout;
  std::string_view components;
};
constexpr std::array<ComponentRow, 6> kComponents = {{
    {KrPixelLayout::Mono, "K"},
    {KrPixelLayout::RGB, "RGB"},
    {KrPixelLayout::BGR, "BGR"},
    {KrPixelLayout::RGBa, "RGBa"},
    {KrPixelLayout::BGRa, "BGRa"},
    {KrPixelLayout::RGBPlanar, "RGB"},
}};

// The colours of a filter array: columns 0 and 1 of line 0, then of line 1.
struct FilterRow {
  KrPixelLayout layout;
  std::string_view sites;
};
constexpr std::array<FilterRow, 4> kFilters = {{
    {KrPixelLayout::BayerGR, "GRBG"},
    {KrPixelLayout::BayerRG, "RGGB"},
    {KrPixelLayout::BayerGB, "GBRG"},
    {KrPixelLayout::BayerBG, "BGGR"},
}};

// How luma and chroma of a group of pixels follow each other; the lumas are the pixels' in their order.
struct ChromaRow {
  KrPixelLayout layout;
  std::uint32_t pixels;
  std::string_view order;
};
constexpr std::array<ChromaRow, 6> kChromas = {{
    {KrPixelLayout::YUV, 1, "YUV"},
    {KrPixelLayout::UYV, 1, "UYV"},
    {KrPixelLayout::YUYV, 2, "YUYV"},
    {KrPixelLayout::UYVY, 2, "UYVY"},
    {KrPixelLayout::UYYVYY, 4, "UYYVYY"},
    {KrPixelLayout::YYUYYV, 4, "YYUYYV"},
}};

// Kr and Kb of ITU-R BT.601 and BT.709, and the codes that luma and chroma reach.
struct SpaceRow {
  KrColorSpace space;
  double redShare;
  double blueShare;
  double lumaFloor;
  double lumaRange;
  double chromaRange;
};
constexpr std::array<SpaceRow, 3> kSpaces = {{
    {KrColorSpace::Full601, 0.299, 0.114, 0.0, 255.0, 255.0},
    {KrColorSpace::Video601, 0.299, 0.114, 16.0, 219.0, 224.0},
    {KrColorSpace::Video709, 0.2126, 0.0722, 16.0, 219.0, 224.0},
}};

template <typename Rows>
const typename Rows::value_type* FindRow(const Rows& aRows, KrPixelLayout aLayout) {
  const auto row = std::ranges::find(aRows, aLayout, &Rows::value_type::layout);
  return row == aRows.end() ? nullptr : &*row;
}

std::uint8_t GetComponent(const PatternColour& aColour, char aLetter) {
  switch (aLetter) {
  case 'R':
    return aColour.red;
  case 'G':
    return aColour.green;
  case 'B':
    return aColour.blue;
  case 'a':
    return kLargest;
  default:
    return aColour.grey;
  }
}

std::uint64_t EncodeSample(std::uint8_t aValue, std::uint32_t aBits, KrSampleKind aKind) {
  if (aKind == KrSampleKind::Float)
    return std::bit_cast<std::uint32_t>(static_cast<float>(aValue));
  const std::uint64_t largest = (std::uint64_t{1} << aBits) - 1;
  const std::uint64_t sample =
      aBits <= kByteBits ? std::uint64_t{aValue} >> (kByteBits - aBits) : std::uint64_t{aValue} * largest / kLargest;
  // The lower half of the ramp is negative.
  return aKind == KrSampleKind::Signed ? sample ^ std::uint64_t{1} << (aBits - 1) : sample;
}

// Of the formats with 16 bits for three components green has the bit more.
std::uint32_t GetSampleBits(const KrPixelTypeInfo& aInfo, char aLetter) {
  const bool isPacked565 = aInfo.type == KrPixel::RGB565p || aInfo.type == KrPixel::BGR565p;
  return isPacked565 && aLetter != 'G' ? 5 : aInfo.bitsPerSample;
}

void PutBits(std::uint8_t* aLine, std::size_t aFirstBit, std::uint32_t aBits, std::uint64_t aValue) {
  for (std::uint32_t done = 0; done < aBits;) {
    const std::size_t position = aFirstBit + done;
    const std::uint32_t shift = position % kByteBits;
    aLine[position / kByteBits] |= static_cast<std::uint8_t>(aValue >> done << shift);
    done += kByteBits - shift;
  }
}

struct LumaChroma {
  std::uint8_t luma;
  std::uint8_t blueDifference;
  std::uint8_t redDifference;
};

std::uint8_t Round(double aValue) {
  return static_cast<std::uint8_t>(std::clamp(std::lround(aValue), 0L, 255L));
}

LumaChroma GetLumaChroma(const PatternColour& aColour, const SpaceRow& aSpace) {
  const double luma = aSpace.redShare * aColour.red + (1.0 - aSpace.redShare - aSpace.blueShare) * aColour.green +
                      aSpace.blueShare * aColour.blue;
  const double blue = (aColour.blue - luma) / (2.0 * (1.0 - aSpace.blueShare));
  const double red = (aColour.red - luma) / (2.0 * (1.0 - aSpace.redShare));
  return {Round(aSpace.lumaFloor + luma * aSpace.lumaRange / kLargest),
          Round(128.0 + blue * aSpace.chromaRange / kLargest), Round(128.0 + red * aSpace.chromaRange / kLargest)};
}

} // namespace

LineEncoder::LineEncoder(const KrPixelTypeInfo& aInfo) : mInfo(aInfo) {}

bool LineEncoder::CanEncode(const KrPixelTypeInfo& aInfo) {
  if (FindRow(kChromas, aInfo.layout))
    return aInfo.bitsPerSample == kByteBits;
  const bool isKnown = FindRow(kComponents, aInfo.layout) || FindRow(kFilters, aInfo.layout);
  return isKnown && aInfo.packing != KrPixelPacking::Other && aInfo.bitsPerSample <= 32;
}

std::uint32_t LineEncoder::GetPlaneCount() const {
  return mInfo.layout == KrPixelLayout::RGBPlanar ? 3 : 1;
}

std::uint32_t LineEncoder::GetLineKindCount() const {
  return FindRow(kFilters, mInfo.layout) ? 2 : GetPlaneCount();
}

std::uint32_t LineEncoder::GetLineKind(std::uint32_t aPlane, std::uint32_t aLine) const {
  return FindRow(kFilters, mInfo.layout) ? aLine % 2 : aPlane;
}

std::uint32_t LineEncoder::GetBitsPerPixel() const {
  return mInfo.bitsPerPixel / GetPlaneCount();
}

std::uint32_t LineEncoder::GetGroupPixels() const {
  const auto* const chroma = FindRow(kChromas, mInfo.layout);
  if (chroma)
    return chroma->pixels;
  return std::lcm(2U, kByteBits / std::gcd(GetBitsPerPixel(), kByteBits));
}

std::size_t LineEncoder::GetLineBytes(std::size_t aWidth) const {
  return (aWidth * GetBitsPerPixel() + kByteBits - 1) / kByteBits;
}

std::uint8_t LineEncoder::GetTailMask(std::size_t aWidth) const {
  const std::size_t bits = aWidth * GetBitsPerPixel() % kByteBits;
  const bool endsAtByte = bits == 0 || FindRow(kChromas, mInfo.layout);
  return endsAtByte ? kLargest : static_cast<std::uint8_t>((1u << bits) - 1);
}

void LineEncoder::Encode(std::uint32_t aLineKind, std::span<const PatternColour> aPixels, std::uint8_t* aOut) const {
  std::fill_n(aOut, GetLineBytes(aPixels.size()), std::uint8_t{0});
  if (FindRow(kChromas, mInfo.layout))
    EncodeLumaChroma(aPixels, aOut);
  else if (mInfo.packing == KrPixelPacking::GigE)
    EncodePairs(aLineKind, aPixels, aOut);
  else
    EncodeComponents(aLineKind, aPixels, aOut);
}

void LineEncoder::EncodeComponents(std::uint32_t aLineKind, std::span<const PatternColour> aPixels,
                                   std::uint8_t* aOut) const {
  const auto* const filter = FindRow(kFilters, mInfo.layout);
  std::string_view components = filter ? filter->sites : FindRow(kComponents, mInfo.layout)->components;
  if (GetPlaneCount() > 1)
    components = components.substr(aLineKind, 1);
  const std::size_t count = filter ? 1 : components.size();
  const auto cellBits = static_cast<std::uint32_t>(GetBitsPerPixel() / count);
  for (std::size_t x = 0; x < aPixels.size(); ++x) {
    std::size_t position = x * GetBitsPerPixel();
    for (std::size_t i = 0; i < count; ++i) {
      const char letter = filter ? components[aLineKind * 2 + x % 2] : components[i];
      const std::uint32_t bits = GetSampleBits(mInfo, letter);
      const std::uint64_t sample = EncodeSample(GetComponent(aPixels[x], letter), bits, mInfo.sampleKind);
      PutBits(aOut, position, bits, sample);
      position += mInfo.packing == KrPixelPacking::Words ? cellBits : bits;
    }
  }
}

// GigE Vision 1.x: the upper 8 bits of the first sample, then the lower bits of both in one byte (the first sample's in
// bits 0 and up, the second's in bits 4 and up), then the upper 8 bits of the second.
void LineEncoder::EncodePairs(std::uint32_t aLineKind, std::span<const PatternColour> aPixels,
                              std::uint8_t* aOut) const {
  const auto* const filter = FindRow(kFilters, mInfo.layout);
  const std::uint32_t lowBits = mInfo.bitsPerSample - kByteBits;
  for (std::size_t x = 0; x < aPixels.size(); ++x) {
    const char letter = filter ? filter->sites[aLineKind * 2 + x % 2] : 'K';
    const std::uint64_t sample = EncodeSample(GetComponent(aPixels[x], letter), mInfo.bitsPerSample, mInfo.sampleKind);
    std::uint8_t* const pair = aOut + x / 2 * 3;
    const std::uint64_t low = sample & ((1u << lowBits) - 1);
    pair[x % 2 == 0 ? 0 : 2] = static_cast<std::uint8_t>(sample >> lowBits);
    pair[1] |= static_cast<std::uint8_t>(low << (x % 2 == 0 ? 0 : 4));
  }
}

void LineEncoder::EncodeLumaChroma(std::span<const PatternColour> aPixels, std::uint8_t* aOut) const {
  const ChromaRow& row = *FindRow(kChromas, mInfo.layout);
  const SpaceRow& space = *std::ranges::find(kSpaces, mInfo.colorSpace, &SpaceRow::space);
  const std::size_t lineBytes = GetLineBytes(aPixels.size());
  for (std::size_t first = 0, byte = 0; first < aPixels.size(); first += row.pixels) {
    const LumaChroma shared = GetLumaChroma(aPixels[first], space);
    std::size_t pixel = first;
    for (std::size_t i = 0; i < row.order.size() && byte < lineBytes; ++i, ++byte) {
      if (row.order[i] == 'U')
        aOut[byte] = shared.blueDifference;
      else if (row.order[i] == 'V')
        aOut[byte] = shared.redDifference;
      else if (pixel < aPixels.size())
        aOut[byte] = GetLumaChroma(aPixels[pixel++], space).luma;
    }
  }
}

} // namespace krtransport
