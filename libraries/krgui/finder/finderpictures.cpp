#include "finder/finderpictures.h"

#include "finder/pictureshapes.h"
#include "logic/finder/findericon.h"

#include <QIconEngine>
#include <QPainter>
#include <QPixmap>

#include <array>
#include <functional>

namespace krgui {

namespace {

constexpr int kGrid = 16;

/// One place of the strip.
struct StripEntry {
  PictureShape shape;
  PictureBadge badge = PictureBadge::None;
  bool isEnabled = true;
  bool hasDriver = false;
};

using Shape = PictureShape;
using Badge = PictureBadge;

// In the order of FinderIcon; between its places lie relatives that no node has today.
constexpr std::array<StripEntry, kFinderIconCount> kStrip = {{
    {Shape::TolvanCamera},
    {Shape::GEVCamera},
    {Shape::TolvanCamera, Badge::Warning},
    {Shape::GEVCamera, Badge::Warning},
    {Shape::GEVCamera, Badge::Question},
    {Shape::Adapter},
    {Shape::Adapter, Badge::Waiting},
    {Shape::Adapter, Badge::None, true, true},
    {Shape::Adapter, Badge::Error},
    {Shape::Adapter, Badge::Warning},
    {Shape::Adapter, Badge::Error, true, true},
    {Shape::Adapter, Badge::Warning, true, true},
    {Shape::Adapter, Badge::None, false},
    {Shape::Computer},
    {Shape::Network},
    {Shape::Network, Badge::Warning},
    {Shape::Network, Badge::Error},
    {Shape::USB},
    {Shape::USBHub},
    {Shape::USB, Badge::Warning},
    {Shape::USB, Badge::Error},
    {Shape::U3VCamera},
    {Shape::U3VCamera, Badge::Waiting},
    {Shape::U3VCamera, Badge::Warning},
    {Shape::U3VCamera, Badge::Error},
    {Shape::GEVCamera, Badge::None, false},
    {Shape::TolvanCamera, Badge::None, false},
    {Shape::U3VCamera, Badge::None, false},
    {Shape::USB, Badge::None, false},
}};

void PaintEntry(QPainter& aPainter, const StripEntry& aEntry, QIcon::Mode aMode) {
  const PictureTone tone = aMode == QIcon::Selected ? PictureTone::Selected : PictureTone::Normal;
  PaintPictureShape(aPainter, aEntry.shape, aEntry.isEnabled ? tone : PictureTone::Faded);
  if (aEntry.hasDriver)
    PaintDriverMark(aPainter);
  PaintPictureBadge(aPainter, aEntry.badge);
}

using PaintPicture = std::function<void(QPainter& aPainter, QIcon::Mode aMode)>;

/// An icon that is drawn anew at every size, so that it is sharp on every screen.
class PictureEngine : public QIconEngine {
public:
  explicit PictureEngine(PaintPicture aPaint) : mPaint(std::move(aPaint)) {}

  void paint(QPainter* aPainter, const QRect& aRect, QIcon::Mode aMode, QIcon::State aState) override {
    const qreal ratio = aPainter->device()->devicePixelRatioF();
    aPainter->drawPixmap(aRect, scaledPixmap(aRect.size() * ratio, aMode, aState, ratio));
  }

  QPixmap pixmap(const QSize& aSize, QIcon::Mode aMode, QIcon::State aState) override {
    return scaledPixmap(aSize, aMode, aState, 1.0);
  }

  /// aSize is in pixels of the screen.
  QPixmap scaledPixmap(const QSize& aSize, QIcon::Mode aMode, QIcon::State, qreal aScale) override {
    QPixmap pixmap(aSize);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    const int side = qMin(aSize.width(), aSize.height());
    painter.translate((aSize.width() - side) / 2, (aSize.height() - side) / 2);
    painter.scale(static_cast<qreal>(side) / kGrid, static_cast<qreal>(side) / kGrid);
    painter.setPen(Qt::NoPen);
    mPaint(painter, aMode);
    painter.end();
    pixmap.setDevicePixelRatio(aScale);
    return pixmap;
  }

  QIconEngine* clone() const override { return new PictureEngine(mPaint); }

private:
  const PaintPicture mPaint;
};

} // namespace

QIcon GetFinderPicture(int aIndex) {
  if (aIndex < 0 || aIndex >= kFinderIconCount)
    return {};
  const StripEntry& entry = kStrip[static_cast<std::size_t>(aIndex)];
  return QIcon(
      new PictureEngine([&entry](QPainter& aPainter, QIcon::Mode aMode) { PaintEntry(aPainter, entry, aMode); }));
}

QIcon GetErrorPicture() {
  return QIcon(new PictureEngine([](QPainter& aPainter, QIcon::Mode) { PaintErrorMark(aPainter); }));
}

} // namespace krgui
