#pragma once
// What panels have in common that show a part of the newest frame a few times a second: they hear of frames only while
// they are seen and not frozen. What is shown is left to each.

#include "acquisition/framesink.h"
#include "panels/framesnapshots.h"

#include <QTimer>
#include <QWidget>

namespace krviewer {

/// Thread: user interface.
/// Ownership: borrows the frames, which must outlive it.
class SnapshotPanel : public QWidget {
  Q_OBJECT

public:
  explicit SnapshotPanel(FrameSinks& aFrames);
  ~SnapshotPanel() override;

  /// Keeps what is shown until it is frozen no more.
  void SetFrozen(bool aIsFrozen);
  /// How many frames something was copied of so far.
  std::uint64_t GetCopied() const { return mSnapshots.GetCopied(); }

protected:
  /// Which part of the next frame is wanted.
  virtual CutoutRequest GetRequest() = 0;
  virtual void ShowSnapshot(const Snapshot& aSnapshot) = 0;

  /// Something else is wanted now: it is asked for at once, and taken out of the last frame where that holds it.
  void RequestChanged();

  void showEvent(QShowEvent* aEvent) override;
  void hideEvent(QHideEvent* aEvent) override;

private:
  void Look();
  void Ask();
  void ShowPart(const CutoutRequest& aRequest);
  void Listen(bool aIsListening);

  FrameSinks& mFrames;
  FrameSnapshots mSnapshots;
  Snapshot mSnapshot;
  QTimer mTimer;
  bool mIsListening = false;
  bool mIsFrozen = false;
};

} // namespace krviewer
