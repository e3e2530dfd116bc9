#include "region/regionoutline.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace krviewer {

namespace {

constexpr int kLineWidth = 3; // Black, white, black: seen on every picture.

int Round(double aValue) {
  constexpr double kFarAway = 1e6; // Of what is zoomed out of all sight only that it is outside matters.
  return static_cast<int>(std::lround(std::clamp(aValue, -kFarAway, kFarAway)));
}

} // namespace

RegionOutline::RegionOutline(QWidget& aPicture) : QWidget(&aPicture) {
  setObjectName(QStringLiteral("regionOutline"));
  setAccessibleName(tr("Region of interest"));
  setMouseTracking(true);
  // What is not native would be beneath a picture that is.
  if (aPicture.internalWinId() != 0)
    setAttribute(Qt::WA_NativeWindow);
}

int RegionOutline::GetReach() const {
  return std::max(fontMetrics().height() / 3, kLineWidth);
}

void RegionOutline::Show(const RegionFrame& aFrame, const QSize& aView, const QString& aText) {
  if (aFrame == mFrame && aView == size() && aText == mText && isVisible())
    return;
  mFrame = aFrame;
  mText = aText;
  setAccessibleDescription(aText);
  resize(aView);
  UpdateShape();
  raise();
  show();
  update();
}

QRect RegionOutline::GetFrameRect() const {
  const QPoint topLeft(Round(mFrame.left), Round(mFrame.top));
  const QPoint bottomRight(Round(mFrame.right), Round(mFrame.bottom));
  return {topLeft, QSize(std::max(bottomRight.x() - topLeft.x(), kLineWidth),
                         std::max(bottomRight.y() - topLeft.y(), kLineWidth))};
}

QList<QRect> RegionOutline::GetHandles() const {
  const QRect frame = GetFrameRect();
  const int reach = GetReach();
  const QPoint middle = frame.center();
  QList<QRect> handles;
  for (const int x : {frame.left(), middle.x(), frame.right()})
    for (const int y : {frame.top(), middle.y(), frame.bottom()})
      if (QPoint(x, y) != middle)
        handles << QRect(x - reach, y - reach, 2 * reach + 1, 2 * reach + 1);
  return handles;
}

// Below the frame, else above it, else inside; always in the view.
QRect RegionOutline::GetPlate() const {
  const int margin = GetReach();
  const QSize text = fontMetrics().size(Qt::TextSingleLine, mText);
  QRect plate(QPoint(0, 0), text + QSize(2 * margin, margin));
  const QRect frame = GetFrameRect();
  const int below = frame.bottom() + 2 * margin;
  const int above = frame.top() - 2 * margin - plate.height();
  const int inside = frame.bottom() - 2 * margin - plate.height();
  const bool isRoomBelow = below + plate.height() <= height();
  const int top = isRoomBelow ? below : above >= 0 ? above : inside;
  plate.moveTo(std::clamp(frame.left() + 2 * margin, 0, std::max(width() - plate.width(), 0)),
               std::clamp(top, 0, std::max(height() - plate.height(), 0)));
  return plate;
}

void RegionOutline::UpdateShape() {
  const QRect frame = GetFrameRect();
  QRegion shape =
      QRegion(frame) - QRegion(frame.adjusted(kLineWidth, kLineWidth, -kLineWidth, -kLineWidth)) + GetPlate();
  for (const QRect& handle : GetHandles())
    shape += handle;
  setMask(shape);
}

void RegionOutline::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), Qt::black); // Of the line and the handles, what is not white.
  painter.fillRect(GetFrameRect().adjusted(1, 1, -1, -1), Qt::white);
  painter.fillRect(GetFrameRect().adjusted(2, 2, -2, -2), Qt::black);
  for (const QRect& handle : GetHandles())
    painter.fillRect(handle.adjusted(1, 1, -1, -1), Qt::white);
  const QRect plate = GetPlate();
  painter.fillRect(plate, palette().color(QPalette::Window));
  painter.setPen(palette().color(QPalette::WindowText));
  painter.drawText(plate, Qt::AlignCenter | Qt::TextSingleLine, mText);
}

} // namespace krviewer
