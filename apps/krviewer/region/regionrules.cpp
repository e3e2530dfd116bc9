#include "region/regionrules.h"

#include <algorithm>
#include <cmath>

namespace krviewer {

namespace {

/// The largest value on the increments that is not above another; the least one where none is.
std::int64_t FloorTo(std::int64_t aMin, std::int64_t aIncrement, std::int64_t aMost) {
  return aMost <= aMin ? aMin : aMin + (aMost - aMin) / aIncrement * aIncrement;
}

/// The value on the increments that is nearest to a place, of those up to another value.
std::int64_t SnapTo(std::int64_t aMin, std::int64_t aIncrement, std::int64_t aMost, double aPlace) {
  const std::int64_t most = FloorTo(aMin, aIncrement, aMost);
  const double place = std::clamp(aPlace, static_cast<double>(aMin), static_cast<double>(most));
  const std::int64_t steps = std::llround((place - static_cast<double>(aMin)) / static_cast<double>(aIncrement));
  return std::min(aMin + steps * aIncrement, most);
}

std::int64_t GetMostOffset(const RegionAxis& aAxis, std::int64_t aLength) {
  return FloorTo(aAxis.offsetMin, aAxis.offsetIncrement, aAxis.extent - aLength);
}

std::int64_t GetMostLength(const RegionAxis& aAxis, std::int64_t aOffset) {
  return FloorTo(aAxis.lengthMin, aAxis.lengthIncrement, aAxis.extent - aOffset);
}

/// A value moved by increments within bounds that are on them; more steps than there is room for are fewer.
std::int64_t Step(std::int64_t aValue, std::int64_t aIncrement, std::int64_t aSteps, std::int64_t aMin,
                  std::int64_t aMost) {
  const std::int64_t steps = std::clamp(aSteps, (aMin - aValue) / aIncrement, (aMost - aValue) / aIncrement);
  return aValue + steps * aIncrement;
}

} // namespace

RegionSpan GetFullSpan(const RegionAxis& aAxis) {
  const std::int64_t length = aAxis.isLengthFixed
                                  ? aAxis.present.length
                                  : GetMostLength(aAxis, aAxis.isOffsetFixed ? aAxis.present.offset : aAxis.offsetMin);
  return {aAxis.isOffsetFixed ? aAxis.present.offset : aAxis.offsetMin, length};
}

RegionSpan FitSpan(const RegionAxis& aAxis, double aBegin, double aEnd) {
  RegionSpan span = aAxis.present;
  const std::int64_t leastLength = aAxis.isLengthFixed ? aAxis.present.length : aAxis.lengthMin;
  if (!aAxis.isOffsetFixed)
    span.offset = SnapTo(aAxis.offsetMin, aAxis.offsetIncrement, GetMostOffset(aAxis, leastLength), aBegin);
  if (!aAxis.isLengthFixed)
    span.length = SnapTo(aAxis.lengthMin, aAxis.lengthIncrement, GetMostLength(aAxis, span.offset),
                         aEnd - static_cast<double>(span.offset));
  return span;
}

RegionSpan MoveSpanTo(const RegionAxis& aAxis, std::int64_t aLength, double aBegin) {
  if (aAxis.isOffsetFixed)
    return {aAxis.present.offset, aLength};
  return {SnapTo(aAxis.offsetMin, aAxis.offsetIncrement, GetMostOffset(aAxis, aLength), aBegin), aLength};
}

RegionSpan MoveSpan(const RegionAxis& aAxis, const RegionSpan& aSpan, std::int64_t aSteps) {
  if (aAxis.isOffsetFixed)
    return aSpan;
  const std::int64_t most = std::max(GetMostOffset(aAxis, aSpan.length), aSpan.offset);
  return {Step(aSpan.offset, aAxis.offsetIncrement, aSteps, aAxis.offsetMin, most), aSpan.length};
}

RegionSpan StretchSpan(const RegionAxis& aAxis, const RegionSpan& aSpan, std::int64_t aSteps) {
  if (aAxis.isLengthFixed)
    return aSpan;
  const std::int64_t most = std::max(GetMostLength(aAxis, aSpan.offset), aSpan.length);
  return {aSpan.offset, Step(aSpan.length, aAxis.lengthIncrement, aSteps, aAxis.lengthMin, most)};
}

std::vector<RegionStep> PlanSteps(const RegionSpan& aFrom, const RegionSpan& aTo) {
  std::vector<RegionStep> steps;
  if (aTo.offset != aFrom.offset)
    steps.push_back({true, aTo.offset});
  if (aTo.length == aFrom.length)
    return steps;
  const bool isShorter = aTo.length < aFrom.length;
  steps.insert(isShorter ? steps.begin() : steps.end(), {false, aTo.length});
  return steps;
}

} // namespace krviewer
