#pragma once
// Turns a frame into the pixels of a window: background bands, the image, the corner between the scroll bars. The image
// is converted row by row while it is scaled, so that only what is shown is converted. Texts, and how the pixels reach
// the screen, are left to others.

#include "krbuffer/krlineconversion.h"
#include "logic/display/nearestscaler.h"
#include "logic/display/viewgeometry.h"

#include <cstdint>
#include <vector>

namespace krgui {

/// Pixels of a client area to be drawn into: 32 bits each, blue in the lowest byte, the highest 255.
struct Canvas {
  PixelPlane<std::uint32_t> plane;
  std::int32_t width = 0;
  std::int32_t height = 0;
};

/// Thread: one at a time. It keeps its tables from one frame to the next.
class FrameRenderer {
public:
  /// Fills the whole client area with one colour (0xffRRGGBB).
  static void Fill(const Canvas& aCanvas, const PixelRect& aRect, std::uint32_t aColor);
  /// Fills the bands around the destination.
  static void DrawBands(const Canvas& aCanvas, const ViewArea& aView, std::uint32_t aColor);
  /// Draws the view's part of an image into its destination, nearest neighbour. Nothing where source or destination are
  /// empty, and for an image that is not open or not of the size that the view was computed for; what lies outside the
  /// canvas is cut. What is drawn is opaque, whatever alpha the image has.
  void DrawImage(const Canvas& aCanvas, const ViewArea& aView, const KrLineConversion& aImage);

private:
  /// A line as pixels: in the image's own memory where it can be had there, else in mRow.
  const std::uint32_t* GetLine(const KrLineConversion& aImage, std::uint32_t aLine);

  NearestScaler mScaler;
  std::vector<std::uint32_t> mRow; ///< One converted line of the image.
};

} // namespace krgui
