#pragma once
// Which frames of a stream never came, as the numbers of those that came show it.
// Frames that came in part are the source's business.

#include <cstdint>
#include <optional>

namespace krdevice {

/// Follows the frames' numbers: 16-bit block IDs, which go from 65535 to 1 (GigE Vision 1.x), and 64-bit ones. A number
/// that is repeated, goes backwards or leaps beyond belief begins a new numbering, in which nothing is missing yet.
///
/// Thread: one at a time, as its stream arranges it.
class FrameLedger {
public:
  /// Takes in the number of the next frame; gives how many numbers were skipped before it.
  std::uint64_t Follow(std::uint64_t aFrameID);
  /// Counts skipped numbers as missing, except those of frames that the source discarded for want of a buffer.
  /// aDiscarded is all that it has discarded since the stream was started, read after the frame arrived.
  void CountSkipped(std::uint64_t aSkipped, std::uint64_t aDiscarded);

  std::uint64_t GetMissing() const { return mMissing; }

private:
  std::optional<std::uint64_t> mLastID;
  std::uint64_t mMissing = 0;
  std::uint64_t mDiscardsFound = 0; // Discarded frames whose skipped numbers have been seen.
};

} // namespace krdevice
