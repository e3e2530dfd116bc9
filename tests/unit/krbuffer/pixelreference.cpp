#include "pixelreference.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

int GetPlanes(const KrPixelTypeInfo& aFormat) {
  return aFormat.layout == KrPixelLayout::RGBPlanar ? 3 : 1;
}

int GetLineBytesOf(const KrPixelTypeInfo& aFormat, int aWidth) {
  const double bits = static_cast<double>(aWidth) * aFormat.bitsPerPixel / GetPlanes(aFormat);
  return static_cast<int>(std::ceil(bits / 8));
}

/// The place that a mirror at both ends puts a neighbour to; -1 where there is nothing to mirror.
int Mirror(int aIndex, int aCount) {
  if (aIndex >= 0 && aIndex < aCount)
    return aIndex;
  if (aCount == 1)
    return -1;
  return aIndex < 0 ? -aIndex : 2 * (aCount - 1) - aIndex;
}

/// The order of bytes in a group of pixels.
std::string GetPattern(KrPixelLayout aLayout) {
  switch (aLayout) {
  case KrPixelLayout::YUV:
    return "YUV";
  case KrPixelLayout::UYV:
    return "UYV";
  case KrPixelLayout::YUYV:
    return "YUYV";
  case KrPixelLayout::UYVY:
    return "UYVY";
  case KrPixelLayout::UYYVYY:
    return "UYYVYY";
  case KrPixelLayout::YYUYYV:
    return "YYUYYV";
  default:
    return "";
  }
}

std::uint8_t ToByte(double aValue) {
  return static_cast<std::uint8_t>(std::clamp(std::floor(aValue + 0.5), 0.0, 255.0));
}

} // namespace

PixelReference::PixelReference(const KrPixelTypeInfo& aFormat, int aWidth, int aHeight, int aPaddingX,
                               const std::vector<std::uint8_t>& aBytes)
    : mFormat(aFormat), mWidth(aWidth), mHeight(aHeight), mStride(GetLineBytesOf(aFormat, aWidth) + aPaddingX),
      mPlanes(GetPlanes(aFormat)), mBytes(aBytes) {}

std::size_t PixelReference::GetImageBytes(const KrPixelTypeInfo& aFormat, int aWidth, int aHeight, int aPaddingX,
                                          int aPaddingY) {
  const int lines = aHeight * GetPlanes(aFormat);
  return static_cast<std::size_t>((GetLineBytesOf(aFormat, aWidth) + aPaddingX) * lines + aPaddingY);
}

int PixelReference::GetLineBytes() const {
  return GetLineBytesOf(mFormat, mWidth);
}

bool PixelReference::GetBit(int aLine, int aByte, int aBit) const {
  return ((GetByte(aLine, aByte) >> aBit) & 1) != 0;
}

int PixelReference::GetComponentCount() const {
  switch (mFormat.layout) {
  case KrPixelLayout::RGB:
  case KrPixelLayout::BGR:
  case KrPixelLayout::RGBPlanar:
    return 3;
  case KrPixelLayout::RGBa:
  case KrPixelLayout::BGRa:
    return 4;
  default:
    return 1;
  }
}

int PixelReference::GetSample(int aX, int aY, int aComponent) const {
  const int line = mPlanes > 1 ? aComponent * mHeight + aY : aY;
  const int index = mPlanes > 1 ? aX : aX * GetComponentCount() + aComponent;
  const int wordBytes = mFormat.bitsPerSample > 8 ? 2 : 1;
  int sample = 0;
  for (int bit = 0; bit < mFormat.bitsPerSample; ++bit) {
    int byte = index * wordBytes + bit / 8;
    int bitOfByte = bit % 8;
    if (mFormat.packing == KrPixelPacking::LsbFirst) {
      byte = (index * mFormat.bitsPerSample + bit) / 8;
      bitOfByte = (index * mFormat.bitsPerSample + bit) % 8;
    } else if (mFormat.packing == KrPixelPacking::GigE) {
      const int lowBits = mFormat.bitsPerSample - 8;
      const bool isLow = bit < lowBits;
      byte = index / 2 * 3 + (isLow ? 1 : index % 2 * 2);
      bitOfByte = isLow ? index % 2 * 4 + bit : bit - lowBits;
    }
    if (GetBit(line, byte, bitOfByte))
      sample += 1 << bit;
  }
  if (mFormat.sampleKind == KrSampleKind::Signed && sample >= 1 << (mFormat.bitsPerSample - 1))
    sample -= 1 << mFormat.bitsPerSample;
  return sample;
}

