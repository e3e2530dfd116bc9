#pragma once
// Makes a byte channel of a line behind features: polls it for what came, takes what goes in parts, and ends with the
// device. How the line works is left to IFeatureLine.

#include "featureturn.h"
#include "krbase/krwaitclock.h"
#include "krdevice/krdevicelifetime.h"
#include "krsystem/ibytechannel.h"
#include "pollingpace.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <stop_token>

namespace krserial {

/// Thread: any. Ownership: shared; owns the line, which is used only while the device is there.
class FeatureChannel final : public krsystem::IByteChannel {
public:
  /// aTurn is that of the device.
  FeatureChannel(std::shared_ptr<KrDeviceLifetime> aLifetime, std::shared_ptr<FeatureTurn> aTurn,
                 std::unique_ptr<IFeatureLine> aLine,
                 std::shared_ptr<KrWaitClock> aClock = std::make_shared<KrWaitClock>());
  ~FeatureChannel() override;

  /// Drops what came before, for a fifth of a second at most: a device may talk without end.
  KrResult Open() override;
  /// A device that was silent last is not asked; one that has just gone silent costs one time limit of an access.
  void Close() override;
  KrResult Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel) override;
  KrResult Write(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aWritten, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel) override;

private:
  /// One call of Read or Write, with its opening, its limit and what ends it.
  struct Call {
    std::size_t opening;
    KrWaitClock::TimePoint deadline;
    const std::stop_token& cancel;
  };

  using EndWatch = std::stop_callback<std::function<void()>>;

  KrResult Step(const std::function<KrResult(IFeatureLine&)>& aStep);
  KrResult Drain();
  void Rest();
  KrResult Poll(std::unique_lock<std::mutex>& aLock, const Call& aCall);
  KrResult Transmit(std::unique_lock<std::mutex>& aLock, const std::uint8_t* aBytes, std::size_t aSize,
                    std::size_t& aTaken);
  KrResult Begin(std::size_t& aOpening);
  KrResult CheckCall(const Call& aCall) const;
  KrResult AwaitPoll(std::unique_lock<std::mutex>& aLock, const Call& aCall);
  KrResult AwaitRoom(std::unique_lock<std::mutex>& aLock, const Call& aCall);
  void PaceReceiving(bool aHasReceived);
  void PaceSending();
  /// Wakes those who wait when the device ends: at once where it has, so that it is called without the lock.
  EndWatch WatchEnd();

  const std::shared_ptr<KrDeviceLifetime> mLifetime;
  const std::shared_ptr<FeatureTurn> mTurn;
  const std::unique_ptr<IFeatureLine> mLine;
  const std::shared_ptr<KrWaitClock> mClock;
  std::atomic<bool> mIsSilent = false; // The device did not answer the last step.

  std::mutex mMutex; // Guards the members from here on; not held while the device is asked.
  std::condition_variable_any mChanged;
  std::deque<std::uint8_t> mReceived;
  KrResult mLoss; // Of what came after mReceived, to be told once.
  PollingPace mPace;
  KrWaitClock::TimePoint mNextPoll; // Not before this is the device asked for what came.
  std::size_t mOpening = 0;         // Counts openings; 0 before the first.
  bool mIsOpen = false;
  bool mIsChanging = false; // Being opened or closed.
  bool mIsPolling = false;
};

} // namespace krserial
