#include "display/displaypainter.h"

#include "display/overlayfont.h"

#include <QPainter>

namespace krgui {

namespace {

QColor ToColor(ColorRef aColor) {
  return {GetRed(aColor), GetGreen(aColor), GetBlue(aColor)};
}

QRect ToRect(const PixelRect& aRect) {
  return {aRect.left, aRect.top, aRect.GetWidth(), aRect.GetHeight()};
}

} // namespace

void DisplayPainter::Prepare(const DisplayStyle& aStyle, double aPixelRatio) {
  const int size = aStyle.overlaySize;
  if (size != mFontSize || aPixelRatio != mPixelRatio)
    mFont = MakeOverlayFont(size, aPixelRatio);
  mFontSize = size;
  mPixelRatio = aPixelRatio;
  mBackground = aStyle.backgroundColor;
  mOverlayColor = aStyle.overlayColor;
  mOffsetX = aStyle.overlayOffsetX * aPixelRatio;
  mOffsetY = aStyle.overlayOffsetY * aPixelRatio;
}

void DisplayPainter::Draw(QPainter& aPainter, const DisplayContent::Frame& aFrame) {
  const QColor background = ToColor(mBackground);
  if (!aFrame.image) {
    aPainter.fillRect(ToRect(aFrame.view.clientRect), background);
    return;
  }
  const Bands bands = ComputeBands(aFrame.view);
  for (int i = 0; i < bands.count; ++i)
    aPainter.fillRect(ToRect(bands.rects[i]), background);
  DrawImage(aPainter, *aFrame.image, aFrame.view);
  if (!aFrame.overlayText.IsEmpty())
    DrawOverlay(aPainter, aFrame);
}

void DisplayPainter::DrawImage(QPainter& aPainter, const IKrImage& aImage, const ViewArea& aView) {
  if (aView.destinationRect.IsEmpty() || aView.sourceRect.IsEmpty())
    return;
  const QRect destination = ToRect(aView.destinationRect);
  // Opaque: what a camera sends as alpha is no transparency of the window.
  if (mScaled.size() != destination.size())
    mScaled = QImage(destination.size(), QImage::Format_RGB32);
  if (mScaled.isNull())
    return; // Not enough memory; the next frame tries again.
  mScaler.Scale({reinterpret_cast<const std::uint32_t*>(aImage.GetDataPointer()), aImage.GetWidth()}, aView.sourceRect,
                {reinterpret_cast<std::uint32_t*>(mScaled.bits()), static_cast<std::size_t>(mScaled.width())},
                mScaled.width(), mScaled.height());
  aPainter.drawImage(destination.topLeft(), mScaled);
}

void DisplayPainter::DrawOverlay(QPainter& aPainter, const DisplayContent::Frame& aFrame) const {
  const PixelRect& client = aFrame.view.clientRect;
  const PixelRect& image = aFrame.view.destinationRect;
  const QRectF textRect(QPointF(image.left + mOffsetX, image.top + mOffsetY),
                        QPointF(client.GetWidth(), client.GetHeight()));
  if (textRect.width() <= 0 || textRect.height() <= 0)
    return;
  QString text = QString::fromUtf8(aFrame.overlayText.CStr());
  text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
  aPainter.setFont(mFont);
  aPainter.setPen(ToColor(mOverlayColor));
  aPainter.setClipRect(textRect);
  aPainter.drawText(textRect, Qt::AlignLeft | Qt::AlignTop, text);
  aPainter.setClipping(false);
}

} // namespace krgui
