#include "streamfigures.h"

#include "plaintext.h"

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
  return "frames=" + std::to_string(aFigures.GetFrames()) + " incomplete=" + std::to_string(aStatistics.incomplete) +
         " missing=" + std::to_string(aStatistics.missingPackets) +
         " resent=" + std::to_string(aStatistics.resentPackets) +
         " fps=" + FormatFixed(aFigures.GetFramesPerSecond(), 2) +
         " MBps=" + FormatFixed(aFigures.GetMegabytesPerSecond(), 2);
}

} // namespace krapps
