#pragma once
// The boundary between the browser's grid and its description, as what the user drags. How far it goes is left to
// logic/browser/browserlayout.h, where it lies to the window's controls.

#include <QPointer>
#include <QWidget>

#include <functional>
#include <optional>

namespace krgui {

/// Lies over the boundary, invisible, and takes the presses of the left button that are for it; all else goes to what
/// lies beneath. By keyboard the arrow keys move it once it has the focus.
///
/// Thread: user interface. Ownership: a widget, which belongs to its parent.
class BrowserSplitter : public QWidget {
  Q_OBJECT

public:
  struct Callbacks {
    /// Whether a press at this height of the parent takes the boundary.
    std::function<bool(int aY)> takes;
    /// The boundary is to be at this height of the parent.
    std::function<void(int aY)> moveTo;
    /// The keyboard is done with it.
    std::function<void()> leave;
  };

  BrowserSplitter(QWidget* aParent, Callbacks aCallbacks);

  /// Asks nobody any more: whoever was asked ends before it.
  void Withdraw() { mCallbacks = {}; }

  /// Lies down on a boundary at this height of the parent.
  void Place(int aLeft, int aWidth, int aY);

protected:
  void mousePressEvent(QMouseEvent* aEvent) override;
  void mouseMoveEvent(QMouseEvent* aEvent) override;
  void mouseReleaseEvent(QMouseEvent* aEvent) override;
  void mouseDoubleClickEvent(QMouseEvent* aEvent) override;
  void contextMenuEvent(QContextMenuEvent* aEvent) override;
  void wheelEvent(QWheelEvent* aEvent) override;
  void keyPressEvent(QKeyEvent* aEvent) override;
  void focusInEvent(QFocusEvent* aEvent) override;
  void focusOutEvent(QFocusEvent* aEvent) override;
  void paintEvent(QPaintEvent* aEvent) override;

private:
  /// The control under a point; null where there is none.
  QWidget* FindBeneath(const QPoint& aPoint);
  /// The same event for who was pressed.
  void PassOn(QMouseEvent& aEvent);

  Callbacks mCallbacks;
  int mBoundary = 0;
  std::optional<int> mGrip;   ///< How far beside the boundary it was pressed; nothing while it is not dragged.
  QPointer<QWidget> mPressed; ///< What lies beneath and was pressed by another button.
};

} // namespace krgui
