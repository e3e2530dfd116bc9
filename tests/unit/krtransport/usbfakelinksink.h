#pragma once
// Hears of a link's loss and return for tests, and lets them wait for it.

#include "await.h"
#include "krsystem/idevicelink.h"

#include <condition_variable>
#include <mutex>

namespace krtransport {

class UsbFakeLinkSink final : public krsystem::IDeviceLinkSink {
public:
  void OnLinkLost(const KrResult& aReason) override {
    const std::lock_guard lock(mMutex);
    mReason = aReason;
    ++mLostCount;
    mChanged.notify_all();
  }
  void OnLinkBack() override {
    const std::lock_guard lock(mMutex);
    ++mBackCount;
    mChanged.notify_all();
  }

  bool WaitForLoss() {
    return Wait([this] { return mLostCount > 0; });
  }
  bool WaitForReturn() {
    return Wait([this] { return mBackCount > 0; });
  }
  KrResult GetReason() {
    const std::lock_guard lock(mMutex);
    return mReason;
  }
  int GetLostCount() {
    const std::lock_guard lock(mMutex);
    return mLostCount;
  }

private:
  template <typename Condition>
  bool Wait(Condition aCondition) {
    std::unique_lock lock(mMutex);
    return mChanged.wait_for(lock, krtest::GetGenerousLimit(), aCondition);
  }

  std::mutex mMutex; // Guards the members below.
  std::condition_variable mChanged;
  KrResult mReason;
  int mLostCount = 0;
  int mBackCount = 0;
};

} // namespace krtransport
