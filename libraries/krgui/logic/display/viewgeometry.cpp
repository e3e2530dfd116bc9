#include "logic/display/viewgeometry.h"

#include <algorithm>
#include <limits>

namespace krgui {

namespace {

/// A factor that can be divided by and into.
double CutFactor(double aFactor) {
  return std::clamp(aFactor, std::numeric_limits<double>::min(), std::numeric_limits<double>::max());
}

BarChange MakeChange(const AxisView::Layout& aLayout, const PixelRect& aRect) {
  if (aLayout.isBarHidden)
    return {BarChange::Kind::Hide, {}};
  if (aLayout.isBarPlaced)
    return {BarChange::Kind::Place, aRect};
  return {};
}

} // namespace

void ViewGeometry::ZoomOneToOne() {
  mMode = ZoomMode::OneToOne;
}

void ViewGeometry::ZoomFit() {
  mMode = ZoomMode::Fit;
}

void ViewGeometry::ZoomIn(double aStep) {
  mFactor = CutFactor(mFactor * aStep);
  mMode = ZoomMode::Custom;
}

void ViewGeometry::ZoomOut(double aStep) {
  mFactor = CutFactor(mFactor / aStep);
  mMode = ZoomMode::Custom;
}

void ViewGeometry::SetClient(std::int32_t aWidth, std::int32_t aHeight, std::int32_t aBarThickness) {
  const std::int32_t width = std::max(aWidth, 0);
  const std::int32_t height = std::max(aHeight, 0);
  if (width == mClientWidth && height == mClientHeight && aBarThickness == mBarThickness)
    return;
  mClientWidth = width;
  mClientHeight = height;
  mBarThickness = aBarThickness;
  mIsDirty = true;
}

bool ViewGeometry::FitsClient(std::uint32_t aImageWidth, std::uint32_t aImageHeight) const {
  const double clientWidth = mClientWidth;
  const double clientHeight = mClientHeight;
  if (clientWidth > mFactor * aImageWidth)
    return clientHeight / aImageHeight * aImageWidth >= mFactor * aImageWidth;
  return clientWidth / aImageWidth * aImageHeight >= mFactor * aImageHeight;
}

void ViewGeometry::UpdateFactor(std::uint32_t aImageWidth, std::uint32_t aImageHeight) {
  if (mMode == ZoomMode::OneToOne)
    mFactor = 1.0;
  if (mMode == ZoomMode::Custom && FitsClient(aImageWidth, aImageHeight))
    mMode = ZoomMode::Fit;
  if (mMode == ZoomMode::Fit)
    mFactor = 1.0 / std::max(static_cast<double>(aImageWidth) / mClientWidth,
                             static_cast<double>(aImageHeight) / mClientHeight);
}

BarChanges ViewGeometry::UpdateEmpty() {
  mArea.viewRect = mArea.clientRect;
  mArea.destinationRect = mArea.clientRect;
  mHorizontal.SetHidden();
  mVertical.SetHidden();
  mIsDirty = false;
  return {{BarChange::Kind::Hide, {}}, {BarChange::Kind::Hide, {}}};
}

BarChanges ViewGeometry::Update(std::uint32_t aImageWidth, std::uint32_t aImageHeight) {
  mIsDirty = mIsDirty || aImageWidth != mArea.imageWidth || aImageHeight != mArea.imageHeight;
  mArea = {};
  mArea.imageWidth = aImageWidth;
  mArea.imageHeight = aImageHeight;
  mArea.clientRect = {0, 0, mClientWidth, mClientHeight};
  if (mArea.clientRect.IsEmpty() || aImageWidth == 0 || aImageHeight == 0)
    return UpdateEmpty();

  UpdateFactor(aImageWidth, aImageHeight);

  AxisView::Sizes columns{mClientWidth, mClientWidth, aImageWidth, mFactor};
  AxisView::Sizes rows{mClientHeight, mClientHeight, aImageHeight, mFactor};
  // Either bar takes its room from the other axis.
  columns.view -= rows.IsBarNeeded() ? mBarThickness : 0;
  rows.view -= columns.IsBarNeeded() ? mBarThickness : 0;
  mArea.viewRect = {0, 0, columns.view, rows.view};
  if (columns.IsBarNeeded())
    mArea.cornerRect = {mClientWidth - mBarThickness, mClientHeight - mBarThickness, mClientWidth, mClientHeight};

  const bool isRangeDue = mMode != ZoomMode::Fit && (mFactor != mPreviousFactor || mIsDirty);
  const AxisView::Layout x = mHorizontal.Update(columns, isRangeDue);
  const AxisView::Layout y = mVertical.Update(rows, isRangeDue);
  mArea.destinationRect = {x.destination.begin, y.destination.begin, x.destination.end, y.destination.end};
  mArea.sourceRect = {x.source.begin, y.source.begin, x.source.end, y.source.end};
  mPreviousFactor = mFactor;
  mIsDirty = false;
  return {MakeChange(x, {0, rows.view, columns.view, rows.view + mBarThickness}),
          MakeChange(y, {columns.view, 0, columns.view + mBarThickness, rows.view})};
}

void ViewGeometry::Scroll(ViewAxis aAxis, ScrollCode aCode, std::int32_t aThumbPosition) {
  Axis(aAxis).Scroll(aCode, aThumbPosition);
}

void ViewGeometry::CentreOn(PixelPoint aClientPoint) {
  mHorizontal.CentreOn(aClientPoint.x, mClientWidth);
  mVertical.CentreOn(aClientPoint.y, mClientHeight);
}

const ScrollBarModel& ViewGeometry::GetBar(ViewAxis aAxis) const {
  return Axis(aAxis).GetBar();
}

bool ViewGeometry::SetBarPosition(ViewAxis aAxis, std::int32_t aPosition) {
  return Axis(aAxis).SetBarPosition(aPosition);
}

std::int32_t ViewGeometry::GetScrollPosition(ViewAxis aAxis) const {
  return Axis(aAxis).GetPosition();
}

} // namespace krgui
