#pragma once
// The histogram of a live picture with its controls and its numbers. Counting is left to Histogram, drawing to its
// plot.

#include "panels/histogram.h"
#include "panels/snapshotpanel.h"

#include <set>

class QLabel;
class QMenu;
class QToolButton;

namespace krviewer {

class HistogramPlot;
class NumberTable;

/// Thread: user interface.
/// Ownership: borrows the frames, which must outlive it.
class HistogramPanel : public SnapshotPanel {
  Q_OBJECT

public:
  explicit HistogramPanel(FrameSinks& aFrames);

protected:
  CutoutRequest GetRequest() override { return {CutoutRequest::Kind::Sample}; }
  void ShowSnapshot(const Snapshot& aSnapshot) override;
  void changeEvent(QEvent* aEvent) override;

private:
  QWidget* MakeControls();
  void ShowHistogram();
  void ShowColours();
  void ShowRow(int aRow, const HistogramChannel& aChannel);
  void ShowFrame(const Snapshot& aSnapshot);

  Histogram mHistogram;
  std::set<char> mHidden; ///< The colours that the user does not want to see.
  HistogramPlot* const mPlot;
  NumberTable* const mTable;
  QLabel* const mFrame;
  QToolButton* mColours = nullptr;
  QMenu* mColourMenu = nullptr;
};

} // namespace krviewer
