#include "panels/snapshotpanel.h"

namespace krviewer {

namespace {

constexpr int kLookIntervalMs = 80;

} // namespace

SnapshotPanel::SnapshotPanel(FrameSinks& aFrames) : mFrames(aFrames) {
  connect(&mTimer, &QTimer::timeout, this, &SnapshotPanel::Look);
}

SnapshotPanel::~SnapshotPanel() {
  Listen(false);
}

void SnapshotPanel::Listen(bool aIsListening) {
  if (aIsListening == mIsListening)
    return;
  // Neither fails: it is registered just when this flag is set.
  const KrResult result = aIsListening ? mFrames.Register(&mSnapshots) : mFrames.Unregister(&mSnapshots);
  mIsListening = result.IsOK() ? aIsListening : mIsListening;
}

void SnapshotPanel::SetFrozen(bool aIsFrozen) {
  mIsFrozen = aIsFrozen;
  if (aIsFrozen)
    mSnapshots.AskNothing();
  else
    Ask();
}

void SnapshotPanel::RequestChanged() {
  Ask();
  ShowPart(GetRequest());
}

void SnapshotPanel::ShowPart(const CutoutRequest& aRequest) {
  if (aRequest == mSnapshot.request || !mSnapshot.cutout.Holds(aRequest, mSnapshot.width, mSnapshot.height))
    return;
  mSnapshot.request = aRequest;
  ShowSnapshot(mSnapshot);
}

void SnapshotPanel::Ask() {
  if (mIsListening && !mIsFrozen)
    mSnapshots.Ask(GetRequest());
}

void SnapshotPanel::showEvent(QShowEvent* aEvent) {
  QWidget::showEvent(aEvent);
  Listen(true);
  Ask();
  mTimer.start(kLookIntervalMs);
}

void SnapshotPanel::hideEvent(QHideEvent* aEvent) {
  QWidget::hideEvent(aEvent);
  mTimer.stop();
  Listen(false);
}

void SnapshotPanel::Look() {
  if (mIsFrozen)
    return;
  // A minimised window is not hidden, but nobody sees it.
  if (window()->isMinimized()) {
    mSnapshots.AskNothing();
    return;
  }
  if (mSnapshots.Take(mSnapshot))
    ShowSnapshot(mSnapshot);
  else
    ShowPart(GetRequest()); // The mouse may have moved on over a picture that stands still.
  Ask();
}

} // namespace krviewer
