#include "simulation/registergate.h"

#include "simulation/cameraregisters.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace krtransport {

namespace {

constexpr std::chrono::milliseconds kProbeInterval(50);
constexpr std::chrono::milliseconds kProbeLimit(200);
constexpr std::size_t kProbeLength = 4;

KrResult MakeCancelled() {
  return {KrResult::Code::Aborted, "The access to the camera's registers was cancelled."};
}

} // namespace

RegisterGate::RegisterGate(OrderedFaults& aFaults, KrString aCameraName)
    : mFaults(aFaults), mCameraName(std::move(aCameraName)) {}

RegisterGate::~RegisterGate() {
  End({KrResult::Code::ConnectionLost, "The camera was closed."});
  if (mProbe.joinable())
    mProbe.join();
}

KrResult RegisterGate::MakeTimedOut() const {
  return {KrResult::Code::TimeLimitExceeded,
          mCameraName + ": it did not answer the access to its registers in time; check its cable and its power."};
}

KrResult RegisterGate::MakeSilent() const {
  return {KrResult::Code::TimeLimitExceeded,
          mCameraName + ": it did not answer a moment ago; its registers can be accessed as soon as it does. Check "
                        "its cable and its power."};
}

void RegisterGate::End(const KrResult& aReason) {
  const std::lock_guard lock(mMutex);
  if (!mEnd)
    mEnd = aReason;
  mChanged.notify_all();
}

KrResult RegisterGate::Await(std::uint64_t aAddress, std::size_t aLength, std::uint32_t aTimeoutMs,
                             const std::stop_token& aCancel) {
  if (aCancel.stop_requested())
    return MakeCancelled();
  if (!mIsSilent && !mFaults.HasRegisterFaults())
    return {};
  const TimePoint limit = std::chrono::steady_clock::now() + std::chrono::milliseconds(aTimeoutMs);
  Lock lock(mMutex);
  KrResult result = AwaitTurn(lock, limit, aCancel);
  if (!result.IsOK())
    return result;
  if (mIsSilent)
    return MakeSilent();
  mIsBusy = true;
  result = AwaitAnswer(lock, mFaults.TakeAnswer(aAddress, aLength), limit, aCancel);
  mIsBusy = false;
  mChanged.notify_all();
  return result;
}

KrResult RegisterGate::AwaitTurn(Lock& aLock, TimePoint aLimit, const std::stop_token& aCancel) {
  const bool isOver = mChanged.wait_until(aLock, aCancel, aLimit, [this] { return mEnd || mIsSilent || !mIsBusy; });
  if (mEnd)
    return *mEnd;
  if (isOver)
    return {};
  return aCancel.stop_requested() ? MakeCancelled() : MakeTimedOut();
}

KrResult RegisterGate::AwaitAnswer(Lock& aLock, const RegisterAnswer& aAnswer, TimePoint aLimit,
                                   const std::stop_token& aCancel) {
  const TimePoint answered = std::chrono::steady_clock::now() + std::chrono::milliseconds(aAnswer.delayMs);
  const bool isInTime = !aAnswer.isSilent && answered <= aLimit;
  mChanged.wait_until(aLock, aCancel, isInTime ? answered : aLimit, [this] { return mEnd.has_value(); });
  if (mEnd)
    return *mEnd;
  if (aCancel.stop_requested())
    return MakeCancelled();
  if (isInTime)
    return {};
  BeginSilence();
  return MakeTimedOut();
}

void RegisterGate::BeginSilence() {
  mIsSilent = true;
  mChanged.notify_all();
  if (mProbe.joinable())
    return;
  try {
    mProbe = std::thread([this] { Probe(); });
  } catch (const std::system_error&) {
    // With nobody to ask the camera, the next access has to.
    mIsSilent = false;
  }
}

void RegisterGate::Probe() {
  Lock lock(mMutex);
  const auto hasEnded = [this] { return mEnd.has_value(); };
  while (!mEnd) {
    mChanged.wait(lock, [this] { return mEnd || mIsSilent; });
    if (mChanged.wait_for(lock, kProbeInterval, hasEnded))
      return;
    const RegisterAnswer answer = mFaults.TakeAnswer(cameraregister::kControlPrivilege, kProbeLength);
    const std::chrono::milliseconds delay(answer.delayMs);
    const bool isInTime = !answer.isSilent && delay <= kProbeLimit;
    if (mChanged.wait_for(lock, isInTime ? delay : kProbeLimit, hasEnded) || !isInTime)
      continue;
    mIsSilent = false;
    mChanged.notify_all();
  }
}

} // namespace krtransport
