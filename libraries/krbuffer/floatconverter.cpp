#include "floatconverter.h"

#include "bgrapixel.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace krbuffer {

namespace {

/// Least significant byte first, and not necessarily aligned.
float ReadFloat(const std::uint8_t* aLine, std::size_t aIndex) {
  const std::uint8_t* bytes = aLine + sizeof(float) * aIndex;
  return std::bit_cast<float>(bytes[0] | (std::uint32_t{bytes[1]} << 8) | (std::uint32_t{bytes[2]} << 16) |
                              (std::uint32_t{bytes[3]} << 24));
}

/// The finite minimum and maximum; an empty window where there is at most one finite value.
KrSampleWindow FindRange(const LineSource& aSource) {
  float least = std::numeric_limits<float>::max();
  float greatest = std::numeric_limits<float>::lowest();
  for (std::uint32_t y = 0; y < aSource.height; ++y) {
    const std::uint8_t* line = aSource.GetLine(y);
    for (std::size_t x = 0; x < aSource.width; ++x) {
      const float value = ReadFloat(line, x);
      if (!std::isfinite(value))
        continue;
      least = std::min(least, value);
      greatest = std::max(greatest, value);
    }
  }
  return least < greatest ? KrSampleWindow{least, greatest} : KrSampleWindow{};
}

} // namespace

FloatConverter::FloatConverter(const LineSource& aSource, const ToneSettings& aSettings)
    : LineConverter(aSource), mGamma(aSettings.gamma),
      mWindow(aSettings.window ? *aSettings.window : FindRange(aSource)) {}

std::uint8_t FloatConverter::Show(double aValue) const {
  if (!std::isfinite(aValue))
    return aValue > 0 ? 255 : 0;
  if (!(mWindow.low < mWindow.high))
    return 0;
  return ShowTone(std::clamp((aValue - mWindow.low) / (mWindow.high - mWindow.low), 0.0, 1.0), mGamma);
}

void FloatConverter::ConvertLine(std::uint32_t aLine, std::uint8_t* aDestination, StoreKind) const {
  const std::uint8_t* line = mSource.GetLine(aLine);
  for (std::size_t x = 0; x < mSource.width; ++x)
    StoreGrey(aDestination + kBgraBytes * x, Show(static_cast<double>(ReadFloat(line, x))));
}

} // namespace krbuffer
