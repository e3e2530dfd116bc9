#include "logic/display/viewarea.h"

#include "logic/display/nearestscaler.h"

namespace krgui {

namespace {

void AddBand(Bands& aBands, const PixelRect& aRect) {
  if (!aRect.IsEmpty())
    aBands.rects[aBands.count++] = aRect;
}

} // namespace

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

std::optional<PixelPoint> FindImagePixel(const ViewArea& aView, PixelPoint aClientPoint) {
  const PixelRect& shown = aView.destinationRect;
  const PixelRect copy = aView.GetCopyRect();
  const bool isInside = aClientPoint.x >= shown.left && aClientPoint.x < shown.right && aClientPoint.y >= shown.top &&
                        aClientPoint.y < shown.bottom;
  if (copy.IsEmpty() || !isInside)
    return std::nullopt;
  return PixelPoint{
      copy.left + FindNearestSource(aClientPoint.x - shown.left, copy.GetWidth(), shown.GetWidth()),
      copy.top + FindNearestSource(aClientPoint.y - shown.top, copy.GetHeight(), shown.GetHeight()),
  };
}

std::optional<KrDisplayMapping> ComputeMapping(const ViewArea& aView, double aPixelRatio) {
  const PixelRect& shown = aView.destinationRect;
  const PixelRect copy = aView.GetCopyRect();
  if (copy.IsEmpty())
    return std::nullopt;
  KrDisplayMapping mapping;
  mapping.imageWidth = aView.imageWidth;
  mapping.imageHeight = aView.imageHeight;
  mapping.viewWidth = aView.viewRect.GetWidth() / aPixelRatio;
  mapping.viewHeight = aView.viewRect.GetHeight() / aPixelRatio;
  mapping.scaleX = shown.GetWidth() / aPixelRatio / copy.GetWidth();
  mapping.scaleY = shown.GetHeight() / aPixelRatio / copy.GetHeight();
  mapping.originX = shown.left / aPixelRatio - copy.left * mapping.scaleX;
  mapping.originY = shown.top / aPixelRatio - copy.top * mapping.scaleY;
  return mapping;
}

} // namespace krgui
