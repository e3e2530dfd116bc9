#include "browser/columnboundary.h"

#include "logic/browser/rowgeometry.h"

#include <QEvent>
#include <QGuiApplication>
#include <QMouseEvent>

#include <utility>

namespace krgui {

namespace {

constexpr int kKeyStep = 10;

} // namespace

ColumnBoundary::ColumnBoundary(QWidget& aViewport, std::function<void()> aOnMove)
    : mViewport(&aViewport), mOnMove(std::move(aOnMove)), mWidth(kInitialNameColumnWidth) {}

bool ColumnBoundary::TakePress(const QMouseEvent& aEvent, int aX) {
  if (aEvent.button() != Qt::LeftButton || !IsInColumnBand(aX, mWidth))
    return mIsDragging;
  mIsDragging = true;
  return true;
}

bool ColumnBoundary::TakeMove(const QMouseEvent& aEvent, int aX) {
  if (mIsDragging && (aEvent.buttons() & Qt::LeftButton) == 0)
    mIsDragging = false; // The release went to another window.
  ShowCursor(mIsDragging || (aEvent.buttons() == Qt::NoButton && IsInColumnBand(aX, mWidth)));
  if (!mIsDragging)
    return false;
  Move(aX);
  return true;
}

void ColumnBoundary::Step(bool aIsOutward) {
  Move(aIsOutward ? mWidth + kKeyStep : mWidth - kKeyStep);
}

void ColumnBoundary::Move(int aX) {
  // The grid's width counts, with its scroll bar and frame.
  const int width = DragColumn(aX, mViewport->parentWidget()->width());
  if (width == mWidth)
    return;
  mWidth = width;
  mOnMove();
}

/// With its button held the pointer may leave: the drag has the mouse wherever it is.
void ColumnBoundary::NoteEvent(const QEvent& aEvent) {
  switch (aEvent.type()) {
  case QEvent::Leave:
    if (!mIsDragging || (QGuiApplication::mouseButtons() & Qt::LeftButton) == 0)
      Stop();
    break;
  case QEvent::UngrabMouse:
  case QEvent::WindowDeactivate:
  case QEvent::EnabledChange:
    Stop();
    break;
  default:
    break;
  }
}

bool ColumnBoundary::TakeRelease(const QMouseEvent& aEvent) {
  if (aEvent.button() != Qt::LeftButton)
    return mIsDragging;
  return std::exchange(mIsDragging, false);
}

void ColumnBoundary::Stop() {
  mIsDragging = false;
  ShowCursor(false);
}

void ColumnBoundary::ShowCursor(bool aIsInBand) {
  if (mShowsCursor == aIsInBand)
    return;
  mShowsCursor = aIsInBand;
  if (aIsInBand)
    mViewport->setCursor(Qt::SizeHorCursor);
  else
    mViewport->unsetCursor();
}

} // namespace krgui
