#pragma once
// One axis of a view: how the zoomed image lies in the room that it has there, centred or scrolled, and what its scroll
// bar says. Zoom and the division of the client area are left to the view geometry, which has one for each axis.

#include "logic/display/scrollbarmodel.h"

#include <cstdint>
#include <limits>

namespace krgui {

enum class ViewAxis { Horizontal, Vertical };

/// The state and the rules of one axis. The rules of the two differ on purpose, in how they round and in the direction
/// in which they count: a table in the implementation says how.
///
/// Thread: as its owner.
class AxisView {
public:
  /// The position of an axis that was never scrolled.
  static constexpr std::int32_t kNoPosition = std::numeric_limits<std::int32_t>::min();

  explicit AxisView(ViewAxis aAxis) : mAxis(aAxis) {}

  /// What an update works with; client and view in device pixels, image in its own.
  struct Sizes {
    std::int32_t client = 0;
    std::int32_t view = 0; ///< The client area without the other axis' bar.
    std::uint32_t image = 0;
    double factor = 1.0;

    /// The zoomed image's size, rounded to whole pixels; kept as it is computed, as it may be more than any integer
    /// holds.
    double GetZoomedSize() const;
    /// Whether the client area is too small for the zoomed image.
    bool IsBarNeeded() const { return GetZoomedSize() > client; }
  };
  struct Interval {
    std::int32_t begin = 0;
    std::int32_t end = 0;
  };
  struct Layout {
    bool isBarHidden = false; ///< The image is centred.
    bool isBarPlaced = false; ///< The bar got a range, a page and a position.
    Interval destination;
    Interval source;
  };

  /// Lays the image out. aIsRangeDue lets the bar get a new range where the image is scrolled.
  Layout Update(const Sizes& aSizes, bool aIsRangeDue);
  /// The bar counts as not shown.
  void SetHidden() { mIsBarShown = false; }

  /// The bar was used by the user.
  void Scroll(ScrollCode aCode, std::int32_t aThumbPosition);
  /// Scrolls by what a point is away from the client area's middle.
  void CentreOn(std::int32_t aClientPoint, std::int32_t aClientSize);

  const ScrollBarModel& GetBar() const { return mBar; }
  /// Moves the bar alone; false, and nothing changed, for a position outside its range.
  bool SetBarPosition(std::int32_t aPosition);
  /// The position last scrolled to; not cut to any range.
  std::int32_t GetPosition() const { return mPosition; }

private:
  void UpdateRange(const Sizes& aSizes);
  Interval ComputeSource(const Sizes& aSizes) const;
  Interval CheckSource(Interval aSource, std::uint32_t aImageSize) const;
  std::int32_t ComputePosition(ScrollCode aCode, std::int32_t aThumbPosition) const;
  void MoveTo(std::int32_t aPosition);

  ViewAxis mAxis;
  ScrollBarModel mBar;
  std::int32_t mRangeMaximum = 0; ///< The scrollable extent in zoomed pixels, without the page.
  std::int32_t mPosition = kNoPosition;
  double mRelativePosition = 0.0; ///< Position by range maximum, so that another zoom shows the same part of the image.
  bool mIsBarShown = false;
};

} // namespace krgui
