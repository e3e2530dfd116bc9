#include "growth.h"

#include <algorithm>
#include <span>

namespace {

double FindMedian(std::span<const double> aValues) {
  std::vector<double> values(aValues.begin(), aValues.end());
  std::ranges::sort(values);
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 != 0 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

} // namespace

FigureSeries::Verdict FigureSeries::Judge(double aAllowed) const {
  if (mValues.size() < kLeastSamples)
    return {};
  const std::size_t third = mValues.size() / 3;
  const std::span<const double> values(mValues);
  const double middle = FindMedian(values.last(2 * third).first(third));
  const double last = FindMedian(values.last(third));
  return {.middle = middle, .last = last, .isFlat = last - middle <= aAllowed};
}
