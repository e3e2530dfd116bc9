#pragma once
// The picture of a histogram: a curve for each colour, with what is clipped marked at the ends. What is counted is left
// to Histogram, the numbers below to the panel.

#include "panels/histogram.h"
#include "panels/plot.h"

#include <QString>

#include <cstdint>
#include <vector>

namespace krviewer {

/// How counts become heights.
enum class HistogramScale { Linear, Logarithmic };

/// What the plot shows, as a whole.
struct HistogramPicture {
  std::vector<HistogramChannel> channels;
  std::int64_t lowestValue = 0;
  std::int64_t highestValue = 0;
};

/// Thread: user interface.
class HistogramPlot : public Plot {
  Q_OBJECT

public:
  explicit HistogramPlot(QWidget* aParent = nullptr);

  /// Shows a picture in place of the one before.
  void Show(HistogramPicture aPicture);
  /// Shows a sentence instead of a picture.
  void ShowText(const QString& aText);
  void SetScale(HistogramScale aScale);

private:
  bool HasCurves() const override { return !mPicture.channels.empty(); }
  QString GetText() const override { return mText; }
  PlotFrame MakeFrame() const override;
  void PaintCurves(QPainter& aPainter, const PlotFrame& aFrame) const override;
  QString Describe(double aAcross) const override;
  double GetHeight(double aPercent) const;
  double GetGreatestPercent() const;
  double GetShareOfTexts() const;
  void PaintChannel(QPainter& aPainter, const PlotFrame& aFrame, const HistogramChannel& aChannel) const;
  void PaintClipped(QPainter& aPainter, const PlotFrame& aFrame) const;

  HistogramPicture mPicture;
  QString mText;
  HistogramScale mScale = HistogramScale::Linear;
};

} // namespace krviewer