int PixelReference::GetSampleOf565(int aX, int aY, int aComponent) const {
  constexpr int kFirstBits[] = {0, 5, 11};
  constexpr int kBits[] = {5, 6, 5};
  int sample = 0;
  for (int bit = 0; bit < kBits[aComponent]; ++bit) {
    const int bitOfPixel = kFirstBits[aComponent] + bit;
    if (GetBit(aY, 2 * aX + bitOfPixel / 8, bitOfPixel % 8))
      sample += 1 << bit;
  }
  return sample;
}

double PixelReference::GetFloat(int aX, int aY) const {
  float value = 0;
  std::memcpy(&value, &mBytes.at(static_cast<std::size_t>(aY * mStride + 4 * aX)), sizeof value);
  return static_cast<double>(value);
}

double PixelReference::GetWord(int aIndex, int aY) const {
  const int bits = mFormat.bitsPerSample;
  int wordBytes = 1;
  while (wordBytes * 8 < bits)
    wordBytes *= 2;
  if (mFormat.sampleKind == KrSampleKind::Float && bits == 64) {
    double value = 0;
    std::memcpy(&value, &mBytes.at(static_cast<std::size_t>(aY * mStride + wordBytes * aIndex)), sizeof value);
    return value;
  }
  // Each half is exact, so that their sum alone is rounded. Not in one wider number, which valgrind has not.
  double low = 0;
  double high = 0;
  for (int bit = 0; bit < bits; ++bit)
    if (GetBit(aY, wordBytes * aIndex + bit / 8, bit % 8)) {
      const bool isSign = mFormat.sampleKind == KrSampleKind::Signed && bit == bits - 1;
      (bit < 32 ? low : high) += std::ldexp(isSign ? -1.0 : 1.0, bit);
    }
  return high + low;
}

std::vector<PixelReference::RawSample> PixelReference::GetRawLumaChroma(int aX, int aY) const {
  const std::string pattern = GetPattern(mFormat.layout);
  const int samplesInGroup = static_cast<int>(pattern.size());
  const int pixelsInGroup = static_cast<int>(std::count(pattern.begin(), pattern.end(), 'Y'));
  const int group = aX / pixelsInGroup;
  const int samplesInLine = GetLineBytes() / (mFormat.bitsPerSample > 8 ? 2 : 1);

  int lumaPlace = -1;
  for (int pixel = 0; pixel <= aX % pixelsInGroup; ++pixel)
    lumaPlace = static_cast<int>(pattern.find('Y', static_cast<std::size_t>(lumaPlace + 1)));
  const int uPlace = static_cast<int>(pattern.find('U'));
  const int vPlace = static_cast<int>(pattern.find('V'));

  const bool isWhole = group * samplesInGroup + std::max(uPlace, vPlace) < samplesInLine;
  const int chromaGroup = isWhole ? group : group - 1;
  const double none = std::pow(2, mFormat.bitsPerSample - 1);
  const auto chroma = [&](int aPlace) {
    return chromaGroup < 0 ? none : GetWord(chromaGroup * samplesInGroup + aPlace, aY);
  };
  return {{'Y', GetWord(group * samplesInGroup + lumaPlace, aY)}, {'U', chroma(uPlace)}, {'V', chroma(vPlace)}};
}

std::vector<PixelReference::RawSample> PixelReference::GetRaw(int aX, int aY) const {
  std::string components;
  switch (mFormat.layout) {
  case KrPixelLayout::Mono:
    if (mFormat.sampleKind == KrSampleKind::Float && mFormat.bitsPerSample == 32)
      return {{'Y', GetFloat(aX, aY)}};
    if (mFormat.bitsPerSample > 16)
      return {{'Y', GetWord(aX, aY)}};
    components = "Y";
    for (const char colour : {'R', 'G', 'B'})
      for (const char* bits : {"8", "10", "12", "16"})
        if (mFormat.name == colour + std::string(bits))
          components = colour;
    break;
  case KrPixelLayout::BayerGR:
  case KrPixelLayout::BayerRG:
  case KrPixelLayout::BayerGB:
  case KrPixelLayout::BayerBG:
    components = GetFilterColour(aX, aY);
    break;
  case KrPixelLayout::RGB:
  case KrPixelLayout::RGBPlanar:
    components = "RGB";
    break;
  case KrPixelLayout::BGR:
    components = "BGR";
    break;
  case KrPixelLayout::RGBa:
    components = "RGBA";
    break;
  case KrPixelLayout::BGRa:
    components = "BGRA";
    break;
  default:
    return GetRawLumaChroma(aX, aY);
  }
  std::vector<RawSample> samples;
  for (const char component : components) {
    const int index = static_cast<int>(samples.size());
    const bool is565 = mFormat.bitsPerSample == 6;
    samples.push_back(
        {component, static_cast<double>(is565 ? GetSampleOf565(aX, aY, index) : GetSample(aX, aY, index))});
  }
  return samples;
}

