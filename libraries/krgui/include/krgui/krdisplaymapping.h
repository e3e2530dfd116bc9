#pragma once
// Where a display window shows which part of its image, so that applications can lay controls and marks over it. It is
// a value of one moment: another image, the user's zooming and a resized window make it another one.

#include <cstdint>

/// The way between the widget of a display window (KrWnd::GetWidget), in its device-independent pixels, and its image,
/// whose column x reaches from x to x + 1. Either way goes beyond the edges of widget and image, too.
struct KrDisplayMapping {
  std::uint32_t imageWidth = 0;  ///< Of the image shown, in pixels.
  std::uint32_t imageHeight = 0; ///< The same.
  double viewWidth = 0;  ///< The widget less its scroll bars, from its upper left corner on: the image is seen in it.
  double viewHeight = 0; ///< The same.
  double originX = 0;    ///< Where the widget shows the image's upper left corner, or would if that were in the view.
  double originY = 0;    ///< The same.
  double scaleX = 1;     ///< Pixels of the widget for one of the image, above 0.
  double scaleY = 1;     ///< The same; it differs by the rounding to whole pixels.

  /// From the widget to the image.
  constexpr double ToImageX(double aWidgetX) const { return (aWidgetX - originX) / scaleX; }
  /// The same from above.
  constexpr double ToImageY(double aWidgetY) const { return (aWidgetY - originY) / scaleY; }
  /// From the image to the widget.
  constexpr double ToWidgetX(double aImageX) const { return originX + aImageX * scaleX; }
  /// The same from above.
  constexpr double ToWidgetY(double aImageY) const { return originY + aImageY * scaleY; }
  /// Compares all of it.
  friend constexpr bool operator==(const KrDisplayMapping&, const KrDisplayMapping&) = default;
};
