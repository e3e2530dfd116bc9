#pragma once
// The picture of frame intervals over time, with what was lost marked when it was. What is remembered is left to
// FrameIntervals.

#include "panels/frameintervals.h"
#include "panels/plot.h"

#include <QString>

namespace krviewer {

/// A kind of loss as the plot and its legend have it: colours alone would not do for everybody.
struct LossMark {
  std::uint64_t LossCounts::*count;
  const char* name;
  const char* sign; ///< One character, in UTF-8.
};
/// From the top of the plot downwards.
inline constexpr LossMark kLossMarks[] = {
    {&LossCounts::incomplete, "Incomplete", "\u25BC"},
    {&LossCounts::missing, "Missing frames", "\u2715"},
    {&LossCounts::discarded, "Discarded", "\u25A0"},
};

/// Thread: user interface.
class IntervalPlot : public Plot {
  Q_OBJECT

public:
  explicit IntervalPlot(QWidget* aParent = nullptr);

  /// Shows a view in place of the one before.
  void Show(IntervalView aView);

  /// The colours of the two curves.
  static QColor GetArrivalColour(const QPalette& aPalette);
  static QColor GetCameraColour(const QPalette& aPalette);

private:
  bool HasCurves() const override { return !mView.steps.empty(); }
  QString GetText() const override;
  PlotFrame MakeFrame() const override;
  void PaintCurves(QPainter& aPainter, const PlotFrame& aFrame) const override;
  double GetSeconds(const IntervalStep& aStep) const;
  void PaintCurve(QPainter& aPainter, const PlotFrame& aFrame, IntervalSummary IntervalStep::*aSummary,
                  const QColor& aColour) const;
  void PaintLosses(QPainter& aPainter, const PlotFrame& aFrame) const;

  IntervalView mView;
};

} // namespace krviewer
