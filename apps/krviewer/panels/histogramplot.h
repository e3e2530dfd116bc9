#pragma once
// The picture of a histogram: a curve for each colour, with what is clipped marked at the ends. What is counted is left
// to Histogram, the numbers below to the panel.

#include "panels/histogram.h"

#include <QString>
#include <QWidget>

#include <cstdint>
#include <vector>

namespace krviewer {

class PlotFrame;

/// How counts become heights.
enum class HistogramScale { Linear, Logarithmic };

/// What the plot shows, as a whole.
struct HistogramPicture {
  std::vector<HistogramChannel> channels;
  std::int64_t lowestValue = 0;
  std::int64_t highestValue = 0;
};

/// Thread: user interface.
class HistogramPlot : public QWidget {
  Q_OBJECT

public:
  explicit HistogramPlot(QWidget* aParent = nullptr);

  /// Shows a picture in place of the one before.
  void Show(HistogramPicture aPicture);
  /// Shows a sentence instead of a picture.
  void ShowText(const QString& aText);
  void SetScale(HistogramScale aScale);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

protected:
  void paintEvent(QPaintEvent* aEvent) override;
  bool event(QEvent* aEvent) override;

private:
  double GetHeight(double aPercent) const;
  double GetGreatestPercent() const;
  double GetShareOfTexts() const;
  PlotFrame MakeFrame() const;
  void PaintChannel(QPainter& aPainter, const PlotFrame& aFrame, const HistogramChannel& aChannel) const;
  void PaintClipped(QPainter& aPainter, const PlotFrame& aFrame) const;
  QString DescribeValue(std::int64_t aValue) const;

  HistogramPicture mPicture;
  QString mText;
  HistogramScale mScale = HistogramScale::Linear;
};

} // namespace krviewer
