#pragma once
// Where and how large an image is drawn in a window: from client and image size to source and destination rectangles.
// Drawing is left to the window.

#include "logic/pixelrect.h"

#include <cstdint>

namespace krgui {

/// What is drawn where.
struct ViewArea {
  double factor = 1.0;       ///< Device pixels for one image pixel.
  PixelRect clientRect;      ///< The whole client area.
  PixelRect destinationRect; ///< Where the image goes, in the client's device pixels.
  PixelRect sourceRect;      ///< Which part of the image goes there, in image pixels; empty when nothing is drawn.
};

/// The view that shows the whole image as large as the client area allows, centred. A client or image without area
/// gives an empty source and destination.
ViewArea ComputeFitView(std::int32_t aClientWidth, std::int32_t aClientHeight, std::uint32_t aImageWidth,
                        std::uint32_t aImageHeight);

/// The strips of the client area around the destination, at most four; empty ones are left out.
struct Bands {
  PixelRect rects[4];
  int count = 0;
};
/// The background bands: above and below over the full width when the destination does not begin at the top, left and
/// right over the full height when it does not begin at the left.
Bands ComputeBands(const ViewArea& aView);

} // namespace krgui
