#pragma once
// What a run of frames came to. Counting packets is the stream's business.

#include "krdevice/krstream.h"

#include <cstdint>
#include <string>

namespace krapps {

/// Frames and bytes by the time of their arrival.
class StreamFigures {
public:
  /// Takes a frame in; times in nanoseconds of any steady clock.
  void Add(std::uint64_t aTimeNs, std::uint64_t aBytes);

  /// The frames taken, whole or not.
  std::uint64_t GetFrames() const { return mFrames; }
  /// Frames in a second between the first and the last; 0 below two frames.
  double GetFramesPerSecond() const;
  /// Megabytes (10^6) in a second: the bytes that came after the first frame, by the time since then.
  double GetMegabytesPerSecond() const;

private:
  double GetSeconds() const { return static_cast<double>(mLastNs - mFirstNs) * 1e-9; }

  std::uint64_t mFrames = 0;
  std::uint64_t mFirstNs = 0;
  std::uint64_t mLastNs = 0;
  std::uint64_t mBytesAfterFirst = 0;
};

/// The closing line, without line break: frames=… incomplete=… missing=… resent=… fps=… MBps=…
std::string FormatClosingLine(const StreamFigures& aFigures, const KrStreamStatistics& aStatistics);

} // namespace krapps
