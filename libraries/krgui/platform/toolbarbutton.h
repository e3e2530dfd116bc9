#pragma once
// A flat button with a picture of 16 x 16, as in the browser's tool row.

#include <QAbstractButton>

#include <cstdint>

namespace krgui {

/// Thread: user interface. Ownership: a widget, which belongs to its parent.
class ToolBarButton : public QAbstractButton {
public:
  /// Pictures of res/bitmaps.h; a disabled one of 0 or less is none.
  ToolBarButton(std::uint16_t aBitmapID, std::int32_t aDisabledBitmapID, QWidget* aParent);

  virtual void SetChecked(std::uint32_t aIsChecked);
  virtual std::uint32_t GetChecked() const;

  /// Draws the button moved by an offset.
  void Draw(QPainter& aPainter, const QPoint& aOffset) const;
  /// Draws the button on the screen now.
  void RedrawNow();

protected:
  void paintEvent(QPaintEvent* aEvent) override;

private:
  const std::uint16_t mBitmapID;
  const std::int32_t mDisabledBitmapID;
  std::uint32_t mIsChecked = 0;
};

} // namespace krgui
