#include "browser/browsersplitter.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <utility>

namespace krgui {

namespace {

/// How far beside the boundary a press still takes it.
constexpr int kReach = 3;
constexpr int kKeyStep = 10;

} // namespace

BrowserSplitter::BrowserSplitter(QWidget* aParent, Callbacks aCallbacks)
    : QWidget(aParent), mCallbacks(std::move(aCallbacks)) {
  setObjectName(QStringLiteral("splitter"));
  setAccessibleName(QStringLiteral("Boundary between features and description"));
  setAccessibleDescription(QStringLiteral("The arrow keys move it."));
  setCursor(Qt::SizeVerCursor);
}

void BrowserSplitter::Place(int aLeft, int aWidth, int aY) {
  mBoundary = aY;
  setGeometry(aLeft, aY - kReach, aWidth, 2 * kReach + 1);
}

void BrowserSplitter::mousePressEvent(QMouseEvent* aEvent) {
  mIsDragging =
      aEvent->button() == Qt::LeftButton && mCallbacks.takes && mCallbacks.takes(mapToParent(aEvent->pos()).y());
}

void BrowserSplitter::mouseMoveEvent(QMouseEvent* aEvent) {
  if (mIsDragging && mCallbacks.moveTo)
    mCallbacks.moveTo(mapToParent(aEvent->pos()).y());
}

void BrowserSplitter::mouseReleaseEvent(QMouseEvent*) {
  mIsDragging = false;
}

void BrowserSplitter::keyPressEvent(QKeyEvent* aEvent) {
  if (!mCallbacks.moveTo)
    return;
  switch (aEvent->key()) {
  case Qt::Key_Up:
    return mCallbacks.moveTo(mBoundary - kKeyStep);
  case Qt::Key_Down:
    return mCallbacks.moveTo(mBoundary + kKeyStep);
  case Qt::Key_Escape:
  case Qt::Key_Return:
  case Qt::Key_Enter:
    return mCallbacks.leave();
  default:
    QWidget::keyPressEvent(aEvent);
  }
}

void BrowserSplitter::focusInEvent(QFocusEvent*) {
  update();
}

void BrowserSplitter::focusOutEvent(QFocusEvent*) {
  update();
}

void BrowserSplitter::paintEvent(QPaintEvent*) {
  if (!hasFocus())
    return;
  QPainter painter(this);
  painter.fillRect(rect().adjusted(0, 2, 0, -2), palette().color(QPalette::Highlight));
}

} // namespace krgui
