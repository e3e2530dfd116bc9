#pragma once
// What tests of the camera bridge manager share that do something while a camera is asked, which takes as long as the
// test wants.

#include "camerafixture.h"

#include <QProgressBar>

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>

namespace krgui {

/// Moves on by itself until it is stopped.
class StoppableClock final : public krtransport::ICameraClock {
public:
  std::uint64_t GetNowNs() const override { return mRunning.GetNowNs(); }
  bool WaitUntil(std::unique_lock<std::mutex>& aLock, std::condition_variable& aWake, std::uint64_t aTimeNs,
                 const std::function<bool()>& aIsWoken) override {
    while (IsStopped() && !aIsWoken())
      aWake.wait_for(aLock, std::chrono::milliseconds(1));
    return mRunning.WaitUntil(aLock, aWake, aTimeNs, aIsWoken);
  }
  void SetStopped(bool aIsStopped) {
    const std::lock_guard lock(mMutex);
    mIsDue = [aIsStopped] { return aIsStopped; };
  }
  /// Stops as soon as this holds, which is asked on any thread.
  void StopWhen(std::function<bool()> aIsDue) {
    const std::lock_guard lock(mMutex);
    mIsDue = std::move(aIsDue);
  }

private:
  bool IsStopped() {
    const std::lock_guard lock(mMutex);
    return mIsDue();
  }

  JumpingClock mRunning;
  std::mutex mMutex; // Guards what follows.
  std::function<bool()> mIsDue = [] { return false; };
};

class WaitingTest : public CameraTest {
protected:
  explicit WaitingTest(std::shared_ptr<StoppableClock> aClock = std::make_shared<StoppableClock>())
      : CameraTest(aClock), mClock(std::move(aClock)) {}
  ~WaitingTest() override { mClock->SetStopped(false); }

  /// Lets the camera take all the time that it wants, and does this once the window waits for it.
  void WhileItWaits(const std::function<void(QWidget& aDialog)>& aAction) {
    mClock->SetStopped(true);
    InTheNextWait(aAction);
  }
  /// The same of the reading behind the connection of a bridge.
  void WhileItReads(int aBridge, const std::function<void(QWidget& aDialog)>& aAction) {
    mClock->StopWhen([&bridge = GetBridge(aBridge)] { return bridge.IsConnected(); });
    InTheNextWait(aAction);
  }

  const std::shared_ptr<StoppableClock> mClock;
  int mWaits = 0;

private:
  void InTheNextWait(const std::function<void(QWidget& aDialog)>& aAction) {
    OnNextDialog("progress", [this, aAction](QWidget& aDialog) {
      ++mWaits;
      EXPECT_NE(aDialog.findChild<QProgressBar*>(), nullptr);
      aAction(aDialog);
    });
  }
};

} // namespace krgui
