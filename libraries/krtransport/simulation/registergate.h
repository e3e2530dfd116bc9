#pragma once
// Lets the register accesses of one link wait for their answers where faults are ordered, and keeps them from waiting
// for a silent camera twice. What is read and written is left to the camera.

#include "krbase/krresult.h"
#include "simulation/orderedfaults.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <stop_token>
#include <thread>

namespace krtransport {

/// Thread: any, but for destruction. Ownership: borrows the faults.
class RegisterGate {
public:
  /// The camera's name begins the texts of its silence.
  RegisterGate(OrderedFaults& aFaults, KrString aCameraName);
  /// Waits for the thread that asks a silent camera.
  ~RegisterGate();

  /// Returns OK when an access has its answer; where no fault is ordered, at once and without a lock. TimeLimitExceeded
  /// at the caller's limit, and at once from then on until the camera, asked in the background, answers again. Aborted
  /// at once when aCancel is stopped, the reason of End at once after that was called.
  KrResult Await(std::uint64_t aAddress, std::size_t aLength, std::uint32_t aTimeoutMs, const std::stop_token& aCancel);
  /// Ends all waits, now and from now on, with a reason.
  void End(const KrResult& aReason);

private:
  using TimePoint = std::chrono::steady_clock::time_point;
  using Lock = std::unique_lock<std::mutex>;

  KrResult AwaitTurn(Lock& aLock, TimePoint aLimit, const std::stop_token& aCancel);
  KrResult AwaitAnswer(Lock& aLock, const RegisterAnswer& aAnswer, TimePoint aLimit, const std::stop_token& aCancel);
  KrResult MakeTimedOut() const;
  KrResult MakeSilent() const;
  void BeginSilence();
  void Probe();

  OrderedFaults& mFaults;
  const KrString mCameraName;
  std::atomic<bool> mIsSilent = false; // Written with the lock held.

  std::mutex mMutex; // Guards the members from here on.
  std::condition_variable_any mChanged;
  std::optional<KrResult> mEnd;
  bool mIsBusy = false; // An access waits for its answer; others wait for it.
  std::thread mProbe;   // Started by the first silence.
};

} // namespace krtransport
