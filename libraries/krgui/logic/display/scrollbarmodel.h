#pragma once
// A scroll bar as windows know it: a range that includes the page, the page, a position. What the position means is the
// view geometry's business, what it looks like the toolkit's.

#include <cstdint>

namespace krgui {

/// The part of a bar that was used, numbered as scroll messages number them.
enum class ScrollCode : std::int32_t {
  LineLess = 0,
  LineMore = 1,
  PageLess = 2,
  PageMore = 3,
  ThumbPosition = 4,
  ThumbTrack = 5,
  Least = 6,
  Most = 7,
};

/// Thread: as its owner.
class ScrollBarModel {
public:
  /// Sets 0 as minimum, aMaximum plus the page as maximum, the page, and a position that is cut to the range.
  void SetRange(std::int32_t aMaximum, std::int32_t aPage, std::int32_t aPosition);
  /// A position, cut to the range.
  void SetPosition(std::int32_t aPosition);

  std::int32_t GetMinimum() const { return 0; }
  /// The greatest value of the range: the scrollable extent and the page.
  std::int32_t GetMaximum() const { return mMaximum; }
  std::int32_t GetPage() const { return mPage; }
  std::int32_t GetPosition() const { return mPosition; }
  /// True for a position from minimum to maximum, both included.
  bool Contains(std::int32_t aPosition) const { return aPosition >= 0 && aPosition <= mMaximum; }

private:
  std::int32_t mMaximum = 0;
  std::int32_t mPage = 0;
  std::int32_t mPosition = 0;
};

} // namespace krgui
