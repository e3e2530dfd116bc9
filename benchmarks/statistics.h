#pragma once
// What many turns come to.

#include <algorithm>
#include <cstddef>
#include <limits>
#include <vector>

namespace benchmarks {

/// The value that a share of all does not exceed; between two values it is neither, but as far between them as the
/// share is. No number where there are no values.
inline double GetQuantile(std::vector<double> aValues, double aShare) {
  if (aValues.empty())
    return std::numeric_limits<double>::quiet_NaN();
  std::sort(aValues.begin(), aValues.end());
  const double place = static_cast<double>(aValues.size() - 1) * aShare;
  const auto below = static_cast<std::size_t>(place);
  const std::size_t above = std::min(below + 1, aValues.size() - 1);
  return aValues[below] + (aValues[above] - aValues[below]) * (place - static_cast<double>(below));
}

inline double GetMedian(const std::vector<double>& aValues) {
  return GetQuantile(aValues, 0.5);
}

/// The median of one member of the turns.
template <typename Turn>
double GetMedian(const std::vector<Turn>& aTurns, double Turn::*aMember) {
  std::vector<double> values;
  for (const Turn& turn : aTurns)
    values.push_back(turn.*aMember);
  return GetMedian(values);
}

} // namespace benchmarks
