#include "kernels/floatkernels.h"

#include "tonetables.h"

#include <algorithm>
#include <cmath>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/floatkernels.cpp"
#include <hwy/foreach_target.h>

#include "kernels/linesteps.h"

HWY_BEFORE_NAMESPACE();

namespace krbuffer::HWY_NAMESPACE {

namespace {

void WidenRangeOfTarget(const std::uint8_t* aLine, std::size_t aCount, FloatRange& aRange) {
  float least = aRange.least;
  float greatest = aRange.greatest;
  std::size_t x = 0;
#if HWY_TARGET != HWY_SCALAR
  using FloatTag = hn::RebindToFloat<PixelTag>;
  const FloatTag floats;
  const auto most = hn::Set(floats, std::numeric_limits<float>::max());
  auto leasts = hn::Set(floats, least);
  auto greatests = hn::Set(floats, greatest);
  for (; x + hn::Lanes(floats) <= aCount; x += hn::Lanes(floats)) {
    const auto values = hn::BitCast(floats, hn::LoadU(PixelByteTag(), aLine + sizeof(float) * x));
    const auto isFinite = hn::Le(hn::Abs(values), most); // Nor is what is no number.
    leasts = hn::Min(leasts, hn::IfThenElse(isFinite, values, leasts));
    greatests = hn::Max(greatests, hn::IfThenElse(isFinite, values, greatests));
  }
  least = hn::GetLane(hn::MinOfLanes(floats, leasts));
  greatest = hn::GetLane(hn::MaxOfLanes(floats, greatests));
#endif
  for (; x < aCount; ++x) {
    const float value = ReadFloat(aLine, x);
    if (!std::isfinite(value))
      continue;
    least = std::min(least, value);
    greatest = std::max(greatest, value);
  }
  aRange = {least, greatest};
}

/// Computed in 64 bits, in which the extent of any window of numbers of 32 bits is finite.
class FloatKernel {
#if HWY_TARGET != HWY_SCALAR && HWY_HAVE_FLOAT64
  using FloatTag = hn::RebindToFloat<PixelTag>;
  using HalfFloatTag = hn::Half<FloatTag>;
  using DoubleTag = hn::Rebind<double, HalfFloatTag>;

  HWY_INLINE auto ShowHalf(hn::Vec<HalfFloatTag> aValues) const {
    const DoubleTag doubles;
    const auto values = hn::PromoteTo(doubles, aValues);
    const auto inputs = hn::Div(hn::Sub(values, hn::Set(doubles, mLow)), hn::Set(doubles, mExtent));
    const auto clamped = hn::Min(hn::Max(inputs, hn::Zero(doubles)), hn::Set(doubles, 1.0));
    const auto tones = hn::Add(hn::Mul(clamped, hn::Set(doubles, 255.0)), hn::Set(doubles, 0.5));
    return hn::DemoteTo(hn::Rebind<std::int32_t, DoubleTag>(), tones);
  }
#endif

public:
  static constexpr std::size_t kGroup = 1;

  FloatKernel(const LineSource& aSource, std::uint32_t aLine, const KrSampleWindow& aWindow)
      : mLine(aSource.GetLine(aLine)), mWidth(aSource.width), mLow(aWindow.low), mExtent(aWindow.high - aWindow.low) {}

  void WritePixel(std::size_t aX, std::uint8_t* aBgra) const {
    const double value = ReadFloat(mLine, aX);
    StoreGrey(aBgra, std::isnan(value) ? 0 : ShowTone(std::clamp((value - mLow) / mExtent, 0.0, 1.0), 1));
  }

#if HWY_TARGET != HWY_SCALAR
  static HWY_INLINE std::size_t GetStepPixels() {
    return hn::Lanes(PixelTag());
  }
  /// A step reads no byte but those of its own pixels.
  HWY_INLINE StepRange GetStepRange() const {
#if HWY_HAVE_FLOAT64
    return {0, mWidth};
#else
    return {0, 0};
#endif
  }

  template <Placement Place>
  HWY_INLINE void Step([[maybe_unused]] std::size_t aX, [[maybe_unused]] std::uint8_t* aBgra) const {
#if HWY_HAVE_FLOAT64
    const PixelTag pixels;
    const FloatTag floats;
    const auto read = hn::BitCast(floats, hn::LoadU(PixelByteTag(), mLine + sizeof(float) * aX));
    // Which of two a minimum gives where one is no number is the processor's choice: there is none among these.
    const auto values = hn::IfThenElseZero(hn::Eq(read, read), read);
    const auto lower = ShowHalf(hn::LowerHalf(HalfFloatTag(), values));
    const auto upper = ShowHalf(hn::UpperHalf(HalfFloatTag(), values));
    const auto shown = hn::Combine(hn::RebindToSigned<PixelTag>(), upper, lower);
    const auto isNumber = hn::RebindMask(pixels, hn::Eq(read, read));
    const PixelVector grey = hn::IfThenElseZero(isNumber, hn::BitCast(pixels, shown));
    const PixelVector both = hn::Or(grey, hn::ShiftLeft<8>(grey));
    StorePixels<Place>(MakeOpaque(hn::Or(both, hn::ShiftLeft<16>(grey))), aBgra);
#endif
  }
#endif

private:
  const std::uint8_t* mLine;
  std::size_t mWidth;
  double mLow;
  double mExtent;
};

void ShowFloatsOfTarget(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra, StoreKind aStores,
                        const KrSampleWindow& aWindow) {
  WriteLine(FloatKernel(aSource, aLine, aWindow), aSource.width, aBgra, aStores);
}

} // namespace

} // namespace krbuffer::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace krbuffer {

HWY_EXPORT(WidenRangeOfTarget);
HWY_EXPORT(ShowFloatsOfTarget);

void WidenRange(const std::uint8_t* aLine, std::size_t aCount, FloatRange& aRange) {
  HWY_DYNAMIC_DISPATCH(WidenRangeOfTarget)(aLine, aCount, aRange);
}

void ShowFloats(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra, StoreKind aStores,
                const KrSampleWindow& aWindow) {
  HWY_DYNAMIC_DISPATCH(ShowFloatsOfTarget)(aSource, aLine, aBgra, aStores, aWindow);
}

} // namespace krbuffer

#endif // HWY_ONCE
