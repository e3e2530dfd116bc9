#include "panels/profileplot.h"

#include "panels/graphcolours.h"
#include "panels/plotframe.h"
#include "panels/valuetext.h"

#include <QPainter>
#include <QPolygonF>

#include <algorithm>
#include <cmath>

namespace krviewer {

namespace {

constexpr double kMarginOfRange = 0.05;

} // namespace

ProfilePlot::ProfilePlot(QWidget* aParent) : Plot(aParent) {
  setObjectName(QStringLiteral("profilePlot"));
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

PlotFrame ProfilePlot::MakeFrame() const {
  const PlotAxis across{.low = 0, .high = std::max(mPicture.length, 2u) - 1.0};
  // Values that are all the same lie in the middle.
  const double range = std::max(mPicture.values.high - mPicture.values.low, 1e-9);
  const double margin = range * kMarginOfRange;
  return {*this, across, {.low = mPicture.values.low - margin, .high = mPicture.values.low + range + margin}};
}

void ProfilePlot::PaintCurves(QPainter& aPainter, const PlotFrame& aFrame) const {
  aPainter.setRenderHint(QPainter::Antialiasing);
  for (const ProfileChannel& channel : mPicture.channels)
    PaintChannel(aPainter, aFrame, channel);
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

QString ProfilePlot::Describe(double aAcross) const {
  QString text = QStringLiteral("Position %1").arg(std::llround(aAcross));
  for (const ProfileChannel& channel : mPicture.channels) {
    const auto nearest = std::ranges::min_element(
        channel.points, {}, [aAcross](const ProfilePoint& aPoint) { return std::abs(aPoint.position - aAcross); });
    if (nearest != channel.points.end())
      text += QStringLiteral("\n%1: %2 at %3")
                  .arg(QLatin1Char(channel.component))
                  .arg(QString::fromStdString(FormatValue(nearest->value)))
                  .arg(nearest->position);
  }
  return text;
}

} // namespace krviewer
