#include "platform/cmemdc.h"

#include <QPagedPaintDevice>
#include <QPainter>

namespace krgui {

namespace {

/// A target that has no pixels to copy to.
bool IsPrinting(const QPaintDevice& aDevice) {
  return dynamic_cast<const QPagedPaintDevice*>(&aDevice) != nullptr || aDevice.devType() == QInternal::Printer ||
         aDevice.devType() == QInternal::Picture;
}

QRect GetDeviceRect(const QPaintDevice& aDevice) {
  const qreal ratio = aDevice.devicePixelRatioF();
  // Widgets and pixmaps alike: their width is in device-independent and in device pixels, respectively.
  const bool isWidget = aDevice.devType() == QInternal::Widget;
  return isWidget ? QRectF(0, 0, aDevice.width() * ratio, aDevice.height() * ratio).toAlignedRect()
                  : QRect(0, 0, aDevice.width(), aDevice.height());
}

/// From logical units to device-independent pixels of the target's device; the toolkit's own goes on to its pixels.
QTransform GetTransform(const QPainter& aTarget) {
  const qreal ratio = aTarget.device()->devicePixelRatioF();
  return aTarget.combinedTransform() * QTransform::fromScale(1 / ratio, 1 / ratio);
}

/// The clip box in logical units; the whole device where nothing clips.
QRect GetClipBox(const QPainter& aTarget) {
  if (aTarget.hasClipping())
    return aTarget.clipBoundingRect().toAlignedRect();
  const qreal ratio = aTarget.device()->devicePixelRatioF();
  const QRect pixels = GetDeviceRect(*aTarget.device());
  const QRectF points(0, 0, pixels.width() / ratio, pixels.height() / ratio);
  return GetTransform(aTarget).inverted().mapRect(points).toAlignedRect();
}

} // namespace

CMemDC::CMemDC(QPainter& aTarget, std::optional<QRect> aRect)
    : mTarget(aTarget), mRect(aRect ? *aRect : GetClipBox(aTarget)),
      mIsDrawingIntoMemory(!IsPrinting(*aTarget.device())) {
  if (mIsDrawingIntoMemory)
    Begin();
}

CMemDC::~CMemDC() {
  if (!mIsDrawingIntoMemory)
    return;
  mPainter.reset();
  mTarget.save();
  mTarget.setClipRect(mRect, Qt::IntersectClip);
  mTarget.resetTransform();
  mTarget.setOpacity(1.0);
  mTarget.setCompositionMode(QPainter::CompositionMode_SourceOver);
  mTarget.drawPixmap(mOrigin, mBitmap);
  mTarget.restore();
}

QPainter& CMemDC::GetPainter() {
  return mPainter ? *mPainter : mTarget;
}

void CMemDC::Begin() {
  const QPaintDevice& device = *mTarget.device();
  const qreal ratio = device.devicePixelRatioF();
  const QTransform transform = GetTransform(mTarget);
  const QRectF points = transform.mapRect(QRectF(mRect));
  const QRect pixels = QRectF(points.topLeft() * ratio, points.size() * ratio).toAlignedRect() & GetDeviceRect(device);
  mOrigin = QPointF(pixels.topLeft()) / ratio;
  // A painter needs something to draw on, even where nothing is seen.
  mBitmap = QPixmap(pixels.size().expandedTo({1, 1}));
  mBitmap.setDevicePixelRatio(ratio);
  mBitmap.fill(Qt::transparent);
  mPainter = std::make_unique<QPainter>(&mBitmap);
  mPainter->setTransform(transform * QTransform::fromTranslate(-mOrigin.x(), -mOrigin.y()));
  mPainter->setFont(mTarget.font());
  mPainter->setPen(mTarget.pen());
  mPainter->setBrush(mTarget.brush());
  mPainter->setBackground(mTarget.background());
  mPainter->setLayoutDirection(mTarget.layoutDirection());
  mPainter->setRenderHints(mTarget.renderHints());
}

} // namespace krgui
