#include "lentparameters.h"

namespace krviewer {

void LentParameters::Lend(KrGenParameterArray& aArray) {
  const std::lock_guard lock(mMutex);
  mOffered = &aArray;
}

void LentParameters::TakeBack() {
  std::unique_lock lock(mMutex);
  mOffered = nullptr;
  mGivenBack.wait(lock, [this] { return !mIsBorrowed; });
}

KrGenParameterArray* LentParameters::Borrow() {
  const std::lock_guard lock(mMutex);
  if (!mOffered || mIsBorrowed)
    return nullptr;
  mIsBorrowed = true;
  return mOffered;
}

bool LentParameters::IsWantedBack() const {
  const std::lock_guard lock(mMutex);
  return mIsBorrowed && !mOffered;
}

void LentParameters::GiveBack() {
  {
    const std::lock_guard lock(mMutex);
    mIsBorrowed = false;
  }
  mGivenBack.notify_all();
}

} // namespace krviewer
