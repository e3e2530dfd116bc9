#pragma once
// Works out how many packets of a stream did not come in time. Aravis counts, for a frame with a gap, all packets
// behind the gap as missing; here frames are compared with what a frame needs. Where totals come from is left to the
// caller.

#include <cstdint>
#include <deque>

namespace krtransport {

/// What the receiver counted up to a moment.
struct PacketTotals {
  std::uint64_t received = 0; ///< That belong to frames with a buffer, each once.
  std::uint64_t resent = 0;   ///< Of these, the ones that came after a resend was asked for.
};

/// How a frame ended.
enum class FrameEnd { Whole, CutShort, Aborted };

/// A camera sends its frames one after the other: what comes from one frame's begin to the next one's belongs to the
/// first, but for packets that were sent again. Packets of frames of which nothing came are not counted.
///
/// Thread: one at a time.
class PacketLedger {
public:
  /// How many packets a frame should have, until a whole one shows it.
  explicit PacketLedger(std::uint64_t aPacketsPerFrame) : mPacketsPerFrame(aPacketsPerFrame) {}

  /// The first packet of a frame came; the totals have it.
  void Begin(const PacketTotals& aTotals);
  /// The frame that began first, of those that did not end, is finished.
  void End(FrameEnd aEnd, const PacketTotals& aTotals);

  /// Packets that did not come in time, whether or not a resend brought them.
  std::uint64_t GetMissing() const { return mMissing; }
  std::uint64_t GetPacketsPerFrame() const { return mPacketsPerFrame; }

private:
  struct Frame {
    PacketTotals begin;
    PacketTotals end;
    bool isFollowed = false; // By the next frame, whose begin is the end.
  };

  std::deque<Frame> mOpen;
  std::uint64_t mPacketsPerFrame;
  std::uint64_t mMissing = 0;
};

} // namespace krtransport
