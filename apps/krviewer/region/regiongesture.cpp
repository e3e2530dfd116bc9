#include "region/regiongesture.h"

#include <algorithm>
#include <cmath>

namespace krviewer {

namespace {

/// Which of two edges a place is at: the nearer one where both are near.
int FindEdge(double aPlace, double aFirst, double aSecond, double aReach) {
  const double toFirst = std::abs(aPlace - aFirst);
  const double toSecond = std::abs(aPlace - aSecond);
  if (std::min(toFirst, toSecond) > aReach)
    return 0;
  return toFirst < toSecond ? -1 : 1;
}

} // namespace

RegionGesture::RegionGesture(const RegionLimits& aLimits, const KrDisplayMapping& aMapping)
    : mLimits(aLimits), mMapping(aMapping), mRegion(aLimits.GetPresent()) {}

RegionFrame RegionGesture::GetFrame() const {
  const auto left = static_cast<double>(mRegion.x.offset - mLimits.x.present.offset);
  const auto top = static_cast<double>(mRegion.y.offset - mLimits.y.present.offset);
  return {mMapping.ToWidgetX(left), mMapping.ToWidgetY(top),
          mMapping.ToWidgetX(left + static_cast<double>(mRegion.x.length)),
          mMapping.ToWidgetY(top + static_cast<double>(mRegion.y.length))};
}

RegionGrip RegionGesture::FindGrip(double aX, double aY, double aReach) const {
  const RegionFrame frame = GetFrame();
  const bool isAcross = aX >= frame.left - aReach && aX <= frame.right + aReach;
  const bool isAlong = aY >= frame.top - aReach && aY <= frame.bottom + aReach;
  if (!isAcross || !isAlong)
    return {};
  const int edgeX = FindEdge(aX, frame.left, frame.right, aReach);
  const int edgeY = FindEdge(aY, frame.top, frame.bottom, aReach);
  if (edgeX != 0 || edgeY != 0)
    return {RegionGrip::Kind::Edges, edgeX, edgeY};
  return {mRegion == mLimits.GetPresent() ? RegionGrip::Kind::Outside : RegionGrip::Kind::Inside, 0, 0};
}

void RegionGesture::Press(double aX, double aY, double aReach) {
  mGrip = FindGrip(aX, aY, aReach);
  mBefore = mRegion;
  mFromX = ToCameraX(aX);
  mFromY = ToCameraY(aY);
  mIsDragging = true;
}

RegionSpan RegionGesture::DragSpan(const RegionAxis& aAxis, const RegionSpan& aBefore, int aEdge, double aFrom,
                                   double aTo) const {
  const auto begin = static_cast<double>(aBefore.offset);
  const auto end = static_cast<double>(aBefore.offset + aBefore.length);
  switch (mGrip.kind) {
  case RegionGrip::Kind::Inside:
    return MoveSpanTo(aAxis, aBefore.length, begin + aTo - aFrom);
  case RegionGrip::Kind::Outside:
    return FitSpan(aAxis, std::min(aFrom, aTo), std::max(aFrom, aTo));
  case RegionGrip::Kind::Edges:
    break;
  }
  if (aEdge == 0)
    return aBefore;
  const double fixed = aEdge < 0 ? end : begin;
  const double moved = (aEdge < 0 ? begin : end) + aTo - aFrom;
  return FitSpan(aAxis, std::min(fixed, moved), std::max(fixed, moved));
}

void RegionGesture::Drag(double aX, double aY) {
  if (!mIsDragging)
    return;
  mRegion.x = DragSpan(mLimits.x, mBefore.x, mGrip.edgeX, mFromX, ToCameraX(aX));
  mRegion.y = DragSpan(mLimits.y, mBefore.y, mGrip.edgeY, mFromY, ToCameraY(aY));
}

void RegionGesture::CancelDrag() {
  if (mIsDragging)
    mRegion = mBefore;
  mIsDragging = false;
}

void RegionGesture::Move(std::int64_t aStepsX, std::int64_t aStepsY) {
  mRegion.x = MoveSpan(mLimits.x, mRegion.x, aStepsX);
  mRegion.y = MoveSpan(mLimits.y, mRegion.y, aStepsY);
}

void RegionGesture::Stretch(std::int64_t aStepsX, std::int64_t aStepsY) {
  mRegion.x = StretchSpan(mLimits.x, mRegion.x, aStepsX);
  mRegion.y = StretchSpan(mLimits.y, mRegion.y, aStepsY);
}

void RegionGesture::SetRegion(const Region& aWanted) {
  const auto fit = [](const RegionAxis& aAxis, const RegionSpan& aSpan) {
    const auto begin = static_cast<double>(aSpan.offset);
    return FitSpan(aAxis, begin, begin + static_cast<double>(aSpan.length));
  };
  mRegion = {fit(mLimits.x, aWanted.x), fit(mLimits.y, aWanted.y)};
}

} // namespace krviewer
