#include "display/frametexts.h"

#include "display/overlayfont.h"
#include "logic/display/displaytexts.h"

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace krgui {

namespace {

/// Behind the cursor's line, so that it can be read on any image.
constexpr QColor kPlateColor = QColor(0, 0, 0, 190);
constexpr double kPlateMargin = 4.0; ///< Device-independent pixels.
/// Of the image, whichever way the application's windows are laid out.
constexpr int kLeft = Qt::AlignLeft | Qt::AlignAbsolute;

/// A picture on the canvas' own memory.
QImage WrapCanvas(const Canvas& aCanvas) {
  return {reinterpret_cast<uchar*>(aCanvas.plane.pixels), aCanvas.width, aCanvas.height,
          static_cast<qsizetype>(aCanvas.plane.rowPixels * sizeof(std::uint32_t)), QImage::Format_RGB32};
}

/// As much of a text as a place has room for: the camera does not wait for what nobody sees. No letter is narrower than
/// a fifth of its size, no line lower than that.
QString ToText(const KrString& aText, const QSizeF& aRoom, int aPixelSize) {
  constexpr double kNarrowest = 0.2;
  const auto count = [](double aLength, double aUnit) { return static_cast<std::size_t>(aLength / aUnit) + 2; };
  return QString::fromStdString(
      CutText(aText.ToUtf8(), count(aRoom.height(), aPixelSize), count(aRoom.width(), kNarrowest * aPixelSize)));
}

PixelRect ToPixelRect(const QRectF& aRect) {
  const QRect rect = aRect.toAlignedRect();
  return {rect.left(), rect.top(), rect.left() + rect.width(), rect.top() + rect.height()};
}

PixelRect Unite(const PixelRect& aFirst, const PixelRect& aSecond) {
  if (aFirst.IsEmpty())
    return aSecond;
  if (aSecond.IsEmpty())
    return aFirst;
  return {std::min(aFirst.left, aSecond.left), std::min(aFirst.top, aSecond.top), std::max(aFirst.right, aSecond.right),
          std::max(aFirst.bottom, aSecond.bottom)};
}

PixelRect Intersect(const PixelRect& aFirst, const PixelRect& aSecond) {
  return {std::max(aFirst.left, aSecond.left), std::max(aFirst.top, aSecond.top), std::min(aFirst.right, aSecond.right),
          std::min(aFirst.bottom, aSecond.bottom)};
}

QFont MakeTextFont(const ScreenLook& aScreen) {
  QFont font(aScreen.textFamily);
  font.setPixelSize(aScreen.textPixelSize);
  return font;
}

/// Black or white, whichever stands out more, by the weights of ITU-R BT.601.
QColor FindReadableColor(std::uint32_t aBackground) {
  const QColor color(aBackground);
  const int luma = (299 * color.red() + 587 * color.green() + 114 * color.blue()) / 1000;
  return luma < 128 ? Qt::white : Qt::black;
}

} // namespace

PixelRect FrameTexts::Draw(const Canvas& aCanvas, const Frame& aFrame, const DisplayLook& aLook) {
  PixelRect drawn;
  if (!aFrame.overlayText.IsEmpty())
    drawn = DrawOverlay(aCanvas, aFrame, aLook);
  if (!aFrame.cursorText.IsEmpty())
    drawn = Unite(drawn, DrawCursorLine(aCanvas, aFrame, aLook));
  return Intersect(drawn, {0, 0, aCanvas.width, aCanvas.height});
}

PixelRect FrameTexts::DrawOverlay(const Canvas& aCanvas, const Frame& aFrame, const DisplayLook& aLook) {
  const PixelRect& client = aFrame.view.clientRect;
  const PixelRect& image = aFrame.view.destinationRect;
  const double ratio = aLook.screen.pixelRatio;
  // By whole pixels, so that letters look the same wherever they are.
  const QRectF textRect(QPointF(image.left + std::round(aLook.overlayOffsetX * ratio),
                                image.top + std::round(aLook.overlayOffsetY * ratio)),
                        QPointF(client.GetWidth(), client.GetHeight()));
  if (textRect.width() <= 0 || textRect.height() <= 0)
    return {};
  if (mPixelSize == 0 || mOverlaySize != aLook.overlaySize || mPixelRatio != ratio ||
      mLineHeight != aLook.screen.textLineHeight)
    mPixelSize = FindOverlayPixelSize(aLook.overlaySize, ratio, aLook.screen.textLineHeight);
  mOverlaySize = aLook.overlaySize;
  mPixelRatio = ratio;
  mLineHeight = aLook.screen.textLineHeight;

  QImage picture = WrapCanvas(aCanvas);
  QPainter painter(&picture);
  painter.setFont(MakeOverlayFont(mPixelSize));
  painter.setPen(QColor(aLook.overlayColor));
  painter.setClipRect(textRect);
  QRectF bounds;
  painter.drawText(textRect, kLeft | Qt::AlignTop, ToText(aFrame.overlayText, textRect.size(), mPixelSize), &bounds);
  // Letters may reach beyond what they advance by.
  const double overhang = mPixelSize;
  return ToPixelRect(bounds.adjusted(-overhang, -overhang, overhang, overhang) & textRect);
}

PixelRect FrameTexts::DrawCursorLine(const Canvas& aCanvas, const Frame& aFrame, const DisplayLook& aLook) {
  const PixelRect& view = aFrame.view.viewRect;
  QImage picture = WrapCanvas(aCanvas);
  QPainter painter(&picture);
  painter.setFont(MakeTextFont(aLook.screen));
  const QString text = ToText(aFrame.cursorText, QSizeF(view.GetWidth(), view.GetHeight()), aLook.screen.textPixelSize);
  const double margin = std::round(kPlateMargin * aLook.screen.pixelRatio);
  const QRectF bounds = painter.boundingRect(QRectF(), kLeft | Qt::AlignTop, text);
  const double height = std::ceil(bounds.height()) + margin;
  const double width = std::ceil(bounds.width()) + 2 * margin;
  const QRectF plate = QRectF(view.left, view.bottom - height, width, height) &
                       QRectF(view.left, view.top, view.GetWidth(), view.GetHeight());
  if (plate.isEmpty())
    return {};
  painter.setClipRect(plate);
  painter.fillRect(plate, kPlateColor);
  painter.setPen(Qt::white);
  painter.drawText(QRectF(view.left + margin, view.bottom - height, width, height), kLeft | Qt::AlignVCenter, text);
  return ToPixelRect(plate);
}

void FrameTexts::DrawRefusal(const Canvas& aCanvas, const Frame& aFrame, const DisplayLook& aLook) {
  const PixelRect& view = aFrame.view.viewRect;
  const double margin = std::min(view.GetWidth(), view.GetHeight()) / 12.0;
  QImage picture = WrapCanvas(aCanvas);
  QPainter painter(&picture);
  QFont font = MakeTextFont(aLook.screen);
  font.setPixelSize(aLook.screen.textPixelSize * 5 / 4); // It is all that the window has to say.
  painter.setFont(font);
  painter.setPen(FindReadableColor(aLook.backgroundColor));
  const QRectF room =
      QRectF(view.left, view.top, view.GetWidth(), view.GetHeight()).adjusted(margin, margin, -margin, -margin);
  // One line of the text takes several of the window.
  constexpr double kMostWrappings = 8;
  painter.drawText(room, Qt::AlignCenter | Qt::TextWordWrap,
                   ToText(aFrame.refusalText, QSizeF(room.width() * kMostWrappings, room.height()), font.pixelSize()));
}

} // namespace krgui
