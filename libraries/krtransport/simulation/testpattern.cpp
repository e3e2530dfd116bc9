#include "simulation/testpattern.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace krtransport {

namespace {

constexpr std::uint32_t kSteps = 256;
constexpr std::uint32_t kCounterLines = 8;
constexpr std::uint32_t kCounterBits = 32;

constexpr std::uint32_t GetLargestSample(const KrPixelTypeInfo& aInfo) {
  return (1u << aInfo.bitsPerSample) - 1;
}

constexpr std::uint32_t kRedLead = 0;
constexpr std::uint32_t kGreenLead = 85;
constexpr std::uint32_t kBlueLead = 170;

// The steps of the ramp by which a site of a colour filter array leads; the other formats' pixels all lead by none.
std::uint32_t GetSiteLead(KrPixelLayout aLayout, std::size_t aColumn, std::size_t aLine) {
  struct Row {
    KrPixelLayout layout;
    std::uint32_t leads[2][2];
  };
  static constexpr Row kRows[] = {
      {KrPixelLayout::BayerGR, {{kGreenLead, kRedLead}, {kBlueLead, kGreenLead}}},
      {KrPixelLayout::BayerRG, {{kRedLead, kGreenLead}, {kGreenLead, kBlueLead}}},
      {KrPixelLayout::BayerGB, {{kGreenLead, kBlueLead}, {kRedLead, kGreenLead}}},
      {KrPixelLayout::BayerBG, {{kBlueLead, kGreenLead}, {kGreenLead, kRedLead}}},
  };
  for (const Row& row : kRows) {
    if (row.layout == aLayout)
      return row.leads[aLine % 2][aColumn % 2];
  }
  return 0;
}

// The steps of the ramp by which each component leads, first component first; the last of four is alpha.
std::vector<std::uint32_t> GetComponentLeads(KrPixelLayout aLayout) {
  switch (aLayout) {
  case KrPixelLayout::RGB:
  case KrPixelLayout::RGBa:
    return {kRedLead, kGreenLead, kBlueLead};
  case KrPixelLayout::BGR:
  case KrPixelLayout::BGRa:
    return {kBlueLead, kGreenLead, kRedLead};
  default:
    return {0};
  }
}

bool HasAlpha(KrPixelLayout aLayout) {
  return aLayout == KrPixelLayout::RGBa || aLayout == KrPixelLayout::BGRa;
}

// A pixel's bits, the first component in the least significant ones.
std::uint64_t EncodeStep(const KrPixelTypeInfo& aInfo, std::uint32_t aStep) {
  const std::vector<std::uint32_t> leads = GetComponentLeads(aInfo.layout);
  const std::size_t components = leads.size() + (HasAlpha(aInfo.layout) ? 1 : 0);
  const std::size_t componentBits = aInfo.bitsPerPixel / components;
  std::uint64_t pixel = 0;
  for (std::size_t i = 0; i < components; ++i) {
    const std::uint32_t step = i < leads.size() ? (aStep + leads[i]) % kSteps : kSteps - 1;
    const std::uint64_t sample = static_cast<std::uint64_t>(step) * GetLargestSample(aInfo) / (kSteps - 1);
    pixel |= sample << (i * componentBits);
  }
  return pixel;
}

std::uint64_t EncodeWhite(const KrPixelTypeInfo& aInfo) {
  const std::size_t components = GetComponentLeads(aInfo.layout).size() + (HasAlpha(aInfo.layout) ? 1 : 0);
  const std::size_t componentBits = aInfo.bitsPerPixel / components;
  std::uint64_t pixel = 0;
  for (std::size_t i = 0; i < components; ++i)
    pixel |= static_cast<std::uint64_t>(GetLargestSample(aInfo)) << (i * componentBits);
  return pixel;
}

// Writes a pixel bit by bit, least significant first, which serves packed and unpacked formats alike.
void PutPixel(std::uint8_t* aLine, std::size_t aIndex, std::uint32_t aBits, std::uint64_t aPixel) {
  for (std::uint32_t bit = 0; bit < aBits; ++bit) {
    const std::size_t position = aIndex * aBits + bit;
    const auto mask = static_cast<std::uint8_t>(1u << position % 8);
    std::uint8_t& byte = aLine[position / 8];
    byte = static_cast<std::uint8_t>((aPixel >> bit & 1) != 0 ? byte | mask : byte & ~mask);
  }
}

} // namespace

