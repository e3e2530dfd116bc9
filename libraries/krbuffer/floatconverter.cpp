#include "floatconverter.h"

#include "bgrapixel.h"
#include "kernels/floatkernels.h"

#include <algorithm>
#include <cmath>

namespace krbuffer {

namespace {

/// The finite minimum and maximum; an empty window where there is at most one finite value.
KrSampleWindow FindRange(const LineSource& aSource) {
  FloatRange range;
  for (std::uint32_t y = 0; y < aSource.height; ++y)
    WidenRange(aSource.GetLine(y), aSource.width, range);
  return range.least < range.greatest ? KrSampleWindow{range.least, range.greatest} : KrSampleWindow{};
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

void FloatConverter::ConvertLine(std::uint32_t aLine, std::uint8_t* aDestination, StoreKind aStores) const {
  if (mGamma == 1 && mWindow.low < mWindow.high) {
    ShowFloats(mSource, aLine, aDestination, aStores, mWindow);
    return;
  }
  const std::uint8_t* line = mSource.GetLine(aLine);
  for (std::size_t x = 0; x < mSource.width; ++x)
    StoreGrey(aDestination + kBgraBytes * x, Show(static_cast<double>(ReadFloat(line, x))));
}

} // namespace krbuffer
