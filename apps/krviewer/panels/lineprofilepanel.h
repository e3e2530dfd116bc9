#pragma once
// The values along a line or a column of a live picture, chosen by its number or by the mouse, and how sharp it is, for
// whoever turns a lens. Reading is left to LineProfile, drawing to its plot.

#include "krgui/krdisplaywnd.h"
#include "panels/lineprofile.h"
#include "panels/profileplot.h"
#include "panels/snapshotpanel.h"

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QLabel;

namespace krviewer {

/// Thread: user interface.
/// Ownership: borrows the frames and the window that shows them, which must outlive it.
class LineProfilePanel : public SnapshotPanel {
  Q_OBJECT

public:
  LineProfilePanel(FrameSinks& aFrames, KrDisplayWnd& aWindow);

protected:
  CutoutRequest GetRequest() override;
  void ShowSnapshot(const Snapshot& aSnapshot) override;

private:
  /// How a line is chosen: an entry of the combo box.
  enum Choice { kLine, kColumn, kLineAtCursor, kColumnAtCursor };

  QWidget* MakeControls();
  void Choose();
  void FollowCursor();
  bool IsFollowing() const;
  bool IsColumn() const;
  void ShowProfile();
  void ShowSharpness();
  void ForgetBest();

  KrDisplayWnd& mWindow;
  LineProfile mProfile;
  ProfilePlot* const mPlot;
  QLabel* const mFrame;
  QLabel* const mSharpness;
  QComboBox* mChoice = nullptr;
  QDoubleSpinBox* mIndex = nullptr; ///< Holds 53 bits, which the spin box for integers does not.
  QCheckBox* mFullRange = nullptr;
  double mBest = 0; ///< The greatest sharpness since the line was chosen.
};

} // namespace krviewer
