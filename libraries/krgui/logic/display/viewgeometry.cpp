#include "logic/display/viewgeometry.h"

#include <algorithm>

namespace krgui {

namespace {

struct Extent {
  std::int32_t begin;
  std::int32_t end;
};

// Centres the zoomed image on one axis; positions are rounded to the nearest pixel by truncating after adding a half.
Extent Centre(std::int32_t aViewSize, std::uint32_t aImageSize, double aFactor) {
  const double middle = aViewSize * 0.5;
  const double half = aImageSize * aFactor * 0.5;
  return {static_cast<std::int32_t>(middle - half + 0.5), static_cast<std::int32_t>(middle + half + 0.5)};
}

void AddBand(Bands& aBands, const PixelRect& aRect) {
  if (!aRect.IsEmpty())
    aBands.rects[aBands.count++] = aRect;
}

} // namespace

ViewArea ComputeFitView(std::int32_t aClientWidth, std::int32_t aClientHeight, std::uint32_t aImageWidth,
                        std::uint32_t aImageHeight) {
  ViewArea view;
  view.clientRect = {0, 0, std::max(aClientWidth, 0), std::max(aClientHeight, 0)};
  if (view.clientRect.IsEmpty() || aImageWidth == 0 || aImageHeight == 0)
    return view;

  view.factor = 1.0 / std::max(static_cast<double>(aImageWidth) / aClientWidth,
                               static_cast<double>(aImageHeight) / aClientHeight);
  const Extent columns = Centre(aClientWidth, aImageWidth, view.factor);
  const Extent rows = Centre(aClientHeight, aImageHeight, view.factor);
  view.destinationRect = {columns.begin, rows.begin, columns.end, rows.end};
  view.sourceRect = {0, 0, static_cast<std::int32_t>(aImageWidth), static_cast<std::int32_t>(aImageHeight)};
  return view;
}

Bands ComputeBands(const ViewArea& aView) {
  const PixelRect& client = aView.clientRect;
  const PixelRect& image = aView.destinationRect;
  Bands bands;
  if (image.top != 0) {
    AddBand(bands, {0, 0, client.GetWidth(), image.top});
    AddBand(bands, {0, image.bottom, client.GetWidth(), client.bottom});
  }
  if (image.left != 0) {
    AddBand(bands, {0, 0, image.left, client.GetHeight()});
    AddBand(bands, {image.right, 0, client.right, client.GetHeight()});
  }
  return bands;
}

} // namespace krgui