std::vector<std::uint8_t> PixelReference::GetUnpacked() const {
  std::vector<std::uint8_t> unpacked;
  for (int y = 0; y < mHeight; ++y)
    for (int x = 0; x < mWidth; ++x)
      for (int component = 0; component < GetComponentCount(); ++component) {
        const auto sample = static_cast<unsigned>(GetSample(x, y, component));
        unpacked.push_back(static_cast<std::uint8_t>(sample % 256));
        if (mFormat.bitsPerSample > 8)
          unpacked.push_back(static_cast<std::uint8_t>(sample / 256 % 256));
      }
  return unpacked;
}

char PixelReference::GetFilterColour(int aX, int aY) const {
  const auto place = static_cast<std::size_t>(aY % 2 * 2 + aX % 2);
  switch (mFormat.layout) {
  case KrPixelLayout::BayerGR:
    return "GRBG"[place];
  case KrPixelLayout::BayerRG:
    return "RGGB"[place];
  case KrPixelLayout::BayerGB:
    return "GBRG"[place];
  default:
    return "BGGR"[place];
  }
}

double PixelReference::InterpolateBayer(char aColour, int aX, int aY) const {
  if (GetFilterColour(aX, aY) == aColour)
    return GetSample(aX, aY, 0);
  double sum = 0;
  int count = 0;
  for (int deltaY = -1; deltaY <= 1; ++deltaY)
    for (int deltaX = -1; deltaX <= 1; ++deltaX) {
      const int x = Mirror(aX + deltaX, mWidth);
      const int y = Mirror(aY + deltaY, mHeight);
      if (x < 0 || y < 0 || GetFilterColour(x, y) != aColour)
        continue;
      sum += GetSample(x, y, 0);
      ++count;
    }
  return count == 0 ? 0 : std::floor(sum / count + 0.5);
}

PixelReference::Colour PixelReference::GetLumaChromaColour(int aX, int aY) const {
  const std::string pattern = GetPattern(mFormat.layout);
  const int bytesInGroup = static_cast<int>(pattern.size());
  const int pixelsInGroup = static_cast<int>(std::count(pattern.begin(), pattern.end(), 'Y'));
  const int group = aX / pixelsInGroup;

  std::size_t lumaPlace = pattern.find('Y');
  for (int pixel = 0; pixel < aX % pixelsInGroup; ++pixel)
    lumaPlace = pattern.find('Y', lumaPlace + 1);
  const int uPlace = static_cast<int>(pattern.find('U'));
  const int vPlace = static_cast<int>(pattern.find('V'));

  const bool isCutOff = group * bytesInGroup + std::max(uPlace, vPlace) >= GetLineBytes();
  const int chromaGroup = isCutOff ? group - 1 : group;
  const double luma = GetByte(aY, group * bytesInGroup + static_cast<int>(lumaPlace));
  const double u = chromaGroup < 0 ? 0 : GetByte(aY, chromaGroup * bytesInGroup + uPlace) - 128;
  const double v = chromaGroup < 0 ? 0 : GetByte(aY, chromaGroup * bytesInGroup + vPlace) - 128;

  const bool isFull = mFormat.colorSpace == KrColorSpace::Full601;
  const bool is709 = mFormat.colorSpace == KrColorSpace::Video709;
  const double kr = is709 ? 0.2126 : 0.299;
  const double kb = is709 ? 0.0722 : 0.114;
  const double kg = 1 - kr - kb;
  const double y = isFull ? luma / 255 : (luma - 16) / 219;
  const double cb = isFull ? u / 255 : u / 224;
  const double cr = isFull ? v / 255 : v / 224;
  const double red = y + 2 * (1 - kr) * cr;
  const double blue = y + 2 * (1 - kb) * cb;
  return {255 * red, 255 * (y - kr / kg * 2 * (1 - kr) * cr - kb / kg * 2 * (1 - kb) * cb), 255 * blue};
}

