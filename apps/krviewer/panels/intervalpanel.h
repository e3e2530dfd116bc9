#pragma once
// The graph of frame intervals with its controls and its numbers. It remembers what was while it was hidden; it draws
// only while it is seen. What is remembered is left to FrameIntervals.

#include "acquisition/framesink.h"
#include "backgroundcall.h"
#include "panels/frameintervals.h"

#include <QTimer>
#include <QWidget>

#include <functional>

class QComboBox;
class QLabel;

namespace krviewer {

class IntervalPlot;
class NumberTable;

/// Thread: user interface; a table is written on a thread of its own, for which the end waits a moment.
/// Ownership: borrows the frames, which must outlive it.
class IntervalPanel : public QWidget {
  Q_OBJECT

public:
  /// Nanoseconds of the steady clock that frames' arrivals are told by.
  using Clock = std::function<std::uint64_t()>;

  explicit IntervalPanel(FrameSinks& aFrames);
  IntervalPanel(FrameSinks& aFrames, Clock aClock);
  ~IntervalPanel() override;

  /// Takes in what the stream has counted until now, to be called now and then: frames do not say how many were
  /// discarded.
  void TakeIn(const KrStreamStatistics& aStatistics);
  /// Whether the camera is lost: its stream ends when the camera has had its time to answer, which may be seconds
  /// later.
  void SetLost(bool aIsLost) { mIsLost = aIsLost; }

protected:
  void showEvent(QShowEvent* aEvent) override;
  void hideEvent(QHideEvent* aEvent) override;
  void changeEvent(QEvent* aEvent) override;

private:
  QWidget* MakeControls();
  IntervalView GetView() const;
  void Look();
  void ShowNumbers(const IntervalView& aView);
  void ShowRow(int aRow, const QString& aName, const QColor& aColour, const IntervalSummary& aSummary);
  void ShowState(const IntervalView& aView);
  void Reset();
  void Export();
  void Save(const QString& aFile, const IntervalView& aView);

  FrameSinks& mFrames;
  const Clock mClock;
  FrameIntervals mIntervals;
  bool mIsLost = false;
  QTimer mTimer;
  QLabel* const mState;
  IntervalPlot* const mPlot;
  NumberTable* const mNumbers;
  QLabel* const mLosses;
  QComboBox* mSpan = nullptr;
  BackgroundCall mSaving;
  QTimer mSavingTimer; ///< Runs while a table is written.
};

} // namespace krviewer
