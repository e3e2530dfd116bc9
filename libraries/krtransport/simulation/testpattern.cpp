#include "simulation/testpattern.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace krtransport {

namespace {

constexpr std::uint32_t kSteps = 256;
constexpr std::uint32_t kCounterLines = 8;
constexpr std::uint32_t kCounterBits = 32;
constexpr std::uint32_t kGreenLead = 85;
constexpr std::uint32_t kBlueLead = 170;
constexpr double kLargest = 255;
constexpr PatternColour kWhite = {255, 255, 255, 255};
constexpr PatternColour kBlack = {0, 0, 0, 0};

// A test pattern is made behind the sensor.
double GetBrightness(const Picture& aPicture) {
  return aPicture.pattern == TestPattern::Off ? aPicture.brightness : 1;
}

} // namespace

PatternColour PatternPainter::GetColour(std::size_t aStep) const {
  const auto expose = [this](std::size_t aComponent) {
    return static_cast<std::uint8_t>(std::min(mBrightness * static_cast<double>(aComponent % kSteps), kLargest));
  };
  return {expose(aStep), expose(aStep), expose(aStep + kGreenLead), expose(aStep + kBlueLead)};
}

bool PatternPainter::Prepare(const Picture& aPicture) {
  const bool fits = mPicture.type == aPicture.type && mPicture.width == aPicture.width &&
                    mPicture.reverseX == aPicture.reverseX && mBrightness == GetBrightness(aPicture) && !mRamps.empty();
  if (!fits) {
    const std::optional<KrPixelTypeInfo> info = KrFindPixelType(aPicture.type);
    if (!info || !LineEncoder::CanEncode(*info) || aPicture.width == 0)
      return false;
    mEncoder = LineEncoder(*info);
  }
  mPicture = aPicture;
  mBrightness = GetBrightness(aPicture);
  if (fits)
    return true;
  mLineBytes = mEncoder.GetLineBytes(aPicture.width);
  mRamps.clear();
  for (std::uint32_t kind = 0; kind < mEncoder.GetLineKindCount(); ++kind) {
    for (std::uint32_t phase = 0; phase < mEncoder.GetGroupPixels(); ++phase)
      PrepareRamp(kind, phase);
  }
  return true;
}

void PatternPainter::PrepareRamp(std::uint32_t aLineKind, std::uint32_t aPhase) {
  mColours.resize(std::size_t{mPicture.width} + kSteps);
  for (std::size_t i = 0; i < mColours.size(); ++i)
    mColours[i] = GetColour(mPicture.reverseX ? aPhase - i : aPhase + i);
  std::vector<std::uint8_t>& ramp = mRamps.emplace_back(mEncoder.GetLineBytes(mColours.size()));
  mEncoder.Encode(aLineKind, mColours, ramp.data());
}

bool PatternPainter::Paint(const Picture& aPicture, std::uint64_t aFrameID, std::uint8_t* aOut) {
  if (!Prepare(aPicture))
    return false;
  const std::uint64_t moved = aPicture.pattern == TestPattern::MovingRamp ? aFrameID : 0;
  const std::uint64_t first =
      moved + aPicture.offsetX + aPicture.offsetY + (aPicture.reverseX ? mPicture.width - 1 : 0);
  const std::uint32_t group = mEncoder.GetGroupPixels();
  const std::uint8_t tailMask = mEncoder.GetTailMask(aPicture.width);
  for (std::uint32_t plane = 0; plane < mEncoder.GetPlaneCount(); ++plane) {
    std::uint8_t* const planeOut = aOut + mLineBytes * aPicture.height * plane;
    for (std::uint32_t line = 0; line < aPicture.height; ++line) {
      const auto step = static_cast<std::uint32_t>((first + line) % kSteps);
      const std::uint32_t phase = step % group;
      // A reversed ramp runs down from its phase.
      const std::uint32_t skippedPixels = (aPicture.reverseX ? phase + kSteps - step : step - phase) % kSteps;
      const std::vector<std::uint8_t>& ramp = mRamps[mEncoder.GetLineKind(plane, line) * group + phase];
      std::uint8_t* const out = planeOut + mLineBytes * line;
      std::memcpy(out, ramp.data() + mEncoder.GetLineBytes(skippedPixels), mLineBytes);
      out[mLineBytes - 1] &= tailMask;
    }
    if (aPicture.pattern == TestPattern::FrameCounter)
      PaintCounter(plane, aFrameID, planeOut);
  }
  return true;
}

void PatternPainter::PaintCounter(std::uint32_t aPlane, std::uint64_t aFrameID, std::uint8_t* aPlaneOut) {
  const std::uint32_t blockWidth = mPicture.width / kCounterBits;
  mColours.resize(mPicture.width);
  for (std::uint32_t line = 0; line < std::min(mPicture.height, kCounterLines); ++line) {
    for (std::uint32_t x = 0; x < mPicture.width; ++x) {
      const std::uint32_t column = mPicture.reverseX ? mPicture.width - 1 - x : x;
      mColours[x] = GetColour(std::size_t{mPicture.offsetX} + mPicture.offsetY + column + line);
      if (x < blockWidth * kCounterBits)
        mColours[x] = (aFrameID >> (kCounterBits - 1 - x / blockWidth) & 1) != 0 ? kWhite : kBlack;
    }
    mEncoder.Encode(mEncoder.GetLineKind(aPlane, line), mColours, aPlaneOut + mLineBytes * line);
  }
}

bool FillPattern(const Picture& aPicture, std::uint64_t aFrameID, std::uint8_t* aOut) {
  PatternPainter painter;
  return painter.Paint(aPicture, aFrameID, aOut);
}

bool FillPattern(KrPixelType aType, std::uint32_t aWidth, std::uint32_t aHeight, std::uint64_t aFrameID,
                 std::uint8_t* aOut, TestPattern aPattern) {
  return FillPattern({.pattern = aPattern, .type = aType, .width = aWidth, .height = aHeight}, aFrameID, aOut);
}

std::uint64_t GetFrameBytes(const Picture& aPicture) {
  const std::uint64_t lineBits = std::uint64_t{aPicture.width} * KrGetBitsPerPixel(aPicture.type);
  return (lineBits + 7) / 8 * aPicture.height;
}

} // namespace krtransport
