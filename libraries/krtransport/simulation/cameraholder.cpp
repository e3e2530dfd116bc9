#include "simulation/cameraholder.h"

#include "simulation/simulatedcamera.h"

#include <utility>

namespace krtransport {

CameraHolder::CameraHolder(Maker aMaker) : mMaker(std::move(aMaker)) {}

std::shared_ptr<SimulatedCamera> CameraHolder::Get() {
  const std::lock_guard lock(mMutex);
  if (!mCamera) {
    mCamera = mMaker();
    mCamera->SetAway(mIsAway);
  }
  return mCamera;
}

std::shared_ptr<SimulatedCamera> CameraHolder::Find() const {
  const std::lock_guard lock(mMutex);
  return mCamera;
}

bool CameraHolder::IsPresent() const {
  const std::lock_guard lock(mMutex);
  return mCamera ? mCamera->IsPresent() : !mIsAway;
}

void CameraHolder::SetAway(bool aIsAway) {
  // Held over the camera's call, so that the last of two calls decides.
  const std::lock_guard lock(mMutex);
  mIsAway = aIsAway;
  if (mCamera)
    mCamera->SetAway(aIsAway);
}

} // namespace krtransport
