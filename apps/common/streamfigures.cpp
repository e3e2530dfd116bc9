#include "streamfigures.h"

#include <cinttypes>
#include <cstdio>

namespace krapps {

void StreamFigures::Add(std::uint64_t aTimeNs, std::uint64_t aBytes) {
  if (mFrames++ == 0)
    mFirstNs = aTimeNs;
  else
    mBytesAfterFirst += aBytes;
  mLastNs = aTimeNs;
}

double StreamFigures::GetFramesPerSecond() const {
  return mLastNs > mFirstNs ? static_cast<double>(mFrames - 1) / GetSeconds() : 0.0;
}

double StreamFigures::GetMegabytesPerSecond() const {
  return mLastNs > mFirstNs ? static_cast<double>(mBytesAfterFirst) * 1e-6 / GetSeconds() : 0.0;
}

std::string FormatClosingLine(const StreamFigures& aFigures, const KrStreamStatistics& aStatistics) {
  char line[256];
  std::snprintf(line, sizeof line,
                "frames=%" PRIu64 " incomplete=%" PRIu64 " missing=%" PRIu64 " resent=%" PRIu64 " fps=%.2f MBps=%.2f",
                aFigures.GetFrames(), aStatistics.incomplete, aStatistics.missingPackets, aStatistics.resentPackets,
                aFigures.GetFramesPerSecond(), aFigures.GetMegabytesPerSecond());
  return line;
}

} // namespace krapps
