#pragma once
// The boundary between the grid's two columns: where it is, and moving it by mouse and keyboard. What is to be done
// when it has moved is left to the grid.

#include <QPointer>
#include <QWidget>

#include <functional>

class QEvent;
class QMouseEvent;

namespace krgui {

/// Thread: user interface. Ownership: borrows the viewport whose mouse it follows.
class ColumnBoundary {
public:
  /// aOnMove is called after each change of the width.
  ColumnBoundary(QWidget& aViewport, std::function<void()> aOnMove);

  int GetWidth() const { return mWidth; }
  bool IsDragging() const { return mIsDragging; }
  /// Each takes the mouse at the distance from the row's leading edge, and is true when it was the boundary's.
  bool TakePress(const QMouseEvent& aEvent, int aX);
  bool TakeMove(const QMouseEvent& aEvent, int aX);
  bool TakeRelease(const QMouseEvent& aEvent);
  /// Moves it by one step of the keyboard, from the row's leading edge or to it.
  void Step(bool aIsOutward);
  /// An event of the viewport or the grid after which the mouse may be another's ends a drag.
  void NoteEvent(const QEvent& aEvent);
  void Stop();

private:
  void Move(int aX);
  void ShowCursor(bool aIsInBand);

  const QPointer<QWidget> mViewport;
  const std::function<void()> mOnMove;
  int mWidth;
  bool mIsDragging = false;
  bool mShowsCursor = false;
};

} // namespace krgui
