#pragma once
// The numbers of a region that is drawn, to be typed, with its buttons and a word on mouse and keys. The region itself
// is the editor's.

#include "region/regionrules.h"

#include <QWidget>

#include <array>

class QDoubleSpinBox;
class QHBoxLayout;
class QPushButton;

namespace krviewer {

/// Thread: user interface. It belongs above or below the picture, and is there while a region is drawn.
class RegionBar : public QWidget {
  Q_OBJECT

public:
  explicit RegionBar(QWidget* aParent = nullptr);

  /// Shows a region and what may be typed.
  void Show(const Region& aRegion, const RegionLimits& aLimits);
  /// While the camera takes a region nothing can be changed.
  void SetBusy(bool aIsBusy);

Q_SIGNALS:
  /// Numbers were typed.
  void RegionTyped(const krviewer::Region& aWanted);
  void ApplyWanted();
  void FullFrameWanted();
  void CancelWanted();

protected:
  void keyPressEvent(QKeyEvent* aEvent) override;

private:
  QDoubleSpinBox* AddNumber(const QString& aLabel, const QString& aName);
  QPushButton* AddButton(QHBoxLayout& aRow, const QString& aText, void (RegionBar::*aWanted)());
  void Tell();

  /// X, Y, width, height, each a whole number of up to 48 bits; owned by Qt.
  std::array<QDoubleSpinBox*, 4> mNumbers{};
};

} // namespace krviewer
