#include "window/recentcameras.h"

namespace krviewer {

void RecentCameras::Add(const RecentCamera& aCamera) {
  if (aCamera.id.isEmpty() || aCamera.id.size() > kMostLetters || aCamera.name.size() > kMostLetters)
    return;
  mCameras.removeIf([&](const RecentCamera& aOther) { return aOther.id == aCamera.id; });
  mCameras.prepend(aCamera);
  if (mCameras.size() > kMost)
    mCameras.resize(kMost);
}

} // namespace krviewer
