#include "panels/intervalhistory.h"

#include <algorithm>
#include <cmath>

namespace krviewer {

void IntervalSummary::Add(double aIntervalNs) {
  IntervalSummary one;
  one.count = 1;
  one.leastNs = one.greatestNs = one.meanNs = aIntervalNs;
  Add(one);
}

// Means and squares are joined by their distances, as differences of large sums would lose the small ones.
void IntervalSummary::Add(const IntervalSummary& aOther) {
  if (aOther.count == 0)
    return;
  if (count == 0) {
    *this = aOther;
    return;
  }
  leastNs = std::min(leastNs, aOther.leastNs);
  greatestNs = std::max(greatestNs, aOther.greatestNs);
  const auto mine = static_cast<double>(count);
  const auto others = static_cast<double>(aOther.count);
  const double distance = aOther.meanNs - meanNs;
  mSquares += aOther.mSquares + distance * distance * mine * others / (mine + others);
  meanNs += distance * others / (mine + others);
  count += aOther.count;
}

double IntervalSummary::GetJitterNs() const {
  return count > 0 ? std::sqrt(mSquares / static_cast<double>(count)) : 0.0;
}

LossCounts& LossCounts::operator+=(const LossCounts& aOther) {
  frames += aOther.frames;
  incomplete += aOther.incomplete;
  missing += aOther.missing;
  discarded += aOther.discarded;
  return *this;
}

IntervalHistory::IntervalHistory(std::uint64_t aSpanNs, std::uint64_t aStepNs)
    : mSpanNs(aSpanNs), mStepNs(aStepNs), mSteps(static_cast<std::size_t>(aSpanNs / aStepNs + 1)),
      mIsUsed(mSteps.size()) {}

IntervalStep& IntervalHistory::At(std::uint64_t aTimeNs) {
  mLastIndex = std::max(mLastIndex, aTimeNs / mStepNs);
  const auto place = static_cast<std::size_t>(mLastIndex % mSteps.size());
  if (!mIsUsed[place] || mSteps[place].index != mLastIndex) {
    mSteps[place] = {};
    mSteps[place].index = mLastIndex;
    mIsUsed[place] = true;
  }
  return mSteps[place];
}

std::vector<IntervalStep> IntervalHistory::Get(std::uint64_t aTimeNs) const {
  const std::uint64_t last = aTimeNs / mStepNs;
  std::vector<IntervalStep> steps;
  for (std::size_t i = 0; i < mSteps.size(); ++i)
    if (mIsUsed[i] && mSteps[i].index <= last && last - mSteps[i].index < mSteps.size())
      steps.push_back(mSteps[i]);
  std::ranges::sort(steps, {}, &IntervalStep::index);
  return steps;
}

void IntervalHistory::Clear() {
  std::fill(mIsUsed.begin(), mIsUsed.end(), false);
}

} // namespace krviewer
