#pragma once
// An off-screen surface that is drawn into and put onto its target at once, so that nothing flickers.

#include <QPixmap>
#include <QPoint>
#include <QRect>

#include <memory>
#include <optional>

class QPainter;

namespace krgui {

/// Draws off-screen from its construction on; its destruction copies what was drawn to the same place of the target,
/// and leaves alone what was not drawn on. On a target that prints or records, drawing goes straight to it and nothing
/// is copied.
///
/// Thread: the target's. Ownership: borrows the target, which must outlive it, and must be drawn on by nothing else
/// meanwhile.
///
///     CMemDC surface(painter);
///     surface.GetPainter().fillRect(...);
class CMemDC {
public:
  /// aTarget is active. aRect in the target's logical coordinates; without one, what the target clips to.
  explicit CMemDC(QPainter& aTarget, std::optional<QRect> aRect = std::nullopt);
  ~CMemDC();
  CMemDC(const CMemDC&) = delete;
  CMemDC& operator=(const CMemDC&) = delete;

  /// What to draw with, in the coordinates of the target and with its font, pen and brush.
  QPainter& GetPainter();
  bool IsDrawingIntoMemory() const { return mIsDrawingIntoMemory; }

private:
  void Begin();

  QPixmap mBitmap;
  QPainter& mTarget;
  QRect mRect;
  bool mIsDrawingIntoMemory;
  QPointF mOrigin;                    ///< Of the bitmap on the target's device, in device-independent pixels.
  std::unique_ptr<QPainter> mPainter; ///< Null when the target is drawn on.
};

} // namespace krgui
