#pragma once
// What a camera's region of interest may be: sizes and places on the increments, limits that depend on each other, and
// the order in which they are set. Reading and writing them is left to RegionAccess, drawing to the editor.

#include <cstdint>
#include <vector>

namespace krviewer {

/// Where a region lies along one axis, in the camera's pixels.
struct RegionSpan {
  std::int64_t offset = 0;
  std::int64_t length = 0;
  friend constexpr bool operator==(const RegionSpan&, const RegionSpan&) = default;
};

/// What the camera says of one axis. Values are those of real cameras: no sum of two of them overflows.
struct RegionAxis {
  RegionSpan present;
  std::int64_t offsetMin = 0;
  std::int64_t offsetIncrement = 1; ///< At least 1; offsets count from the least one.
  std::int64_t lengthMin = 1;
  std::int64_t lengthIncrement = 1; ///< The same of lengths.
  std::int64_t extent = 0;          ///< Offset and length together are this at most.
  bool isOffsetFixed = false;       ///< The camera has none, or does not let it be set.
  bool isLengthFixed = false;
};

struct Region {
  RegionSpan x;
  RegionSpan y;
  friend constexpr bool operator==(const Region&, const Region&) = default;
};

struct RegionLimits {
  RegionAxis x;
  RegionAxis y;
  Region GetPresent() const { return {x.present, y.present}; }
  /// Whether neither a place nor a size can be set.
  bool IsFixed() const { return x.isOffsetFixed && x.isLengthFixed && y.isOffsetFixed && y.isLengthFixed; }
};

/// The largest span that the axis allows.
RegionSpan GetFullSpan(const RegionAxis& aAxis);
/// The valid span nearest to two edges, of which the second is not before the first. What is fixed stays.
RegionSpan FitSpan(const RegionAxis& aAxis, double aBegin, double aEnd);
/// The span of a length that is valid already, with the valid begin that is nearest to a place.
RegionSpan MoveSpanTo(const RegionAxis& aAxis, std::int64_t aLength, double aBegin);
/// Moves a valid span by so many increments, as far as there is room.
RegionSpan MoveSpan(const RegionAxis& aAxis, const RegionSpan& aSpan, std::int64_t aSteps);
/// Makes a valid span longer by so many increments, or shorter, as far as there is room.
RegionSpan StretchSpan(const RegionAxis& aAxis, const RegionSpan& aSpan, std::int64_t aSteps);

/// One value to be set.
struct RegionStep {
  bool isOffset = false;
  std::int64_t value = 0;
  friend constexpr bool operator==(const RegionStep&, const RegionStep&) = default;
};
/// The steps from one valid span to another, each of which is valid when its turn comes: what shrinks does so before it
/// moves, what grows moves first. Nothing for what stays.
std::vector<RegionStep> PlanSteps(const RegionSpan& aFrom, const RegionSpan& aTo);

} // namespace krviewer
