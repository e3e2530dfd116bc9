#pragma once
// One camera's connections, one after the other, each an acquisition. A camera that does not answer is given back on a
// thread of its own, so that the windows go on. What is lent of a connection, and to whom, is left to the owner.

#include "acquisition/acquisition.h"
#include "backgroundcall.h"

#include <chrono>
#include <functional>
#include <memory>
#include <utility>

namespace krviewer {

/// Thread: user interface. Ownership: borrows the window and the frames' sink, which outlive it; shares the
/// camera's information.
class CameraConnection {
public:
  /// Gives back whatever is lent. May run loops, in which it is called again; both have given back when they return.
  using GiveBack = std::function<void(Acquisition&)>;

  CameraConnection(KrDisplayWnd& aWindow, CameraInfo aCamera, const AcquisitionOptions& aOptions, FrameSink& aFrames,
                   GiveBack aGiveBack);
  /// Waits until the camera is given back.
  ~CameraConnection();

  /// The next connection is to the camera as it is known now.
  void SetCamera(CameraInfo aCamera) { mCamera = std::move(aCamera); }
  /// Connects; there is no connection, or it is away.
  void Connect();
  /// Begins to give the camera back. Nothing where that was begun.
  void Leave();
  /// Completes a Leave in a loop of which this is called, so that looks alone see the camera away.
  void CompleteLeave();
  /// Waits until the camera that Leave gives back is away.
  void AwaitAway();
  /// The same, but no longer than a limit.
  void AwaitAway(std::chrono::milliseconds aLimit);
  /// Sees what the acquisition has come to; to be called often.
  void LookAgain();

  /// The acquisition that can be asked for something; null where there is none, or it is being ended.
  Acquisition* GetActive() const { return mPhase == Phase::Active ? mAcquisition.get() : nullptr; }
  bool IsLeaving() const { return mPhase == Phase::Leaving; }
  /// Whether the camera is given back.
  bool IsAway() const { return mPhase == Phase::Away; }
  /// What the user has set of the host's side, as of the last time that it was given up.
  HostSettings GetHostSettings() const { return IsLeaving() ? mAcquisition->GetHostSettings() : mOptions.hostSettings; }
  /// As of the last look; the last connection's, where there is none.
  const AcquisitionProgress& GetProgress() const { return mProgress; }

private:
  enum class Phase { None, Active, Leaving, Away };

  void BeginEnd();
  void NoteAway();

  KrDisplayWnd& mWindow;
  CameraInfo mCamera;
  AcquisitionOptions mOptions; ///< With the frames' sink, and what the last acquisition's host was set to.
  const GiveBack mGiveBack;
  Phase mPhase = Phase::None;
  AcquisitionProgress mProgress;
  std::unique_ptr<Acquisition> mAcquisition;
  BackgroundCall mEnd; ///< Of the acquisition, before which it ends.
};

} // namespace krviewer
