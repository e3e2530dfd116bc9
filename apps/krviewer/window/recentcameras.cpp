#include "window/recentcameras.h"

#include <algorithm>

namespace krviewer {

namespace {

bool IsKept(const RecentCamera& aCamera) {
  return !aCamera.id.isEmpty() && aCamera.id.size() <= RecentCameras::kMostLetters &&
         aCamera.name.size() <= RecentCameras::kMostLetters;
}

} // namespace

void RecentCameras::Add(const RecentCamera& aCamera) {
  if (!IsKept(aCamera))
    return;
  mCameras.removeIf([&](const RecentCamera& aOther) { return aOther.id == aCamera.id; });
  mCameras.prepend(aCamera);
  if (mCameras.size() > kMost)
    mCameras.resize(kMost);
}

void RecentCameras::Replace(const QString& aFormerID, const RecentCamera& aCamera) {
  const auto former = std::ranges::find(mCameras, aFormerID, &RecentCamera::id);
  if (former == mCameras.end() || !IsKept(aCamera))
    return;
  *former = aCamera;
  const auto place = former - mCameras.begin();
  for (qsizetype i = mCameras.size(); i-- > 0;)
    if (i != place && mCameras[i].id == aCamera.id)
      mCameras.removeAt(i);
}

} // namespace krviewer
