#pragma once
// What tests of the camera bridge manager share that do something while a camera is asked, which takes as long as the
// test wants.

#include "camerafixture.h"

#include <QProgressBar>

#include <atomic>
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
    while (mIsStopped && !aIsWoken())
      aWake.wait_for(aLock, std::chrono::milliseconds(1));
    return mRunning.WaitUntil(aLock, aWake, aTimeNs, aIsWoken);
  }
  void SetStopped(bool aIsStopped) { mIsStopped = aIsStopped; }

private:
  JumpingClock mRunning;
  std::atomic<bool> mIsStopped{false};
};

class WaitingTest : public CameraTest {
protected:
  explicit WaitingTest(std::shared_ptr<StoppableClock> aClock = std::make_shared<StoppableClock>())
      : CameraTest(aClock), mClock(std::move(aClock)) {}
  ~WaitingTest() override { mClock->SetStopped(false); }

  /// Lets the camera take all the time that it wants, and does this once the window waits for it.
  void WhileItWaits(const std::function<void(QWidget& aDialog)>& aAction) {
    mClock->SetStopped(true);
    OnNextDialog("progress", [this, aAction](QWidget& aDialog) {
      ++mWaits;
      EXPECT_NE(aDialog.findChild<QProgressBar*>(), nullptr);
      aAction(aDialog);
    });
  }

  const std::shared_ptr<StoppableClock> mClock;
  int mWaits = 0;
};

} // namespace krgui
