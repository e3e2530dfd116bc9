#pragma once
// The ground, the lines and the numbers of a plot, and where in it a value lies. The curves are left to who paints
// them.

#include <QFontMetricsF>
#include <QPalette>
#include <QPointF>
#include <QRectF>
#include <QString>

#include <vector>

class QPainter;
class QWidget;

namespace krviewer {

/// One direction of a plot.
struct PlotAxis {
  double low = 0;
  double high = 1;
  QString unit = {}; ///< Written behind the greatest number; may be empty.
  /// Values with texts of their own where the usual ticks will not do.
  struct Tick {
    double value;
    QString text;
  };
  std::vector<Tick> ticks = {};
};

/// The plot of one painting. Small plots have no numbers, so that the curve has the room.
///
/// Thread: user interface.
class PlotFrame {
public:
  /// Lays a plot out over a widget, with its font.
  PlotFrame(const QWidget& aWidget, const PlotAxis& aAcross, const PlotAxis& aUp);

  /// Paints ground, lines and numbers.
  void Paint(QPainter& aPainter) const;

  /// Where curves are painted.
  const QRectF& GetArea() const { return mArea; }
  double MapAcross(double aValue) const;
  double MapUp(double aValue) const;
  QPointF Map(double aAcross, double aUp) const { return {MapAcross(aAcross), MapUp(aUp)}; }
  /// The value across at a place of the widget.
  double FindAcross(double aPlace) const;

private:
  void AddTicks(PlotAxis& aAxis, double aRoom, double aEach) const;
  void PaintAcross(QPainter& aPainter) const;
  void PaintUp(QPainter& aPainter) const;

  QPalette mPalette;
  QFontMetricsF mMetrics;
  QRectF mBounds;
  PlotAxis mAcross;
  PlotAxis mUp;
  QRectF mArea;
  bool mHasNumbers = false;
};

/// Paints a sentence in the middle of a plot that has nothing else to show. Wrapped, and never as markup.
void PaintPlotText(QPainter& aPainter, const QWidget& aWidget, const QString& aText);

} // namespace krviewer
