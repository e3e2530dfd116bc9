#include "panels/plot.h"

#include "panels/plotframe.h"
#include "window/showntext.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace krviewer {

Plot::Plot(QWidget* aParent) : QWidget(aParent) {
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

QSize Plot::sizeHint() const {
  return {fontMetrics().averageCharWidth() * 48, fontMetrics().height() * 8};
}

QSize Plot::minimumSizeHint() const {
  return {fontMetrics().averageCharWidth() * 8, fontMetrics().height() * 2};
}

void Plot::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  if (!HasCurves()) {
    PaintPlotText(painter, *this, GetText());
    return;
  }
  const PlotFrame frame = MakeFrame();
  frame.Paint(painter);
  painter.setClipRect(frame.GetArea());
  PaintCurves(painter, frame);
}

bool Plot::event(QEvent* aEvent) {
  if (aEvent->type() != QEvent::ToolTip || !HasCurves())
    return QWidget::event(aEvent);
  const auto& help = static_cast<const QHelpEvent&>(*aEvent);
  const QString text = Describe(MakeFrame().FindAcross(help.pos().x()));
  if (text.isEmpty())
    return QWidget::event(aEvent);
  QToolTip::showText(help.globalPos(), ToToolTip(text), this);
  return true;
}

} // namespace krviewer
