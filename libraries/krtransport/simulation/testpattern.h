#pragma once
// The pictures of a simulated camera, each computable from the frame's number, so that every pixel received can be
// checked. How colours are stored is left to LineEncoder, when a frame is due to the camera.

#include "simulation/lineencoder.h"

#include <cstdint>
#include <vector>

namespace krtransport {

/// The patterns; the numbers are the values of the camera's register.
enum class TestPattern : std::uint32_t {
  MovingRamp = 0,   ///< A diagonal ramp of 256 steps that moves by one pixel with each frame.
  StaticRamp = 1,   ///< The same ramp, standing still.
  FrameCounter = 2, ///< The standing ramp and, in the first 8 lines, the frame's number as 32 black or white blocks.
  Off = 3,          ///< The standing ramp as a scene that the sensor sees: as bright as exposure and gain make it.
};
inline constexpr std::uint32_t kTestPatternCount = 4;

/// What a picture depends on beside the frame's number; sizes in pixels.
struct Picture {
  TestPattern pattern = TestPattern::MovingRamp;
  KrPixelType type = 0;
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::uint32_t offsetX = 0;
  std::uint32_t offsetY = 0;
  bool reverseX = false;
  double brightness = 1; ///< By what the sensor multiplies a scene; test patterns are made behind it.

  friend bool operator==(const Picture&, const Picture&) = default;
};

/// Paints frames and keeps what consecutive frames have in common.
///
/// Thread: one at a time.
class PatternPainter {
public:
  /// Paints a frame without padding into aOut. The step of the ramp at a pixel is
  /// g = (offsetX + x + offsetY + y + frame number) modulo 256, with width - 1 - x for x where the picture is reversed
  /// and without the frame number where it stands still. Grey is g; red g, green g + 85, blue g + 170, each modulo 256,
  /// and so the sites of a filter array by their filter's colour. A scene has each of them multiplied by its
  /// brightness, rounded down, 255 at most. False for a format that LineEncoder does not have and a width of 0; nothing
  /// is written then.
  bool Paint(const Picture& aPicture, std::uint64_t aFrameID, std::uint8_t* aOut);

private:
  bool Prepare(const Picture& aPicture);
  PatternColour GetColour(std::size_t aStep) const;
  void PrepareRamp(std::uint32_t aLineKind, std::uint32_t aPhase);
  void PaintCounter(std::uint32_t aPlane, std::uint64_t aFrameID, std::uint8_t* aPlaneOut);

  Picture mPicture;
  LineEncoder mEncoder;
  std::size_t mLineBytes = 0;
  double mBrightness = 1; ///< Of the ramps below.
  // A line of any phase is a piece of one of a few ramps: only the first pixel of a group begins at a byte, so that
  // there is a ramp for each place in a group, and of these for each kind of line.
  std::vector<std::vector<std::uint8_t>> mRamps;
  std::vector<PatternColour> mColours; // One line before it is stored.
};

/// Paints one frame as PatternPainter::Paint. Any thread.
bool FillPattern(const Picture& aPicture, std::uint64_t aFrameID, std::uint8_t* aOut);
bool FillPattern(KrPixelType aType, std::uint32_t aWidth, std::uint32_t aHeight, std::uint64_t aFrameID,
                 std::uint8_t* aOut, TestPattern aPattern = TestPattern::MovingRamp);

/// Bytes of a frame without padding. Any thread.
std::uint64_t GetFrameBytes(const Picture& aPicture);

} // namespace krtransport