PixelReference::Colour PixelReference::GetColour(int aX, int aY) const {
  const auto sample = [&](int aComponent) { return static_cast<double>(GetSample(aX, aY, aComponent)); };
  switch (mFormat.layout) {
  case KrPixelLayout::Mono:
    return {sample(0), sample(0), sample(0)};
  case KrPixelLayout::BayerGR:
  case KrPixelLayout::BayerRG:
  case KrPixelLayout::BayerGB:
  case KrPixelLayout::BayerBG:
    return {InterpolateBayer('R', aX, aY), InterpolateBayer('G', aX, aY), InterpolateBayer('B', aX, aY)};
  case KrPixelLayout::RGB:
  case KrPixelLayout::BGR: {
    const int red = mFormat.layout == KrPixelLayout::RGB ? 0 : 2;
    if (mFormat.bitsPerSample == 6)
      return {GetSampleOf565(aX, aY, red) * 255 / 31.0, GetSampleOf565(aX, aY, 1) * 255 / 63.0,
              GetSampleOf565(aX, aY, 2 - red) * 255 / 31.0};
    return {sample(red), sample(1), sample(2 - red)};
  }
  case KrPixelLayout::RGBPlanar:
  case KrPixelLayout::RGBa:
    return {sample(0), sample(1), sample(2)};
  case KrPixelLayout::BGRa:
    return {sample(2), sample(1), sample(0)};
  default:
    return GetLumaChromaColour(aX, aY);
  }
}

bool PixelReference::IsByteColour() const {
  return mFormat.colorSpace != KrColorSpace::None || mFormat.bitsPerSample == 6;
}

bool PixelReference::IsColour() const {
  return mFormat.layout != KrPixelLayout::Mono;
}

std::uint8_t PixelReference::Reduce(double aValue, double aFactor, const ReferenceSettings& aSettings) const {
  const int bits = IsByteColour() ? 8 : mFormat.bitsPerSample;
  const bool isSigned = mFormat.sampleKind == KrSampleKind::Signed;
  const double least = isSigned ? -std::pow(2, bits - 1) : 0;
  const double greatest = least + std::pow(2, bits) - 1;
  // Halves go up; the sum that makes one may be a hair below it.
  constexpr double kHair = 1e-9;
  const double value = IsByteColour() ? ToByte(aValue + kHair) : aValue;
  const double factor = IsColour() ? aFactor : 1;
  const bool hasWindow = bits > 8 && aSettings.low.has_value();
  if (factor == 1 && aSettings.gamma == 1 && !hasWindow)
    return bits > 8 ? static_cast<std::uint8_t>(std::floor((value - least) / std::pow(2, bits - 8)))
                    : ToByte((value - least) * 255 / (greatest - least));
  const double low = hasWindow ? *aSettings.low : least;
  const double high = hasWindow ? *aSettings.high : greatest;
  const double input = std::clamp((value - low) / (high - low), 0.0, 1.0);
  return ToByte(255 * std::pow(std::min(1.0, input * factor), aSettings.gamma));
}

std::optional<PixelReference::Range> PixelReference::FindFloatRange() const {
  std::vector<double> finite;
  for (int y = 0; y < mHeight; ++y)
    for (int x = 0; x < mWidth; ++x)
      if (std::isfinite(GetFloat(x, y)))
        finite.push_back(GetFloat(x, y));
  if (finite.empty())
    return std::nullopt;
  const auto [least, greatest] = std::minmax_element(finite.begin(), finite.end());
  return Range{*least, *greatest};
}

std::uint8_t PixelReference::ReduceFloat(double aValue, const std::optional<Range>& aRange,
                                         const ReferenceSettings& aSettings) const {
  if (std::isnan(aValue))
    return 0;
  if (std::isinf(aValue))
    return aValue > 0 ? 255 : 0;
  const double low = aSettings.low.value_or(aRange ? aRange->least : 0);
  const double high = aSettings.high.value_or(aRange ? aRange->greatest : 0);
  if (low == high)
    return 0;
  return ToByte(255 * std::pow(std::clamp((aValue - low) / (high - low), 0.0, 1.0), aSettings.gamma));
}

std::vector<std::uint8_t> PixelReference::GetBgra(const ReferenceSettings& aSettings) const {
  const bool hasAlpha = mFormat.layout == KrPixelLayout::RGBa || mFormat.layout == KrPixelLayout::BGRa;
  const bool isFloat = mFormat.sampleKind == KrSampleKind::Float;
  const std::optional<Range> range = isFloat ? FindFloatRange() : std::nullopt;
  std::vector<std::uint8_t> bgra;
  for (int y = 0; y < mHeight; ++y)
    for (int x = 0; x < mWidth; ++x) {
      if (isFloat) {
        bgra.insert(bgra.end(), 3, ReduceFloat(GetFloat(x, y), range, aSettings));
      } else {
        const Colour colour = GetColour(x, y);
        bgra.push_back(Reduce(colour.blue, aSettings.blue, aSettings));
        bgra.push_back(Reduce(colour.green, aSettings.green, aSettings));
        bgra.push_back(Reduce(colour.red, aSettings.red, aSettings));
      }
      bgra.push_back(hasAlpha ? static_cast<std::uint8_t>(GetSample(x, y, 3)) : std::uint8_t{255});
    }
  return bgra;
}