bool PatternPainter::Prepare(KrPixelType aType, std::uint32_t aWidth) {
  if (mInfo.type == aType && mWidth == aWidth && mLineBytes > 0)
    return true;
  const std::optional<KrPixelTypeInfo> info = KrFindPixelType(aType);
  const std::uint64_t lineBits = info ? std::uint64_t{aWidth} * info->bitsPerPixel : 0;
  if (lineBits == 0 || lineBits % 8 != 0)
    return false;
  mInfo = *info;
  mWidth = aWidth;
  mLineBytes = static_cast<std::size_t>(lineBits / 8);
  std::array<std::uint64_t, kSteps> encoded;
  for (std::uint32_t step = 0; step < kSteps; ++step)
    encoded[step] = EncodeStep(mInfo, step);
  const std::size_t pixels = std::size_t{aWidth} + kSteps;
  for (std::size_t line = 0; line < mRamps.size(); ++line) {
    for (std::size_t first = 0; first < mRamps[line].size(); ++first) {
      std::vector<std::uint8_t>& ramp = mRamps[line][first];
      ramp.assign((pixels * mInfo.bitsPerPixel + 7) / 8, 0);
      for (std::size_t i = 0; i < pixels; ++i)
        PutPixel(ramp.data(), i, mInfo.bitsPerPixel,
                 encoded[(i + first + GetSiteLead(mInfo.layout, i, line)) % kSteps]);
    }
  }
  return true;
}

bool PatternPainter::Paint(TestPattern aPattern, KrPixelType aType, std::uint32_t aWidth, std::uint32_t aHeight,
                           std::uint64_t aFrameID, std::uint8_t* aOut) {
  if (!Prepare(aType, aWidth))
    return false;
  const std::uint64_t start = aPattern == TestPattern::MovingRamp ? aFrameID : 0;
  for (std::uint32_t line = 0; line < aHeight; ++line) {
    const auto phase = static_cast<std::size_t>((start + line) % kSteps);
    const std::size_t skippedPixels = phase - phase % 2;
    const std::uint8_t* const piece = mRamps[line % 2][phase % 2].data() + skippedPixels * mInfo.bitsPerPixel / 8;
    std::memcpy(aOut + std::size_t{line} * mLineBytes, piece, mLineBytes);
  }
  if (aPattern == TestPattern::FrameCounter)
    PaintCounter(aHeight, aFrameID, aOut);
  return true;
}

void PatternPainter::PaintCounter(std::uint32_t aHeight, std::uint64_t aFrameID, std::uint8_t* aOut) const {
  const std::uint32_t blockWidth = mWidth / kCounterBits;
  const std::uint64_t white = EncodeWhite(mInfo);
  for (std::uint32_t line = 0; line < std::min(aHeight, kCounterLines); ++line) {
    for (std::uint32_t x = 0; x < blockWidth * kCounterBits; ++x) {
      const std::uint32_t bit = kCounterBits - 1 - x / blockWidth;
      PutPixel(aOut + std::size_t{line} * mLineBytes, x, mInfo.bitsPerPixel, (aFrameID >> bit & 1) != 0 ? white : 0);
    }
  }
}

bool FillPattern(KrPixelType aType, std::uint32_t aWidth, std::uint32_t aHeight, std::uint64_t aFrameID,
                 std::uint8_t* aOut, TestPattern aPattern) {
  PatternPainter painter;
  return painter.Paint(aPattern, aType, aWidth, aHeight, aFrameID, aOut);
}

} // namespace krtransport
