#pragma once
// A region of interest while the user draws it: which part of it the mouse has, what dragging and keys make of it, and
// where it is on the picture. Limits are the rules', windows and events the editor's.

#include "krgui/krdisplaymapping.h"
#include "region/regionrules.h"

namespace krviewer {

/// What of a region is at a place of the picture. Edges are -1 for left or top, 1 for right or bottom, 0 for neither.
struct RegionGrip {
  enum class Kind { Edges, Inside, Outside };
  Kind kind = Kind::Outside;
  int edgeX = 0;
  int edgeY = 0;
  friend constexpr bool operator==(const RegionGrip&, const RegionGrip&) = default;
};

/// A rectangle of the picture's widget, with fractions of its pixels.
struct RegionFrame {
  double left = 0;
  double top = 0;
  double right = 0;
  double bottom = 0;
  friend constexpr bool operator==(const RegionFrame&, const RegionFrame&) = default;
};

/// One region, valid at any moment, that begins as the one that the camera has. Places are in the pixels of the
/// display's widget.
///
/// Thread: one.
class RegionGesture {
public:
  /// The picture shown is that of the limits' present region.
  RegionGesture(const RegionLimits& aLimits, const KrDisplayMapping& aMapping);

  const Region& GetRegion() const { return mRegion; }
  const RegionLimits& GetLimits() const { return mLimits; }
  const KrDisplayMapping& GetMapping() const { return mMapping; }
  RegionFrame GetFrame() const;
  /// The picture is shown in another way now; a drag goes on.
  void SetMapping(const KrDisplayMapping& aMapping) { mMapping = aMapping; }

  /// What is at a place, where an edge is that is no further than aReach. The inside of a region that was not changed
  /// yet counts as outside: it is all of the picture, and the user begins to draw.
  RegionGrip FindGrip(double aX, double aY, double aReach) const;

  /// Takes hold: of edges, of the whole, or begins another region outside of the old one.
  void Press(double aX, double aY, double aReach);
  bool IsDragging() const { return mIsDragging; }
  void Drag(double aX, double aY);
  void Release() { mIsDragging = false; }
  /// Lets go, with the region as it was before.
  void CancelDrag();

  /// Moves, or makes larger, by increments of the camera.
  void Move(std::int64_t aStepsX, std::int64_t aStepsY);
  void Stretch(std::int64_t aStepsX, std::int64_t aStepsY);
  /// Takes the valid region that is nearest to a wanted one.
  void SetRegion(const Region& aWanted);

private:
  double ToCameraX(double aX) const { return static_cast<double>(mLimits.x.present.offset) + mMapping.ToImageX(aX); }
  double ToCameraY(double aY) const { return static_cast<double>(mLimits.y.present.offset) + mMapping.ToImageY(aY); }
  RegionSpan DragSpan(const RegionAxis& aAxis, const RegionSpan& aBefore, int aEdge, double aFrom, double aTo) const;

  const RegionLimits mLimits;
  KrDisplayMapping mMapping;
  Region mRegion;
  // Of the drag, in the camera's pixels.
  bool mIsDragging = false;
  RegionGrip mGrip;
  Region mBefore;
  double mFromX = 0;
  double mFromY = 0;
};

} // namespace krviewer
