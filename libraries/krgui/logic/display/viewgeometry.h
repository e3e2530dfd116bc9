#pragma once
// Where and how large an image is drawn in a window: zoom, scroll positions, and from client and image size the source
// and destination rectangles. Drawing, controls and locking are left to the window.

#include "logic/display/scrollbarmodel.h"
#include "logic/pixelrect.h"

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
                             ///< bottom. Empty when nothing is drawn.
  PixelRect cornerRect;      ///< The square between the scroll bars.
  std::uint32_t imageWidth = 0;
  std::uint32_t imageHeight = 0;

  /// The part of the image that is drawn, with rows counted from its top.
  constexpr PixelRect GetCopyRect() const {
    const auto height = static_cast<std::int32_t>(imageHeight);
    return {sourceRect.left, height - sourceRect.bottom, sourceRect.right, height - sourceRect.top};
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

enum class ZoomMode : std::int32_t { Fit = 0, OneToOne = 1, Custom = 2 };

enum class ViewAxis { Horizontal, Vertical };

/// What an update asks of one scroll bar's control.
struct BarChange {
  enum class Kind {
    None,
    Hide,  ///< To be hidden, by a message after the paint.
    Place, ///< To be placed in rect, brought to the top and shown, with the model's range, page and position.
  };
  Kind kind = Kind::None;
  PixelRect rect; ///< In device pixels of the client area.
};
struct BarChanges {
  BarChange horizontal;
  BarChange vertical;
};

/// The view of one window onto its images.
///
/// Horizontal and vertical rules differ on purpose: see the implementation. Sizes of up to 65,535 and any factor above
/// 0 give no overflow: ranges stop at what 32 bits hold.
///
/// Thread: one at a time, under the display lock.
class ViewGeometry {
public:
  /// The scroll bars' thickness in device-independent pixels.
  static constexpr std::int32_t kBarThickness = 18;

  void ZoomOneToOne();
  void ZoomFit();
  /// Multiplies the factor; the mode becomes Custom. More or less than 64-bit numbers hold is cut.
  void ZoomIn(double aStep);
  /// Divides the factor; the mode becomes Custom.
  void ZoomOut(double aStep);
  ZoomMode GetZoomMode() const { return mMode; }
  /// Device pixels for one image pixel, as of the last zoom or update.
  double GetFactor() const { return mFactor; }

  /// The client area's size and the bars' thickness, in device pixels; another one than before makes the view dirty.
  void SetClient(std::int32_t aWidth, std::int32_t aHeight, std::int32_t aBarThickness);
  /// An image of another size came, or the window another one.
  void MarkDirty() { mIsDirty = true; }
  bool IsDirty() const { return mIsDirty; }

  /// The geometry update, run at the start of every paint, for the size of the image last accepted. With an image or a
  /// client area without size the source is empty, the bars are hidden and the factor stays.
  BarChanges Update(std::uint32_t aImageWidth, std::uint32_t aImageHeight);
  /// What the last update computed.
  const ViewArea& GetArea() const { return mArea; }

  /// A scroll bar was used by the user; aThumbPosition counts for the thumb alone. The view follows at the next update.
  void Scroll(ViewAxis aAxis, ScrollCode aCode, std::int32_t aThumbPosition);
  /// Brings a point of the client area into its middle, for the client area's present size.
  void CentreOn(PixelPoint aClientPoint);

  const ScrollBarModel& GetBar(ViewAxis aAxis) const;
  /// Moves the bar alone; false, and nothing changed, for a position outside its range.
  bool SetBarPosition(ViewAxis aAxis, std::int32_t aPosition);
  /// The position that the view was last scrolled to; not cut to any range.
  std::int32_t GetScrollPosition(ViewAxis aAxis) const;

private:
  ZoomMode mMode = ZoomMode::Fit;
  double mFactor = 1.0;
  bool mIsDirty = false;
  ViewArea mArea;
};

} // namespace krgui
