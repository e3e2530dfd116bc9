#include "logic/display/framecounts.h"

namespace krgui {

void FrameCounts::Accept() {
  Drop();
  ++mStatistics.received;
  mIsWaiting = true;
}

void FrameCounts::Lose() {
  ++mStatistics.received;
  ++mStatistics.dropped;
}

void FrameCounts::Refuse(const KrString& aText) {
  ++mStatistics.received;
  ++mStatistics.refused;
  mStatistics.lastRefusal = aText;
}

void FrameCounts::Show() {
  mStatistics.shown += mIsWaiting ? 1 : 0;
  mIsWaiting = false;
}

void FrameCounts::Drop() {
  mStatistics.dropped += mIsWaiting ? 1 : 0;
  mIsWaiting = false;
}

void FrameCounts::AddTimes(const FrameTarget::Times& aTimes) {
  mStatistics.conversionTime += aTimes.conversion;
  mStatistics.drawingTime += aTimes.drawing;
}

void FrameCounts::Reset() {
  mStatistics = {};
  mIsWaiting = false;
}

} // namespace krgui
