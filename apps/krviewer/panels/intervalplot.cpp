#include "panels/intervalplot.h"

#include "panels/graphcolours.h"
#include "panels/plotframe.h"

#include <QPainter>
#include <QPen>

#include <algorithm>
#include <iterator>

namespace krviewer {

namespace {

constexpr double kMillisecondNs = 1e6;
constexpr double kSecondNs = 1e9;
constexpr double kRoomAbove = 1.15;
constexpr double kCurveWidth = 1.5;
constexpr int kLossAlpha = 90;

} // namespace

IntervalPlot::IntervalPlot(QWidget* aParent) : Plot(aParent) {
  setObjectName(QStringLiteral("intervalPlot"));
}

void IntervalPlot::Show(IntervalView aView) {
  mView = std::move(aView);
  update();
}

QColor IntervalPlot::GetArrivalColour(const QPalette& aPalette) {
  return GetComponentColour(aPalette, 'B');
}

QColor IntervalPlot::GetCameraColour(const QPalette& aPalette) {
  return GetComponentColour(aPalette, 'G');
}

double IntervalPlot::GetSeconds(const IntervalStep& aStep) const {
  const double beginNs = static_cast<double>(aStep.index) * static_cast<double>(mView.stepNs);
  return (beginNs - static_cast<double>(mView.endNs)) / kSecondNs;
}

QString IntervalPlot::GetText() const {
  return mView.hasStarted ? QStringLiteral("No frame in this time") : QStringLiteral("No frame yet");
}

PlotFrame IntervalPlot::MakeFrame() const {
  const double greatestNs = std::max(mView.arrivals.greatestNs, mView.camera.greatestNs);
  return {*this,
          {.low = -static_cast<double>(mView.spanNs) / kSecondNs, .high = 0, .unit = QStringLiteral("s")},
          {.low = 0,
           .high = greatestNs > 0 ? greatestNs / kMillisecondNs * kRoomAbove : 1.0,
           .unit = QStringLiteral("ms")}};
}

void IntervalPlot::PaintCurves(QPainter& aPainter, const PlotFrame& aFrame) const {
  aPainter.setRenderHint(QPainter::Antialiasing);
  PaintLosses(aPainter, aFrame);
  PaintCurve(aPainter, aFrame, &IntervalStep::arrivals, GetArrivalColour(palette()));
  PaintCurve(aPainter, aFrame, &IntervalStep::camera, GetCameraColour(palette()));
}

// From the least to the greatest interval of each step, joined by their means.
void IntervalPlot::PaintCurve(QPainter& aPainter, const PlotFrame& aFrame, IntervalSummary IntervalStep::*aSummary,
                              const QColor& aColour) const {
  aPainter.setPen(QPen(aColour, kCurveWidth));
  QPolygonF means;
  for (const IntervalStep& step : mView.steps) {
    const IntervalSummary& summary = step.*aSummary;
    if (summary.count == 0)
      continue;
    const double x = GetSeconds(step);
    means += aFrame.Map(x, summary.meanNs / kMillisecondNs);
    aPainter.drawLine(aFrame.Map(x, summary.leastNs / kMillisecondNs),
                      aFrame.Map(x, summary.greatestNs / kMillisecondNs));
  }
  aPainter.drawPolyline(means);
  if (means.size() == 1)
    aPainter.drawEllipse(means.first(), 2, 2);
}

void IntervalPlot::PaintLosses(QPainter& aPainter, const PlotFrame& aFrame) const {
  const QColor colour = GetWarningColour(palette());
  QColor faint = colour;
  faint.setAlpha(kLossAlpha);
  const QRectF& area = aFrame.GetArea();
  const QFontMetricsF metrics(font());
  for (const IntervalStep& step : mView.steps) {
    if (!step.losses.HasLosses())
      continue;
    const double x = aFrame.MapAcross(GetSeconds(step));
    aPainter.setPen(faint);
    aPainter.drawLine(QPointF(x, area.top()), QPointF(x, area.bottom()));
    aPainter.setPen(colour);
    double baseline = area.top() + metrics.ascent();
    for (const LossMark& mark : kLossMarks) {
      const QString sign = QString::fromUtf8(mark.sign);
      if (step.losses.*mark.count > 0)
        aPainter.drawText(QPointF(x - metrics.horizontalAdvance(sign) / 2, baseline), sign);
      baseline += metrics.height();
    }
  }
}

} // namespace krviewer
