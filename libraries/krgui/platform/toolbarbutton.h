#pragma once
// A flat button with a picture of 16 x 16, as in the browser's tool row.

#include <QAbstractButton>

#include <cstdint>

namespace krgui {

/// A button without relief: it is tinted under the mouse and framed while it is checked. The mouse
/// does not redraw it, wherever it goes: the tint follows when the owner redraws the button. Its accessible name is its
/// tooltip unless it is given one.
///
/// Thread: user interface. Ownership: a widget, which belongs to its parent.
class ToolBarButton : public QAbstractButton {
public:
  /// Pictures of res/bitmaps.h; a disabled one of 0 or less is none.
  ToolBarButton(std::uint16_t aBitmapID, std::int32_t aDisabledBitmapID, QWidget* aParent);

  /// 1 is checked.
  virtual void SetChecked(std::uint32_t aIsChecked);
  virtual std::uint32_t GetChecked() const;

  /// Draws the button moved by an offset.
  void Draw(QPainter& aPainter, const QPoint& aOffset) const;
  /// Draws the button on the screen now.
  void RedrawNow();

  QSize sizeHint() const override;

protected:
  bool event(QEvent* aEvent) override;
  void mouseMoveEvent(QMouseEvent* aEvent) override;
  void focusInEvent(QFocusEvent* aEvent) override;
  void paintEvent(QPaintEvent* aEvent) override;

private:
  void DrawPicture(QPainter& aPainter, const QRect& aRect) const;

  const std::uint16_t mBitmapID;
  const std::int32_t mDisabledBitmapID;
  std::uint32_t mIsChecked = 0;
  bool mIsKeyboardFocus = true; ///< The mouse did not bring the focus.
};

} // namespace krgui
