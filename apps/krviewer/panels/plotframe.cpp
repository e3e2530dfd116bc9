#include "panels/plotframe.h"

#include "panels/graphcolours.h"
#include "panels/valuetext.h"

#include <QPainter>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace krviewer {

namespace {

/// A plot with fewer lines of text than that has no numbers.
constexpr double kFewestLines = 5;
constexpr double kManyLines = 6;
constexpr double kFewestCharacters = 16;
constexpr int kMostTicks = 11;
constexpr double kGap = 3; ///< Device-independent pixels between numbers and the plot.

} // namespace

PlotFrame::PlotFrame(const QWidget& aWidget, const PlotAxis& aAcross, const PlotAxis& aUp)
    : mPalette(aWidget.palette()), mMetrics(aWidget.fontMetrics()), mBounds(aWidget.rect()), mAcross(aAcross),
      mUp(aUp) {
  const double line = mMetrics.height();
  mHasNumbers =
      mBounds.height() >= kFewestLines * line && mBounds.width() >= kFewestCharacters * mMetrics.averageCharWidth();
  mArea = mBounds.adjusted(1, 1, -1, -1);
  if (!mHasNumbers)
    return;
  // Half a line above, as the topmost number stands beside the plot's edge.
  mArea.adjust(0, line / 2, -kGap, -(line + kGap));
  // Close together where there are few, so that there are two at least.
  const double lines = mArea.height() / line;
  AddTicks(mUp, mArea.height(), lines > kManyLines ? 2.5 * line : 1.5 * line);
  double widest = 0;
  for (const PlotAxis::Tick& tick : mUp.ticks)
    widest = std::max(widest, mMetrics.horizontalAdvance(tick.text));
  mArea.setLeft(mArea.left() + widest + 2 * kGap);
  const double number = mMetrics.horizontalAdvance(
      QString::fromStdString(FormatValue(std::round(std::max(std::abs(mAcross.low), std::abs(mAcross.high))))));
  AddTicks(mAcross, mArea.width(), number + 3 * mMetrics.averageCharWidth());
}

void PlotFrame::AddTicks(PlotAxis& aAxis, double aRoom, double aEach) const {
  if (!aAxis.ticks.empty())
    return;
  const std::vector<double> values =
      ChooseTicks(aAxis.low, aAxis.high, std::min(static_cast<int>(aRoom / aEach), kMostTicks));
  const double distance = values.size() > 1 ? values[1] - values[0] : 1;
  for (const double value : values)
    aAxis.ticks.push_back({value, QString::fromStdString(FormatTick(value, distance))});
  if (!aAxis.ticks.empty() && !aAxis.unit.isEmpty())
    aAxis.ticks.back().text += QLatin1Char(' ') + aAxis.unit;
}

double PlotFrame::MapAcross(double aValue) const {
  const double range = mAcross.high - mAcross.low;
  return mArea.left() + (range > 0 ? (aValue - mAcross.low) / range : 0.5) * mArea.width();
}

double PlotFrame::MapUp(double aValue) const {
  const double range = mUp.high - mUp.low;
  return mArea.bottom() - (range > 0 ? (aValue - mUp.low) / range : 0.5) * mArea.height();
}

double PlotFrame::FindAcross(double aPlace) const {
  const double part = mArea.width() > 0 ? (aPlace - mArea.left()) / mArea.width() : 0.0;
  return mAcross.low + std::clamp(part, 0.0, 1.0) * (mAcross.high - mAcross.low);
}

void PlotFrame::Paint(QPainter& aPainter) const {
  aPainter.fillRect(mBounds, mPalette.color(QPalette::Base));
  if (mHasNumbers) {
    PaintAcross(aPainter);
    PaintUp(aPainter);
  }
  aPainter.setPen(GetGridColour(mPalette));
  aPainter.setBrush(Qt::NoBrush);
  aPainter.drawRect(mArea);
}

void PlotFrame::PaintAcross(QPainter& aPainter) const {
  double free = mBounds.left();
  for (const PlotAxis::Tick& tick : mAcross.ticks) {
    const double x = MapAcross(tick.value);
    aPainter.setPen(GetGridColour(mPalette));
    aPainter.drawLine(QPointF(x, mArea.top()), QPointF(x, mArea.bottom()));
    const double width = mMetrics.horizontalAdvance(tick.text);
    const double left = std::clamp(x - width / 2, mArea.left(), std::max(mBounds.right() - width, mArea.left()));
    if (left < free)
      continue;
    aPainter.setPen(mPalette.color(QPalette::Text));
    aPainter.drawText(QPointF(left, mArea.bottom() + kGap + mMetrics.ascent()), tick.text);
    free = left + width + mMetrics.averageCharWidth();
  }
}

void PlotFrame::PaintUp(QPainter& aPainter) const {
  for (const PlotAxis::Tick& tick : mUp.ticks) {
    const double y = MapUp(tick.value);
    aPainter.setPen(GetGridColour(mPalette));
    aPainter.drawLine(QPointF(mArea.left(), y), QPointF(mArea.right(), y));
    aPainter.setPen(mPalette.color(QPalette::Text));
    const double width = mMetrics.horizontalAdvance(tick.text);
    aPainter.drawText(QPointF(mArea.left() - kGap - width, y + mMetrics.ascent() / 2 - 1), tick.text);
  }
}

void PaintPlotText(QPainter& aPainter, const QWidget& aWidget, const QString& aText) {
  aPainter.fillRect(aWidget.rect(), aWidget.palette().color(QPalette::Base));
  aPainter.setPen(aWidget.palette().color(QPalette::Text));
  const double margin = aWidget.fontMetrics().averageCharWidth();
  aPainter.drawText(QRectF(aWidget.rect()).adjusted(margin, margin, -margin, -margin),
                    Qt::AlignCenter | Qt::TextWordWrap, aText);
}

} // namespace krviewer
