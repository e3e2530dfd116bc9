#include "panels/profileplot.h"

#include "panels/graphcolours.h"
#include "panels/plotframe.h"
#include "panels/valuetext.h"

#include <QHelpEvent>
#include <QPainter>
#include <QPolygonF>
#include <QToolTip>

#include <algorithm>
#include <cmath>

namespace krviewer {

namespace {

constexpr double kMarginOfRange = 0.05;

} // namespace

ProfilePlot::ProfilePlot(QWidget* aParent) : QWidget(aParent) {
  setObjectName(QStringLiteral("profilePlot"));
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void ProfilePlot::Show(ProfilePicture aPicture) {
  mPicture = std::move(aPicture);
  mText.clear();
  update();
}

void ProfilePlot::ShowText(const QString& aText) {
  mPicture = {};
  mText = aText;
  update();
}

QSize ProfilePlot::sizeHint() const {
  return {fontMetrics().averageCharWidth() * 48, fontMetrics().height() * 8};
}

QSize ProfilePlot::minimumSizeHint() const {
  return {fontMetrics().averageCharWidth() * 8, fontMetrics().height() * 2};
}

PlotFrame ProfilePlot::MakeFrame() const {
  const PlotAxis across{.low = 0, .high = std::max(mPicture.length, 2u) - 1.0};
  // Values that are all the same lie in the middle.
  const double range = std::max(mPicture.values.high - mPicture.values.low, 1e-9);
  const double margin = range * kMarginOfRange;
  return {*this, across, {.low = mPicture.values.low - margin, .high = mPicture.values.low + range + margin}};
}

void ProfilePlot::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  if (mPicture.channels.empty()) {
    PaintPlotText(painter, *this, mText);
    return;
  }
  const PlotFrame frame = MakeFrame();
  frame.Paint(painter);
  painter.setClipRect(frame.GetArea());
  painter.setRenderHint(QPainter::Antialiasing);
  for (const ProfileChannel& channel : mPicture.channels)
    PaintChannel(painter, frame, channel);
}

void ProfilePlot::PaintChannel(QPainter& aPainter, const PlotFrame& aFrame, const ProfileChannel& aChannel) const {
  const auto parts = static_cast<std::size_t>(std::max(aFrame.GetArea().width() * devicePixelRatioF(), 1.0));
  QPolygonF line;
  for (const ProfilePoint& point : ReducePoints(aChannel.points, mPicture.length, parts))
    line += aFrame.Map(point.position, point.value);
  aPainter.setPen(GetComponentColour(palette(), aChannel.component));
  if (line.size() == 1)
    aPainter.drawEllipse(line.first(), 2, 2);
  else
    aPainter.drawPolyline(line);
}

QString ProfilePlot::DescribePosition(double aPosition) const {
  QString text = QStringLiteral("Position %1").arg(std::llround(aPosition));
  for (const ProfileChannel& channel : mPicture.channels) {
    const auto nearest = std::ranges::min_element(
        channel.points, {}, [aPosition](const ProfilePoint& aPoint) { return std::abs(aPoint.position - aPosition); });
    if (nearest != channel.points.end())
      text += QStringLiteral("\n%1: %2 at %3")
                  .arg(QLatin1Char(channel.component))
                  .arg(QString::fromStdString(FormatValue(nearest->value)))
                  .arg(nearest->position);
  }
  return text;
}

bool ProfilePlot::event(QEvent* aEvent) {
  if (aEvent->type() != QEvent::ToolTip || mPicture.channels.empty())
    return QWidget::event(aEvent);
  const auto& help = static_cast<const QHelpEvent&>(*aEvent);
  QToolTip::showText(help.globalPos(), DescribePosition(MakeFrame().FindAcross(help.pos().x())), this);
  return true;
}

} // namespace krviewer
