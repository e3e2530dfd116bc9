#pragma once
// The pictures of a simulated camera, each computable from the frame's number, so that every pixel received can be
// checked. When a frame is due, and where its bytes go, is left to the buffer source.

#include "krbuffer/krpixeltype.h"

#include <array>
#include <cstdint>
#include <vector>

namespace krtransport {

/// The patterns; the numbers are the values of the camera's register.
enum class TestPattern : std::uint32_t {
  MovingRamp = 0,   ///< A diagonal ramp of 256 steps that moves by one pixel with each frame.
  StaticRamp = 1,   ///< The same ramp, standing still.
  FrameCounter = 2, ///< The standing ramp and, in the first 8 lines, the frame's number as 32 black or white blocks.
};
inline constexpr std::uint32_t kTestPatternCount = 3;

/// Paints frames and keeps what consecutive frames have in common.
///
/// Thread: one at a time.
class PatternPainter {
public:
  /// Paints a frame without padding into aOut. Component values of a ramp's step g (0 to 255), scaled to the sample's
  /// range: Mono g; red g, green g + 85, blue g + 170, each modulo 256, and so the sites of a Bayer format by their
  /// filter's colour; alpha the largest value. False for a format that is not in the table, or lines that do not end at
  /// a byte; nothing is written then.
  bool Paint(TestPattern aPattern, KrPixelType aType, std::uint32_t aWidth, std::uint32_t aHeight,
             std::uint64_t aFrameID, std::uint8_t* aOut);

private:
  bool Prepare(KrPixelType aType, std::uint32_t aWidth);
  void PaintCounter(std::uint32_t aHeight, std::uint64_t aFrameID, std::uint8_t* aOut) const;

  KrPixelTypeInfo mInfo = {};
  std::uint32_t mWidth = 0;
  std::size_t mLineBytes = 0;
  // A line of any phase is a piece of one of two ramps, which begin at step 0 and at step 1: with two pixels to every
  // three bytes only the even pixels begin at a byte, and the colours of a Bayer line alternate. Two for even lines,
  // two for odd ones.
  std::array<std::array<std::vector<std::uint8_t>, 2>, 2> mRamps;
};

/// Paints one frame of the moving ramp, or of another pattern; as PatternPainter::Paint. Any thread.
bool FillPattern(KrPixelType aType, std::uint32_t aWidth, std::uint32_t aHeight, std::uint64_t aFrameID,
                 std::uint8_t* aOut, TestPattern aPattern = TestPattern::MovingRamp);

} // namespace krtransport
