#include "gigevision/packetledger.h"

namespace krtransport {

void PacketLedger::Begin(const PacketTotals& aTotals) {
  if (!mOpen.empty()) {
    mOpen.back().end = aTotals;
    mOpen.back().isFollowed = true;
  }
  mOpen.push_back({.begin = aTotals, .end = {}, .isFollowed = false});
}

void PacketLedger::End(FrameEnd aEnd, const PacketTotals& aTotals) {
  if (mOpen.empty())
    return;
  Frame frame = mOpen.front();
  mOpen.pop_front();
  if (!frame.isFollowed) {
    // The begin counts the frame's own first packet, as a following frame's would count another one.
    frame.end = aTotals;
    ++frame.end.received;
  }
  const std::uint64_t resent = frame.end.resent - frame.begin.resent;
  const std::uint64_t came = frame.end.received - frame.begin.received;
  const std::uint64_t inTime = came > resent ? came - resent : 0;
  if (aEnd == FrameEnd::Whole) {
    mMissing += resent;
    if (resent == 0)
      mPacketsPerFrame = inTime;
  } else if (aEnd == FrameEnd::CutShort && inTime < mPacketsPerFrame) {
    mMissing += mPacketsPerFrame - inTime;
  }
}

} // namespace krtransport
