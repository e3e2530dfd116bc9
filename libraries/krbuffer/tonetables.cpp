#include "tonetables.h"

#include <algorithm>
#include <cmath>

namespace krbuffer {

namespace {

constexpr unsigned kShownBits = 8;

bool HasWindow(const ToneSettings& aSettings, const ToneDepth& aDepth) {
  return aSettings.window.has_value() && aDepth.bits > kShownBits;
}

bool IsNeutralFor(double aFactor, const ToneSettings& aSettings, const ToneDepth& aDepth) {
  return aDepth.bits >= kShownBits && aFactor == 1 && aSettings.gamma == 1 && !HasWindow(aSettings, aDepth);
}

std::vector<std::uint8_t> MakeTable(double aFactor, const ToneSettings& aSettings, const ToneDepth& aDepth) {
  const std::size_t entries = std::size_t{1} << aDepth.bits;
  std::vector<std::uint8_t> table(entries);
  // A channel that nothing is set for looks as it does without tables, whatever is set for the others.
  if (IsNeutralFor(aFactor, aSettings, aDepth)) {
    for (std::size_t sample = 0; sample < entries; ++sample)
      table[sample] = static_cast<std::uint8_t>(sample >> (aDepth.bits - kShownBits));
    return table;
  }
  const bool hasWindow = HasWindow(aSettings, aDepth);
  const double low = hasWindow ? aSettings.window->low : aDepth.least;
  const double high = hasWindow ? aSettings.window->high : aDepth.least + static_cast<double>(entries - 1);
  for (std::size_t sample = 0; sample < entries; ++sample) {
    const double value = aDepth.least + static_cast<double>(sample);
    const double input = std::clamp((value - low) / (high - low), 0.0, 1.0);
    table[sample] = ShowTone(std::min(1.0, input * aFactor), aSettings.gamma);
  }
  return table;
}

} // namespace

ToneDepth GetToneDepth(const KrPixelTypeInfo& aFormat) {
  const bool isByteColour = aFormat.colorSpace != KrColorSpace::None || aFormat.bitsPerSample == 6;
  const unsigned bits = isByteColour ? kShownBits : aFormat.bitsPerSample;
  const bool isSigned = aFormat.sampleKind == KrSampleKind::Signed;
  return {bits, isSigned ? -std::ldexp(1.0, static_cast<int>(bits) - 1) : 0.0, aFormat.layout != KrPixelLayout::Mono};
}

bool IsNeutral(const ToneSettings& aSettings, const ToneDepth& aDepth) {
  const KrWhiteBalance balance = aDepth.hasChannels ? aSettings.whiteBalance : KrWhiteBalance{};
  return IsNeutralFor(balance.red, aSettings, aDepth) && IsNeutralFor(balance.green, aSettings, aDepth) &&
         IsNeutralFor(balance.blue, aSettings, aDepth);
}

std::uint8_t ShowTone(double aInput, double aGamma) {
  const double output = aGamma == 1 ? aInput : std::pow(aInput, aGamma);
  return static_cast<std::uint8_t>(255 * output + 0.5);
}

ToneTables::ToneTables(const ToneSettings& aSettings, const ToneDepth& aDepth) {
  if (!aDepth.hasChannels) {
    mTables.push_back(MakeTable(1, aSettings, aDepth));
    return;
  }
  const KrWhiteBalance& balance = aSettings.whiteBalance;
  for (const double factor : {balance.red, balance.green, balance.blue})
    mTables.push_back(MakeTable(factor, aSettings, aDepth));
}

} // namespace krbuffer
