#include "acquisition/cameraconnection.h"

#include <utility>

namespace krviewer {

namespace {

AcquisitionOptions AddSink(AcquisitionOptions aOptions, FrameSink& aFrames) {
  aOptions.sink = &aFrames;
  return aOptions;
}

} // namespace

CameraConnection::CameraConnection(KrDisplayWnd& aWindow, CameraInfo aCamera, const AcquisitionOptions& aOptions,
                                   FrameSink& aFrames, GiveBack aGiveBack)
    : mWindow(aWindow), mCamera(std::move(aCamera)), mOptions(AddSink(aOptions, aFrames)),
      mGiveBack(std::move(aGiveBack)) {}

CameraConnection::~CameraConnection() {
  Leave();
  AwaitAway();
}

void CameraConnection::Connect() {
  mProgress = {};
  mAcquisition = std::make_unique<Acquisition>(mWindow, mCamera, mOptions);
  mPhase = Phase::Active;
}

void CameraConnection::Leave() {
  if (mPhase != Phase::Active)
    return;
  mPhase = Phase::Leaving;
  mGiveBack(*mAcquisition);
  // A loop of that may have waited for the end already.
  if (mPhase == Phase::Leaving && !mEnd.IsRunning())
    BeginEnd();
}

void CameraConnection::BeginEnd() {
  mEnd.Start([acquisition = mAcquisition.get()](const std::stop_token&) { acquisition->Stop(); }, [] {},
             [this] { NoteAway(); });
}

void CameraConnection::CompleteLeave() {
  if (mPhase != Phase::Leaving || mEnd.IsRunning())
    return;
  mGiveBack(*mAcquisition);
  if (mPhase == Phase::Leaving && !mEnd.IsRunning())
    BeginEnd();
}

void CameraConnection::AwaitAway() {
  CompleteLeave();
  if (mPhase != Phase::Leaving)
    return;
  mEnd.End();
  NoteAway();
}

void CameraConnection::AwaitAway(std::chrono::milliseconds aLimit) {
  CompleteLeave();
  if (mPhase == Phase::Leaving && mEnd.AwaitFor(aLimit))
    mEnd.Follow();
}

void CameraConnection::NoteAway() {
  mProgress = mAcquisition->GetProgress();
  mOptions.hostSettings = mAcquisition->GetHostSettings();
  mPhase = Phase::Away;
}

void CameraConnection::LookAgain() {
  mEnd.Follow();
  if (mPhase != Phase::Active)
    return;
  mAcquisition->LookAgain();
  // What it called may have ended it.
  if (mPhase == Phase::Active)
    mProgress = mAcquisition->GetProgress();
}

} // namespace krviewer
