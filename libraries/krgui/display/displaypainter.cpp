#include "display/displaypainter.h"

#include <QPainter>

namespace krgui {

namespace {

QColor ToColor(ColorRef aColor) {
  return {GetRed(aColor), GetGreen(aColor), GetBlue(aColor)};
}

QRect ToRect(const PixelRect& aRect) {
  return {aRect.left, aRect.top, aRect.GetWidth(), aRect.GetHeight()};
}

void DrawImage(QPainter& aPainter, const IKrImage& aImage, const ViewArea& aView) {
  if (aView.destinationRect.IsEmpty() || aView.sourceRect.IsEmpty())
    return;
  // The image is drawn as opaque: what a camera sends as alpha is no transparency of the window.
  const QImage pixels(aImage.GetDataPointer(), static_cast<int>(aImage.GetWidth()),
                      static_cast<int>(aImage.GetHeight()), static_cast<qsizetype>(aImage.GetWidth()) * 4,
                      QImage::Format_RGB32);
  aPainter.drawImage(ToRect(aView.destinationRect), pixels, ToRect(aView.sourceRect));
}

void DrawOverlay(QPainter& aPainter, const DisplayContent::Frame& aFrame, const OverlayStyle& aStyle) {
  const PixelRect& client = aFrame.view.clientRect;
  const PixelRect& image = aFrame.view.destinationRect;
  const QRectF textRect(QPointF(image.left + aStyle.offsetX, image.top + aStyle.offsetY),
                        QPointF(client.GetWidth(), client.GetHeight()));
  if (textRect.width() <= 0 || textRect.height() <= 0)
    return;
  QString text = QString::fromUtf8(aFrame.overlayText.CStr());
  text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
  aPainter.setFont(aStyle.font);
  aPainter.setPen(ToColor(aStyle.color));
  aPainter.setClipRect(textRect);
  aPainter.drawText(textRect, Qt::AlignLeft | Qt::AlignTop, text);
  aPainter.setClipping(false);
}

} // namespace

void DrawFrame(QPainter& aPainter, const DisplayContent::Frame& aFrame, ColorRef aBackground,
               const OverlayStyle& aOverlay) {
  const QColor background = ToColor(aBackground);
  if (!aFrame.image) {
    aPainter.fillRect(ToRect(aFrame.view.clientRect), background);
    return;
  }
  const Bands bands = ComputeBands(aFrame.view);
  for (int i = 0; i < bands.count; ++i)
    aPainter.fillRect(ToRect(bands.rects[i]), background);
  DrawImage(aPainter, *aFrame.image, aFrame.view);
  if (!aFrame.overlayText.IsEmpty())
    DrawOverlay(aPainter, aFrame, aOverlay);
}

} // namespace krgui
