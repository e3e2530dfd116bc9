#pragma once
// Where and how large an image is drawn in a window: zoom, scroll positions, and from client and image size the source
// and destination rectangles. Drawing, controls and locking are left to the window.

#include "logic/display/axisview.h"
#include "logic/display/scrollbarmodel.h"
#include "logic/display/viewarea.h"
#include "logic/pixelrect.h"

#include <cstdint>

namespace krgui {

enum class ZoomMode : std::int32_t { Fit = 0, OneToOne = 1, Custom = 2 };

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
  void UpdateFactor(std::uint32_t aImageWidth, std::uint32_t aImageHeight);
  bool FitsClient(std::uint32_t aImageWidth, std::uint32_t aImageHeight) const;
  BarChanges UpdateEmpty();
  AxisView& Axis(ViewAxis aAxis) { return aAxis == ViewAxis::Horizontal ? mHorizontal : mVertical; }
  const AxisView& Axis(ViewAxis aAxis) const { return aAxis == ViewAxis::Horizontal ? mHorizontal : mVertical; }

  ZoomMode mMode = ZoomMode::Fit;
  double mFactor = 1.0;
  double mPreviousFactor = 1.0; ///< That of the last update.
  bool mIsDirty = false;
  std::int32_t mClientWidth = 0;
  std::int32_t mClientHeight = 0;
  std::int32_t mBarThickness = kBarThickness;
  AxisView mHorizontal{ViewAxis::Horizontal};
  AxisView mVertical{ViewAxis::Vertical};
  ViewArea mArea;
};

} // namespace krgui
