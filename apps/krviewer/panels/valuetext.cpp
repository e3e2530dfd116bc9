#include "panels/valuetext.h"

#include "plaintext.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace krviewer {

namespace {

constexpr double kMostExactWhole = 9007199254740992.0; ///< 2^53.
constexpr int kMostDigits = 12;
constexpr double kLeastShownPercent = 0.1;

} // namespace

std::string FormatValue(double aValue) {
  std::array<char, 40> text;
  char* const begin = text.data();
  char* const end = begin + text.size();
  const bool isWhole = std::abs(aValue) <= kMostExactWhole && std::trunc(aValue) == aValue;
  const auto written = isWhole ? std::to_chars(begin, end, static_cast<std::int64_t>(aValue))
                               : std::to_chars(begin, end, aValue, std::chars_format::general, 6);
  return {begin, written.ptr};
}

std::string FormatPercent(double aPercent) {
  if (aPercent > 0 && aPercent < kLeastShownPercent)
    return "< 0.1 %";
  if (aPercent < 100 && aPercent > 100 - kLeastShownPercent)
    return "> 99.9 %";
  const bool isEnd = aPercent <= 0 || aPercent >= 100;
  return krapps::FormatFixed(aPercent, isEnd ? 0 : 1) + " %";
}

std::vector<double> ChooseTicks(double aLow, double aHigh, int aMost) {
  if (!(aHigh > aLow) || !std::isfinite(aHigh - aLow) || aMost < 1)
    return {};
  // The power of ten below the distance that would do, and the steps above it: one of them has few enough.
  const double power = std::pow(10.0, std::floor(std::log10((aHigh - aLow) / aMost)));
  for (const double factor : {1.0, 2.0, 2.5, 5.0, 10.0, 20.0, 25.0}) {
    const double distance = power * factor;
    const double first = std::ceil(aLow / distance - 1e-9);
    const double last = std::floor(aHigh / distance + 1e-9);
    if (last - first + 1 > aMost)
      continue;
    std::vector<double> ticks;
    for (double i = first; i <= last; ++i)
      ticks.push_back(i * distance);
    return ticks;
  }
  return {};
}

std::string FormatTick(double aTick, double aDistance) {
  int digits = 0;
  for (double scaled = aDistance; digits < kMostDigits && std::abs(scaled - std::round(scaled)) > 1e-6 * scaled;
       ++digits)
    scaled *= 10;
  // Of minus zero and what rounding left of zero the sign is dropped.
  const double tick = std::abs(aTick) < aDistance / 2 ? 0.0 : aTick;
  return krapps::FormatFixed(tick, digits);
}

} // namespace krviewer
