#include "platform/nativechild.h"

#include <QEvent>
#include <QRegion>
#include <QWidget>
#include <QWindow>

#include <cmath>

namespace krgui {

NativeChild::NativeChild(QWidget& aWidget) : QObject(&aWidget), mWidget(aWidget) {
  Watch();
}

void NativeChild::Watch() {
  for (const QPointer<QWidget>& watched : mWatched) {
    if (watched) {
      watched->removeEventFilter(this);
    }
  }
  mWatched.clear();
  for (QWidget* widget = &mWidget; widget != nullptr; widget = widget->parentWidget()) {
    widget->installEventFilter(this);
    mWatched.emplace_back(widget);
    if (widget != &mWidget && (widget->isWindow() || widget->internalWinId() != 0)) {
      return;
    }
  }
}

bool NativeChild::eventFilter(QObject* aWatched, QEvent* aEvent) {
  switch (aEvent->type()) {
  case QEvent::ParentChange:
  case QEvent::WinIdChange:
    Watch();
    Follow();
    break;
  case QEvent::Move:
  case QEvent::Resize:
    // The server's word of the native window itself may be of a place that it has left since: whoever answered it by
    // moving the window would bring the former size back.
    if (aWatched == &mWidget && aEvent->spontaneous() && mWidget.internalWinId() != 0) {
      Clip();
    } else {
      Follow();
    }
    break;
  case QEvent::Show:
    Follow();
    break;
  default:
    break;
  }
  return false;
}

void NativeChild::Follow() {
  QWindow* window = mWidget.windowHandle();
  if (mWidget.internalWinId() == 0 || window == nullptr) {
    return;
  }
  const QWidget* nativeParent = mWidget.nativeParentWidget();
  // Without a parent for the moment it is nobody's, so that the former parent's end is not its own.
  QWindow* parentWindow = nativeParent == nullptr ? nullptr : nativeParent->windowHandle();
  if (window->parent() != parentWindow) {
    window->setParent(parentWindow);
    RaiseThoseAbove();
  }
  if (parentWindow == nullptr) {
    return;
  }
  if (const QPoint position = mWidget.mapTo(nativeParent, QPoint()); window->position() != position) {
    window->setPosition(position);
    // A fraction of a pixel is rounded by the place: the native window may have another size now.
    if (const double ratio = mWidget.devicePixelRatioF(); ratio != std::floor(ratio)) {
      mWidget.update();
    }
  }
  Clip();
}

/// A window that gets another parent lies above all others there.
void NativeChild::RaiseThoseAbove() {
  bool isAbove = false;
  for (const QObject* sibling : mWidget.parentWidget()->children()) {
    const auto* widget = qobject_cast<const QWidget*>(sibling);
    if (isAbove && widget != nullptr && !widget->isWindow() && widget->internalWinId() != 0) {
      widget->windowHandle()->raise();
    }
    isAbove = isAbove || sibling == &mWidget;
  }
}

void NativeChild::Clip() {
  QRect visible = mWidget.rect();
  for (const QPointer<QWidget>& ancestor : mWatched) {
    if (ancestor && ancestor != &mWidget) {
      visible &= ancestor->rect().translated(mWidget.mapFrom(ancestor, QPoint()));
    }
  }
  if (visible == mWidget.rect()) {
    if (!mWidget.mask().isEmpty()) {
      mWidget.clearMask();
    }
    return;
  }
  // An empty mask would be none.
  const QRegion region = visible.isEmpty() ? QRegion(-1, -1, 1, 1) : QRegion(visible);
  if (mWidget.mask() != region) {
    mWidget.setMask(region);
  }
}

} // namespace krgui
