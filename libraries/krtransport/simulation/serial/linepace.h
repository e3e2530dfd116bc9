#pragma once
// How many bytes can have passed along one direction of a serial line by a time: each takes its ten bits, or nothing on
// a line that is not paced. It neither holds bytes nor waits.

#include <cstddef>
#include <cstdint>
#include <limits>

namespace krtransport {

/// Thread: one at a time. Times are nanoseconds of the camera's clock, never running back.
class LinePace {
public:
  static constexpr std::uint64_t kNever = std::numeric_limits<std::uint64_t>::max();

  /// Bits a second; 0 for a line that is not paced. A byte that is on its way goes on at the new rate.
  void SetRate(std::uint32_t aRate) { mRate = aRate; }

  /// There is a byte to send: it starts now, unless one is on its way.
  void Begin(std::uint64_t aNowNs);
  /// There is no further byte.
  void Pause() { mIsBusy = false; }
  /// How many of aWaiting bytes, the one on its way included, can have arrived by now.
  std::size_t GetDue(std::uint64_t aNowNs, std::size_t aWaiting) const;
  /// That many of the bytes that were due are taken, and the next one is on its way.
  void Advance(std::size_t aBytes);
  /// The bytes that are due cannot be taken: the line stands still, with one byte that has arrived.
  void Hold(std::uint64_t aNowNs);
  /// When the byte that is on its way arrives; kNever without one.
  std::uint64_t GetNextNs() const;

private:
  std::uint64_t GetDurationNs(std::size_t aBytes) const;

  std::uint32_t mRate = 0;
  bool mIsBusy = false;
  std::uint64_t mBeginNs = 0; // When the byte that is on its way started.
};

} // namespace krtransport
