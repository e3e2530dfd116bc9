#pragma once
// An off-screen surface that is drawn into and put onto its target at once, so that nothing flickers.

#include <QPixmap>
#include <QRect>

#include <memory>
#include <optional>

class QPainter;

namespace krgui {

/// Draws off-screen from its construction on; its destruction copies what was drawn to the same place of the target. On
/// a target that prints, drawing goes straight to it and nothing is copied.
///
/// Thread: the target's. Ownership: borrows the target, which must outlive it.
///
///     CMemDC surface(painter);
///     surface.GetPainter().fillRect(...);
class CMemDC {
public:
  /// aRect in the target's logical coordinates; without one, what the target clips to.
  explicit CMemDC(QPainter& aTarget, std::optional<QRect> aRect = std::nullopt);
  ~CMemDC();
  CMemDC(const CMemDC&) = delete;
  CMemDC& operator=(const CMemDC&) = delete;

  /// What to draw with, in the coordinates of the target.
  QPainter& GetPainter();
  bool IsDrawingIntoMemory() const { return mIsDrawingIntoMemory; }

private:
  QPixmap mBitmap;
  QPainter& mTarget;
  QRect mRect;
  bool mIsDrawingIntoMemory;
  std::unique_ptr<QPainter> mPainter; ///< Null when the target is drawn on.
};

} // namespace krgui
