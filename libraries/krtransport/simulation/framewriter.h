#pragma once
// Puts a frame of a simulated camera into a buffer as its packets bring it: picture, chunks, and gaps where packets are
// lost. When a frame is due and who gets the buffer is left to the buffer source.

#include "krbuffer/krbuffer.h"
#include "simulation/framelayout.h"
#include "simulation/orderedfaults.h"

#include <optional>
#include <vector>

namespace krtransport {

/// How the packets of one frame fared.
struct PacketCounts {
  std::uint64_t missing = 0; ///< Did not come in time.
  std::uint64_t resent = 0;  ///< Came later.
};

/// Thread: one at a time.
class FrameWriter {
public:
  /// Fills the buffer and says in its status how the frame came: Complete, Incomplete for lost packets, TooSmall for a
  /// buffer that the frame does not fit into.
  PacketCounts Write(KrBuffer& aBuffer, const FrameSettings& aSettings, std::uint64_t aFrameID,
                     const std::optional<PacketFault>& aFault);

private:
  struct Gap {
    std::size_t begin = 0;
    std::size_t end = 0;
    std::uint64_t packets = 0;
  };

  static Gap FindGap(const FrameSettings& aSettings, const PacketFault& aFault);
  bool WriteWhole(KrBuffer& aBuffer, const FrameSettings& aSettings, std::uint64_t aFrameID);

  PatternPainter mPainter;
  std::vector<std::uint8_t> mKept; // What the buffer held where a gap is.
};

} // namespace krtransport
