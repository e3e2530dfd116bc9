#include "panels/histogramplot.h"

#include "panels/graphcolours.h"
#include "panels/plotframe.h"
#include "panels/valuetext.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>

namespace krviewer {

namespace {

constexpr int kFillAlpha = 60;
/// Room above the curves for what is said of clipped pixels; low plots have less.
constexpr double kLinesOfTexts = 3;
constexpr double kGreatestShareOfTexts = 0.3;
constexpr double kClippedBarWidth = 4; ///< Device-independent pixels.
/// The least part of the pixels, in percent, that a logarithmic scale tells from none.
constexpr double kLeastPercent = 0.001;
constexpr std::array kDecades = {0.001, 0.01, 0.1, 1.0, 10.0, 100.0};

QString ToText(const std::string& aText) {
  return QString::fromStdString(aText);
}

/// Clipped pixels would else make everything between the ends too low to be seen.
std::uint32_t FindGreatestBetweenEnds(const std::vector<std::uint32_t>& aCounts) {
  if (aCounts.size() <= 2)
    return 0;
  return *std::max_element(std::next(aCounts.begin()), std::prev(aCounts.end()));
}

} // namespace

HistogramPlot::HistogramPlot(QWidget* aParent) : Plot(aParent) {
  setObjectName(QStringLiteral("histogramPlot"));
}

void HistogramPlot::Show(HistogramPicture aPicture) {
  mPicture = std::move(aPicture);
  mText.clear();
  update();
}

void HistogramPlot::ShowText(const QString& aText) {
  mPicture = {};
  mText = aText;
  update();
}

void HistogramPlot::SetScale(HistogramScale aScale) {
  mScale = aScale;
  update();
}

double HistogramPlot::GetHeight(double aPercent) const {
  return mScale == HistogramScale::Linear ? aPercent : std::log10(std::max(aPercent, kLeastPercent));
}

double HistogramPlot::GetGreatestPercent() const {
  double greatest = 0;
  for (const HistogramChannel& channel : mPicture.channels)
    greatest = std::max(greatest, channel.GetPercent(FindGreatestBetweenEnds(channel.counts)));
  return greatest > 0 ? greatest : 100;
}

double HistogramPlot::GetShareOfTexts() const {
  const bool hasTexts = std::ranges::any_of(mPicture.channels, [](const HistogramChannel& aChannel) {
    return aChannel.clippedLow > 0 || aChannel.clippedHigh > 0;
  });
  const double lines = hasTexts ? kLinesOfTexts : 1;
  return std::min(lines * fontMetrics().height() / std::max(height(), 1), kGreatestShareOfTexts);
}

PlotFrame HistogramPlot::MakeFrame() const {
  const PlotAxis across{.low = static_cast<double>(mPicture.lowestValue),
                        .high = static_cast<double>(mPicture.highestValue)};
  const double share = 1 - GetShareOfTexts();
  PlotAxis up{.low = 0, .high = GetGreatestPercent() / share, .unit = QStringLiteral("%")};
  if (mScale == HistogramScale::Logarithmic) {
    up.low = GetHeight(kLeastPercent);
    up.high = up.low + (GetHeight(GetGreatestPercent()) - up.low) / share;
    for (const double percent : kDecades)
      if (GetHeight(percent) <= up.high)
        up.ticks.push_back({GetHeight(percent), ToText(FormatValue(percent)) + QStringLiteral(" %")});
  }
  return {*this, across, up};
}

void HistogramPlot::PaintCurves(QPainter& aPainter, const PlotFrame& aFrame) const {
  for (const HistogramChannel& channel : mPicture.channels)
    PaintChannel(aPainter, aFrame, channel);
  PaintClipped(aPainter, aFrame);
}

void HistogramPlot::PaintChannel(QPainter& aPainter, const PlotFrame& aFrame, const HistogramChannel& aChannel) const {
  const QRectF& area = aFrame.GetArea();
  const auto width = static_cast<std::size_t>(std::max(area.width() * devicePixelRatioF(), 1.0));
  // A column each for fewer values than pixels.
  const std::vector<std::uint32_t> columns = GatherColumns(aChannel.counts, std::min(width, aChannel.counts.size()));
  QPainterPath path(area.bottomLeft());
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const double y = aFrame.MapUp(GetHeight(aChannel.GetPercent(columns[i])));
    const double step = area.width() / static_cast<double>(columns.size());
    path.lineTo(area.left() + step * static_cast<double>(i), y);
    path.lineTo(area.left() + step * static_cast<double>(i + 1), y);
  }
  path.lineTo(area.bottomRight());
  const QColor colour = GetComponentColour(palette(), aChannel.component);
  QColor fill = colour;
  fill.setAlpha(kFillAlpha);
  aPainter.fillPath(path, fill);
  aPainter.setPen(colour);
  aPainter.drawPath(path);
}

void HistogramPlot::PaintClipped(QPainter& aPainter, const PlotFrame& aFrame) const {
  double low = 0;
  double high = 0;
  for (const HistogramChannel& channel : mPicture.channels) {
    low = std::max(low, channel.GetPercent(channel.clippedLow));
    high = std::max(high, channel.GetPercent(channel.clippedHigh));
  }
  const QColor colour = GetWarningColour(palette());
  const QRectF& area = aFrame.GetArea();
  const double gap = kClippedBarWidth + fontMetrics().averageCharWidth();
  const QRectF textArea = area.adjusted(gap, 2, -gap, 0);
  // On a ground of its own, as the curve may be behind it.
  const auto paintText = [&](const QRectF& aRect, Qt::Alignment aAlignment, double aPercent, std::int64_t aValue) {
    const QString text = QStringLiteral("%1 at %2").arg(ToText(FormatPercent(aPercent))).arg(aValue);
    aPainter.fillRect(aPainter.boundingRect(aRect, static_cast<int>(aAlignment), text),
                      palette().color(QPalette::Base));
    aPainter.setPen(colour);
    aPainter.drawText(aRect, static_cast<int>(aAlignment), text);
  };
  if (low > 0) {
    aPainter.fillRect(QRectF(area.topLeft(), QSizeF(kClippedBarWidth, area.height())), colour);
    paintText(textArea, Qt::AlignLeft | Qt::AlignTop, low, mPicture.lowestValue);
  }
  if (high > 0) {
    aPainter.fillRect(QRectF(area.right() - kClippedBarWidth, area.top(), kClippedBarWidth, area.height()), colour);
    // A line lower, as both texts may not fit beside each other.
    paintText(textArea.translated(0, fontMetrics().height()), Qt::AlignRight | Qt::AlignTop, high,
              mPicture.highestValue);
  }
}

QString HistogramPlot::Describe(double aAcross) const {
  const std::int64_t value = std::llround(aAcross);
  QString text = QStringLiteral("Value %1").arg(value);
  for (const HistogramChannel& channel : mPicture.channels) {
    const auto index = static_cast<std::size_t>(value - mPicture.lowestValue);
    const std::uint32_t count = channel.counts[index];
    text += QStringLiteral("\n%1: %2 pixels, %3")
                .arg(QLatin1Char(channel.component))
                .arg(count)
                .arg(ToText(FormatPercent(channel.GetPercent(count))));
  }
  if (value == mPicture.lowestValue || value == mPicture.highestValue)
    text += QStringLiteral("\nPixels at this end may be clipped: the scene may be darker or brighter than that.");
  return text;
}

} // namespace krviewer
