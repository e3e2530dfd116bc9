#include "logic/display/framerenderer.h"

#include <algorithm>
#include <cstring>

namespace krgui {

namespace {

constexpr std::uint32_t kOpaque = 0xFF000000;

PixelRect Intersect(const PixelRect& aRect, const Canvas& aCanvas) {
  return {std::max(aRect.left, 0), std::max(aRect.top, 0), std::min(aRect.right, aCanvas.width),
          std::min(aRect.bottom, aCanvas.height)};
}

/// Whether a row that is drawn is a line as the conversion writes it.
bool IsAsConverted(const PixelRect& aCopy, const PixelRect& aWhole, const PixelRect& aDrawn,
                   const KrLineConversion& aImage) {
  const auto lineWidth = static_cast<std::int32_t>(aImage.GetWidth());
  return aCopy.GetWidth() == lineWidth && aWhole.GetWidth() == lineWidth && aDrawn.GetWidth() == lineWidth &&
         !aImage.HasAlpha();
}

} // namespace

void FrameRenderer::Fill(const Canvas& aCanvas, const PixelRect& aRect, std::uint32_t aColor) {
  const PixelRect rect = Intersect(aRect, aCanvas);
  if (rect.IsEmpty())
    return;
  for (std::int32_t y = rect.top; y < rect.bottom; ++y)
    std::fill_n(aCanvas.plane.GetRow(y) + rect.left, rect.GetWidth(), aColor);
}

void FrameRenderer::DrawBands(const Canvas& aCanvas, const ViewArea& aView, std::uint32_t aColor) {
  const Bands bands = ComputeBands(aView);
  for (int band = 0; band < bands.count; ++band)
    Fill(aCanvas, bands.rects[band], aColor);
}

void FrameRenderer::DrawImage(const Canvas& aCanvas, const ViewArea& aView, const KrLineConversion& aImage) {
  const PixelRect& whole = aView.destinationRect;
  const PixelRect copy = aView.GetCopyRect();
  const PixelRect drawn = Intersect(whole, aCanvas);
  const bool isOfView = aImage.GetWidth() == aView.imageWidth && aImage.GetHeight() == aView.imageHeight;
  if (copy.IsEmpty() || drawn.IsEmpty() || !isOfView)
    return;
  mScaler.PrepareColumns({copy.left, copy.right, whole.GetWidth(), drawn.left - whole.left, drawn.GetWidth()});
  mRow.resize(aImage.GetWidth());

  const bool isAsConverted = IsAsConverted(copy, whole, drawn, aImage);

  std::int32_t lastLine = -1;
  for (std::int32_t y = drawn.top; y < drawn.bottom; ++y) {
    const std::int32_t line = copy.top + FindNearestSource(y - whole.top, copy.GetHeight(), whole.GetHeight());
    std::uint32_t* destination = aCanvas.plane.GetRow(y) + drawn.left;
    if (line == lastLine)
      std::memcpy(destination, aCanvas.plane.GetRow(y - 1) + drawn.left,
                  static_cast<std::size_t>(drawn.GetWidth()) * sizeof(std::uint32_t));
    else if (isAsConverted)
      aImage.ConvertLine(static_cast<std::uint32_t>(line), reinterpret_cast<std::uint8_t*>(destination));
    else
      mScaler.ScaleRow(GetLine(aImage, static_cast<std::uint32_t>(line)), destination, kOpaque);
    lastLine = line;
  }
}

const std::uint32_t* FrameRenderer::GetLine(const KrLineConversion& aImage, std::uint32_t aLine) {
  const std::uint8_t* found = aImage.FindLine(aLine);
  if (found && reinterpret_cast<std::uintptr_t>(found) % alignof(std::uint32_t) == 0)
    return reinterpret_cast<const std::uint32_t*>(found);
  aImage.ConvertLine(aLine, reinterpret_cast<std::uint8_t*>(mRow.data()));
  return mRow.data();
}

} // namespace krgui
