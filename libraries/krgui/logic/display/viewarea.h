#pragma once
// What is drawn where in a window: the outcome of the view geometry, and what follows from it alone: background bands
// the image's pixel under a point, and the way between window and image. How it is computed is left to the view
// geometry.

#include "krgui/krdisplaymapping.h"
#include "logic/pixelrect.h"

#include <algorithm>
#include <cstdint>
#include <optional>

namespace krgui {

struct PixelPoint {
  std::int32_t x = 0;
  std::int32_t y = 0;
  friend constexpr bool operator==(const PixelPoint&, const PixelPoint&) = default;
};

/// What is drawn where, in device pixels of the client area.
struct ViewArea {
  PixelRect clientRect;      ///< The whole client area.
  PixelRect viewRect;        ///< The client area without the scroll bars.
  PixelRect destinationRect; ///< Where the image goes.
  PixelRect sourceRect;      ///< Which part of the image goes there, in image pixels; its rows count from the image's
                             ///< bottom. Of no width or height where the view shows less than a pixel's half.
  PixelRect cornerRect;      ///< The square between the scroll bars; empty without a horizontal one.
  std::uint32_t imageWidth = 0;
  std::uint32_t imageHeight = 0;

  /// The part of the image that is drawn, with rows counted from its top. At least one pixel, as a view that shows less
  /// than that is inside a pixel; empty when nothing is drawn, that is without an image or without room for it.
  constexpr PixelRect GetCopyRect() const {
    const auto width = static_cast<std::int32_t>(imageWidth);
    const auto height = static_cast<std::int32_t>(imageHeight);
    if (width <= 0 || height <= 0 || destinationRect.IsEmpty())
      return {};
    PixelRect copy{sourceRect.left, height - sourceRect.bottom, sourceRect.right, height - sourceRect.top};
    if (copy.right == copy.left)
      copy.right = (copy.left = std::min(copy.left, width - 1)) + 1;
    if (copy.bottom == copy.top)
      copy.bottom = (copy.top = std::min(copy.top, height - 1)) + 1;
    return copy;
  }
  friend constexpr bool operator==(const ViewArea&, const ViewArea&) = default;
};

/// The strips of the client area around the destination, at most four; empty ones are left out.
struct Bands {
  PixelRect rects[4];
  int count = 0;
};
/// The background bands: above and below over the full width when the destination does not begin at the top, left and
/// right over the full height when it does not begin at the left.
Bands ComputeBands(const ViewArea& aView);

/// The pixel of the image, counted from its top left corner, that is drawn at a point of the client area; nothing
/// outside the image. The same pixel that the nearest-neighbour scaler takes.
std::optional<PixelPoint> FindImagePixel(const ViewArea& aView, PixelPoint aClientPoint);

/// The way between a widget whose pixels are each so many of the device, and the image; nothing where none is drawn.
/// The pixel of FindImagePixel is the one that holds what the middle of the client area's pixel comes to.
std::optional<KrDisplayMapping> ComputeMapping(const ViewArea& aView, double aPixelRatio);

} // namespace krgui
