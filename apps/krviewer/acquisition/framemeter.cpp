#include "acquisition/framemeter.h"

#include <algorithm>

namespace krviewer {

namespace {

constexpr std::uint64_t kWindowNs = 1'000'000'000;
constexpr std::uint64_t kShortestStaleNs = 2'000'000'000;
constexpr std::uint64_t kStaleIntervals = 3;

} // namespace

void FrameMeter::Add(std::uint64_t aTimeNs, std::uint64_t aBytes) {
  mArrivals.push_back({aTimeNs, aBytes});
  // The two latest always stay, so that a camera slower than one frame a second has a rate too.
  while (mArrivals.size() > 2 && aTimeNs - mArrivals.front().timeNs > kWindowNs)
    mArrivals.pop_front();
}

bool FrameMeter::IsStale(std::uint64_t aNowNs) const {
  if (mArrivals.size() < 2)
    return true;
  const std::uint64_t meanNs = (mArrivals.back().timeNs - mArrivals.front().timeNs) / (mArrivals.size() - 1);
  return aNowNs - mArrivals.back().timeNs > std::max(kShortestStaleNs, kStaleIntervals * meanNs);
}

void FrameMeter::Reset() {
  mArrivals.clear();
}

double FrameMeter::GetSpanSeconds() const {
  if (mArrivals.size() < 2)
    return 0.0;
  return static_cast<double>(mArrivals.back().timeNs - mArrivals.front().timeNs) * 1e-9;
}

double FrameMeter::GetFramesPerSecond() const {
  const double span = GetSpanSeconds();
  return span > 0.0 ? static_cast<double>(mArrivals.size() - 1) / span : 0.0;
}

double FrameMeter::GetMegabytesPerSecond() const {
  const double span = GetSpanSeconds();
  if (span <= 0.0)
    return 0.0;
  // The first frame began before the window.
  double bytes = 0.0;
  for (std::size_t i = 1; i < mArrivals.size(); ++i)
    bytes += static_cast<double>(mArrivals[i].bytes);
  return bytes / span * 1e-6;
}

} // namespace krviewer
