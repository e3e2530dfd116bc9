#pragma once
// How many frames were skipped between two that came, as their numbers show it. Who lost them is left to the stream's
// own counters.

#include <cstdint>
#include <optional>

namespace krviewer {

/// Knows numbers of 64 bits and those of 16 bits, in which 1 follows 65535. A number that is repeated, falls otherwise
/// or leaps by millions begins a new numbering.
///
/// Thread: one at a time.
class FrameNumbers {
public:
  /// Takes in the number of the next frame; gives how many are missing before it.
  std::uint64_t Follow(std::uint64_t aFrameID);
  /// Takes the next number for the first one.
  void Restart() { mLast.reset(); }

private:
  std::optional<std::uint64_t> mLast;
};

} // namespace krviewer
