#pragma once
// A region's frame over the live picture, with handles and its numbers: a window of its own in the shape of these, as
// the picture beneath is drawn by another thread. What the user does with it is left to the editor.

#include "region/regiongesture.h"

#include <QString>
#include <QWidget>

namespace krviewer {

/// Thread: user interface. Ownership: belongs to the picture's widget, which it lies on.
class RegionOutline : public QWidget {
  Q_OBJECT

public:
  explicit RegionOutline(QWidget& aPicture);

  /// Shows a frame, within so much of the picture's widget, with a text beside it.
  void Show(const RegionFrame& aFrame, const QSize& aView, const QString& aText);
  /// How far from an edge the mouse still has it, and half of a handle's size.
  int GetReach() const;

protected:
  void paintEvent(QPaintEvent* aEvent) override;

private:
  QRect GetFrameRect() const;
  QList<QRect> GetHandles() const;
  QRect GetPlate() const;
  void UpdateShape();

  RegionFrame mFrame;
  QString mText;
};

} // namespace krviewer
