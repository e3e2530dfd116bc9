#pragma once
// Frame and data rate over the last second, from the times at which frames came. What is done with the rates is left to
// the caller; times are given, not read.

#include <cstdint>
#include <deque>

namespace krviewer {

class FrameMeter {
public:
  /// A frame of aBytes came at aTimeNs (nanoseconds of a steady clock, never falling).
  void Add(std::uint64_t aTimeNs, std::uint64_t aBytes);
  /// Whether frames have not come for so long that the rates are over: two seconds, or three times as long as one took
  /// before where that is longer.
  bool IsStale(std::uint64_t aNowNs) const;
  /// Forgets all frames.
  void Reset();

  /// Frames a second over the window; 0 while fewer than two frames are in it.
  double GetFramesPerSecond() const;
  /// Millions of bytes a second, likewise.
  double GetMegabytesPerSecond() const;

private:
  struct Arrival {
    std::uint64_t timeNs;
    std::uint64_t bytes;
  };
  double GetSpanSeconds() const;

  std::deque<Arrival> mArrivals;
};

} // namespace krviewer
