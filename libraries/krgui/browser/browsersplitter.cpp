#include "browser/browsersplitter.h"

#include "logic/browser/browserlayout.h"

#include <QAccessibleWidget>
#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <utility>

namespace krgui {

namespace {

constexpr int kKeyStep = 10;

/// For assistive technology; to the toolkit it is but a widget.
QAccessibleInterface* MakeAccessible(const QString&, QObject* aObject) {
  auto* splitter = qobject_cast<BrowserSplitter*>(aObject);
  return splitter != nullptr ? new QAccessibleWidget(splitter, QAccessible::Splitter) : nullptr;
}

void InstallAccessible() {
  static const bool isInstalled = [] {
    QAccessible::installFactory(MakeAccessible);
    return true;
  }();
  (void)isInstalled;
}

} // namespace

BrowserSplitter::BrowserSplitter(QWidget* aParent, Callbacks aCallbacks)
    : QWidget(aParent), mCallbacks(std::move(aCallbacks)) {
  InstallAccessible();
  setObjectName(QStringLiteral("splitter"));
  setAccessibleName(QStringLiteral("Boundary between features and description"));
  setAccessibleDescription(QStringLiteral("The arrow keys move it."));
  setCursor(Qt::SizeVerCursor);
}

void BrowserSplitter::Place(int aLeft, int aWidth, int aY) {
  mBoundary = aY;
  setGeometry(aLeft, aY - kSplitterReach, aWidth, 2 * kSplitterReach + 1);
}

QWidget* BrowserSplitter::FindBeneath(const QPoint& aPoint) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
  QWidget* beneath = parentWidget()->childAt(mapToParent(aPoint));
  setAttribute(Qt::WA_TransparentForMouseEvents, false);
  return beneath;
}

void BrowserSplitter::PassOn(QMouseEvent& aEvent) {
  if (!mPressed)
    return aEvent.ignore();
  QMouseEvent event(aEvent.type(), mPressed->mapFromGlobal(aEvent.globalPosition()), aEvent.globalPosition(),
                    aEvent.button(), aEvent.buttons(), aEvent.modifiers(), aEvent.pointingDevice());
  QApplication::sendEvent(mPressed, &event);
}

void BrowserSplitter::mousePressEvent(QMouseEvent* aEvent) {
  const int y = mapToParent(aEvent->pos()).y();
  if (aEvent->button() == Qt::LeftButton && mCallbacks.takes && mCallbacks.takes(y)) {
    mGrip = y - mBoundary;
    return;
  }
  mPressed = FindBeneath(aEvent->pos());
  PassOn(*aEvent);
}

void BrowserSplitter::mouseMoveEvent(QMouseEvent* aEvent) {
  if (mGrip && mCallbacks.moveTo)
    mCallbacks.moveTo(mapToParent(aEvent->pos()).y() - *mGrip);
  else
    PassOn(*aEvent);
}

void BrowserSplitter::mouseReleaseEvent(QMouseEvent* aEvent) {
  if (aEvent->button() == Qt::LeftButton)
    mGrip.reset();
  else
    PassOn(*aEvent);
}

void BrowserSplitter::mouseDoubleClickEvent(QMouseEvent* aEvent) {
  mousePressEvent(aEvent);
}

/// Its own message comes after the press, so who was pressed need not be there any more.
void BrowserSplitter::contextMenuEvent(QContextMenuEvent* aEvent) {
  QWidget* beneath = FindBeneath(aEvent->pos());
  if (beneath == nullptr || aEvent->reason() != QContextMenuEvent::Mouse)
    return aEvent->ignore();
  QContextMenuEvent event(aEvent->reason(), beneath->mapFromGlobal(aEvent->globalPos()), aEvent->globalPos(),
                          aEvent->modifiers());
  QApplication::sendEvent(beneath, &event);
}

void BrowserSplitter::wheelEvent(QWheelEvent* aEvent) {
  QWidget* beneath = FindBeneath(aEvent->position().toPoint());
  if (beneath == nullptr)
    return aEvent->ignore();
  QWheelEvent event(beneath->mapFromGlobal(aEvent->globalPosition()), aEvent->globalPosition(), aEvent->pixelDelta(),
                    aEvent->angleDelta(), aEvent->buttons(), aEvent->modifiers(), aEvent->phase(), aEvent->inverted(),
                    aEvent->source(), aEvent->pointingDevice());
  QApplication::sendEvent(beneath, &event);
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
