#include "krbuffer/krpixelvalue.h"

#include "sourceimage.h"

#include <algorithm>
#include <bit>
#include <exception>
#include <optional>
#include <string>
#include <string_view>

namespace {

using krbuffer::ImageShape;
using krbuffer::SourceImage;

/// What the samples of a layout are, in the order of memory: of one pixel; of Bayer formats those of two lines of two
/// pixels; of luma and chroma those of a group.
struct Pattern {
  enum class Kind { Pixel, Planes, Filter, Group };

  KrPixelLayout layout;
  Kind kind;
  std::string_view components;
};

constexpr std::array kPatterns = {
    Pattern{KrPixelLayout::Mono, Pattern::Kind::Pixel, "Y"},
    Pattern{KrPixelLayout::BayerGR, Pattern::Kind::Filter, "GRBG"},
    Pattern{KrPixelLayout::BayerRG, Pattern::Kind::Filter, "RGGB"},
    Pattern{KrPixelLayout::BayerGB, Pattern::Kind::Filter, "GBRG"},
    Pattern{KrPixelLayout::BayerBG, Pattern::Kind::Filter, "BGGR"},
    Pattern{KrPixelLayout::RGB, Pattern::Kind::Pixel, "RGB"},
    Pattern{KrPixelLayout::BGR, Pattern::Kind::Pixel, "BGR"},
    Pattern{KrPixelLayout::RGBa, Pattern::Kind::Pixel, "RGBA"},
    Pattern{KrPixelLayout::BGRa, Pattern::Kind::Pixel, "BGRA"},
    Pattern{KrPixelLayout::RGBPlanar, Pattern::Kind::Planes, "RGB"},
    Pattern{KrPixelLayout::YUV, Pattern::Kind::Group, "YUV"},
    Pattern{KrPixelLayout::UYV, Pattern::Kind::Group, "UYV"},
    Pattern{KrPixelLayout::YUYV, Pattern::Kind::Group, "YUYV"},
    Pattern{KrPixelLayout::UYVY, Pattern::Kind::Group, "UYVY"},
    Pattern{KrPixelLayout::UYYVYY, Pattern::Kind::Group, "UYYVYY"},
    Pattern{KrPixelLayout::YYUYYV, Pattern::Kind::Group, "YYUYYV"},
};

const Pattern* FindPattern(const KrPixelTypeInfo& aFormat) {
  const auto row = std::find_if(kPatterns.begin(), kPatterns.end(),
                                [&aFormat](const Pattern& aRow) { return aRow.layout == aFormat.layout; });
  return row != kPatterns.end() && aFormat.packing != KrPixelPacking::Other ? &*row : nullptr;
}

constexpr unsigned kBitsOfGreen565 = 6;
constexpr std::size_t kByteBits = 8;

bool Is565(const KrPixelTypeInfo& aFormat) {
  return aFormat.packing == KrPixelPacking::LsbFirst && aFormat.bitsPerSample == kBitsOfGreen565;
}

/// Bits that lie one after the other, the least significant first.
std::uint64_t ReadBits(const std::uint8_t* aLine, std::size_t aFirstBit, std::size_t aCount) {
  std::uint64_t bits = 0;
  for (std::size_t read = 0; read < aCount;) {
    const std::size_t bit = aFirstBit + read;
    const std::size_t count = std::min(aCount - read, kByteBits - bit % kByteBits);
    const std::uint64_t part = (aLine[bit / kByteBits] >> (bit % kByteBits)) & ((1u << count) - 1);
    bits |= part << read;
    read += count;
  }
  return bits;
}

/// The bits of a line's sample, wherever its packing puts them.
std::uint64_t ReadSampleBits(const std::uint8_t* aLine, std::size_t aIndex, const KrPixelTypeInfo& aFormat) {
  const std::size_t bits = aFormat.bitsPerSample;
  if (Is565(aFormat)) {
    constexpr std::array<std::size_t, 3> kFirstBits = {0, 5, 11};
    constexpr std::array<std::size_t, 3> kBits = {5, kBitsOfGreen565, 5};
    return ReadBits(aLine, aIndex / 3 * 16 + kFirstBits[aIndex % 3], kBits[aIndex % 3]);
  }
  if (aFormat.packing == KrPixelPacking::LsbFirst)
    return ReadBits(aLine, aIndex * bits, bits);
  if (aFormat.packing == KrPixelPacking::Words)
    return ReadBits(aLine, aIndex * std::max(std::bit_ceil(bits), kByteBits), bits);
  // Of two samples in three bytes the middle byte has the low bits of both.
  const std::uint8_t* pair = aLine + aIndex / 2 * 3;
  const bool isSecond = aIndex % 2 != 0;
  const std::size_t lowBits = bits - kByteBits;
  return (std::uint64_t{pair[isSecond ? 2 : 0]} << lowBits) | ReadBits(pair + 1, isSecond ? 4 : 0, lowBits);
}

double ToNumber(std::uint64_t aBits, const KrPixelTypeInfo& aFormat) {
  switch (aFormat.sampleKind) {
  case KrSampleKind::Float:
    return aFormat.bitsPerSample == 64 ? std::bit_cast<double>(aBits)
                                       : static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(aBits)));
  case KrSampleKind::Signed: {
    const unsigned unused = 64u - aFormat.bitsPerSample;
    return static_cast<double>(static_cast<std::int64_t>(aBits << unused) >> unused);
  }
  case KrSampleKind::Unsigned:
    break;
  }
  return static_cast<double>(aBits);
}

