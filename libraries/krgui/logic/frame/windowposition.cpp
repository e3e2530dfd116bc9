#include "logic/frame/windowposition.h"

#include <algorithm>
#include <limits>

namespace krgui {

namespace {

std::int32_t Saturate(std::int64_t aValue) {
  using Limits = std::numeric_limits<std::int32_t>;
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(aValue, Limits::min(), Limits::max()));
}

std::int32_t Sum(std::int32_t aStart, std::int32_t aLength) {
  return Saturate(static_cast<std::int64_t>(aStart) + aLength);
}

std::int64_t Distance(std::int32_t aStart, std::int32_t aEnd) {
  return static_cast<std::int64_t>(aEnd) - aStart;
}

/// The end of a span that starts at aStart and is to be between aMinimum and aMaximum long; the minimum comes first.
std::int32_t ClampEnd(std::int32_t aStart, std::int32_t aEnd, int aMinimum, int aMaximum) {
  std::int32_t end = aEnd;
  if (Distance(aStart, end) < aMinimum) {
    end = Sum(aStart, aMinimum);
  }
  if (Distance(aStart, end) > aMaximum) {
    end = Sum(aStart, aMaximum);
  }
  return end;
}

} // namespace

WindowRect MakeWindowRect(int aX, int aY, int aWidth, int aHeight) {
  return {aX, aY, Sum(aX, aWidth), Sum(aY, aHeight)};
}

int GetWidth(const WindowRect& aRect) {
  return Saturate(Distance(aRect.left, aRect.right));
}

int GetHeight(const WindowRect& aRect) {
  return Saturate(Distance(aRect.top, aRect.bottom));
}

WindowRect ClampToLimits(const WindowRect& aRect, const WindowLimits& aLimits) {
  WindowRect rect = aRect;
  rect.right = ClampEnd(rect.left, rect.right, aLimits.minWidth, aLimits.maxWidth);
  rect.bottom = ClampEnd(rect.top, rect.bottom, aLimits.minHeight, aLimits.maxHeight);
  return rect;
}

} // namespace krgui