/// One image whose bytes are known to be there.
struct Reading {
  const SourceImage& source;
  const KrPixelTypeInfo& format;
  const Pattern& pattern;

  double Read(std::uint32_t aPlane, std::uint32_t aLine, std::size_t aIndex) const {
    const std::uint64_t line = std::uint64_t{source.shape.height} * aPlane + aLine;
    const std::uint8_t* bytes = source.data + krbuffer::GetStrideBytes(source.shape) * line;
    return ToNumber(ReadSampleBits(bytes, aIndex, format), format);
  }

  KrPixelValue ReadOne(char aComponent, std::uint32_t aX, std::uint32_t aY) const {
    return {1, {Read(0, aY, aX)}, {aComponent}};
  }

  KrPixelValue ReadComponents(std::uint32_t aX, std::uint32_t aY) const {
    const std::size_t count = pattern.components.size();
    const bool hasPlanes = pattern.kind == Pattern::Kind::Planes;
    KrPixelValue value;
    value.sampleCount = static_cast<int>(count);
    for (std::size_t i = 0; i < count; ++i) {
      value.samples[i] = hasPlanes ? Read(static_cast<std::uint32_t>(i), aY, aX) : Read(0, aY, aX * count + i);
      value.components[i] = pattern.components[i];
    }
    return value;
  }

  /// Where a line ends within a group and a part of its chroma is cut off, the group before it has the chroma.
  KrPixelValue ReadGroup(std::uint32_t aX, std::uint32_t aY) const {
    const std::string_view order = pattern.components;
    const auto pixels = static_cast<std::size_t>(std::count(order.begin(), order.end(), 'Y'));
    const std::size_t group = aX / pixels;
    std::size_t luma = order.find('Y');
    for (std::size_t pixel = 0; pixel < aX % pixels; ++pixel)
      luma = order.find('Y', luma + 1);

    const std::size_t u = order.find('U');
    const std::size_t v = order.find('V');
    const std::size_t samplesOfLine = krbuffer::GetLineBytes(source.shape) * kByteBits /
                                      std::max<std::size_t>(std::bit_ceil(format.bitsPerSample), 8);
    const bool isCutOff = group * order.size() + std::max(u, v) >= samplesOfLine;
    const double none = static_cast<double>(1u << (format.bitsPerSample - 1));
    const auto readChroma = [&](std::size_t aPlace) {
      if (isCutOff && group == 0)
        return none;
      return Read(0, aY, (isCutOff ? group - 1 : group) * order.size() + aPlace);
    };
    return {3, {Read(0, aY, group * order.size() + luma), readChroma(u), readChroma(v)}, {'Y', 'U', 'V'}};
  }

  /// Formats of one colour alone are named after it.
  char GetOnlyComponent() const {
    constexpr std::string_view kDigits = "0123456789";
    const bool isColour = format.name.find_first_of("RGB") == 0 && format.name.find_first_of(kDigits) == 1;
    return isColour ? format.name.front() : 'Y';
  }

  KrPixelValue ReadPixel(std::uint32_t aX, std::uint32_t aY) const {
    switch (pattern.kind) {
    case Pattern::Kind::Filter:
      return ReadOne(pattern.components[aY % 2 * 2 + aX % 2], aX, aY);
    case Pattern::Kind::Group:
      return ReadGroup(aX, aY);
    case Pattern::Kind::Pixel:
    case Pattern::Kind::Planes:
      break;
    }
    return pattern.components.size() == 1 ? ReadOne(GetOnlyComponent(), aX, aY) : ReadComponents(aX, aY);
  }
};

KrResult ReadPixelOf(const SourceImage& aSource, std::uint32_t aX, std::uint32_t aY, KrPixelValue& aValue) {
  const ImageShape& shape = aSource.shape;
  if (aX >= shape.width || aY >= shape.height)
    return {KrResult::Code::InvalidInput, "The pixel " + std::to_string(aX) + ", " + std::to_string(aY) +
                                              " was to be read from an image of " + std::to_string(shape.width) +
                                              " x " + std::to_string(shape.height) + ". Give a place inside it."};
  const std::optional<KrPixelTypeInfo> format = KrFindPixelType(shape.type);
  const Pattern* pattern = format ? FindPattern(*format) : nullptr;
  if (!pattern)
    return {KrResult::Code::NotSupported, "A pixel of " + krbuffer::GetTypeText(shape.type) +
                                              " was to be read, but how its samples lie is not known."};
  const std::optional<std::uint64_t> bytes = krbuffer::GetImageBytes(shape);
  if (!aSource.data || !bytes || *bytes > aSource.bytes)
    return {KrResult::Code::BadData, "A pixel was to be read from an image of " + std::to_string(shape.width) + " x " +
                                         std::to_string(shape.height) + " pixels of " +
                                         krbuffer::GetTypeText(shape.type) + ", but only " +
                                         std::to_string(aSource.data ? aSource.bytes : 0) + " bytes of it are there."};
  aValue = Reading{aSource, *format, *pattern}.ReadPixel(aX, aY);
  return {};
}

} // namespace

KrResult KrReadPixel(const IKrImage& aImage, std::uint32_t aX, std::uint32_t aY, KrPixelValue& aValue) {
  // The image may be the application's own class.
  try {
    return ReadPixelOf(krbuffer::AskSource(aImage), aX, aY, aValue);
  } catch (const std::exception& error) {
    return {KrResult::Code::Failed, std::string("A pixel could not be read: the image's class threw: ") + error.what()};
  } catch (...) {
    return {KrResult::Code::Failed, "A pixel could not be read: the image's class threw an unknown exception."};
  }
}
