#include "line/portworker.h"

#include <chrono>
#include <cstring>
#include <exception>
#include <string>
#include <utility>

namespace krcamerabridge {

namespace {

constexpr std::size_t kMaxAccess = std::size_t{16} << 20;

KrResult CheckAccess(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs) {
  if (aData == nullptr || aLength == 0 || aLength > kMaxAccess)
    return {KrResult::Code::InvalidInput,
            "An access to the camera's registers takes 1 byte to 16 MiB, not " + std::to_string(aLength) + "."};
  if (aTimeoutMs == 0)
    return {KrResult::Code::InvalidInput,
            "An access to the camera's registers needs a time limit of at least a millisecond."};
  if (aLength - 1 > UINT64_MAX - aAddress)
    return {KrResult::Code::InvalidInput, "An access to the camera's registers ends beyond the last address."};
  return {};
}

// What a line throws is a failure of the access: the thread has nobody to catch it.
template <typename Call>
KrResult Guard(Call aCall) {
  try {
    return aCall();
  } catch (const std::exception& exception) {
    return {KrResult::Code::SystemError,
            std::string("Asking the camera was ended by an exception: ") + exception.what()};
  } catch (...) {
    return {KrResult::Code::SystemError, "Asking the camera was ended by an exception of unknown type."};
  }
}

} // namespace

PortWorker::PortWorker(ILineDevice& aDevice, const PortWorkerTimes& aTimes, std::shared_ptr<KrWaitClock> aClock)
    : mDevice(aDevice), mTimes(aTimes), mClock(std::move(aClock)), mThread([this] { Work(); }) {}

PortWorker::~PortWorker() {
  Stop();
}

void PortWorker::Stop() {
  End();
  if (mThread.joinable())
    mThread.join();
}

KrResult PortWorker::Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                          const std::stop_token& aCancel) {
  if (KrResult result = CheckAccess(aAddress, aData, aLength, aTimeoutMs); !result.IsOK())
    return result;
  const auto access = std::make_shared<Access>(Access{false, aAddress, std::vector<std::uint8_t>(aLength)});
  KrResult result = Run(access, aTimeoutMs, aCancel);
  if (result.IsOK())
    std::memcpy(aData, access->bytes.data(), aLength);
  return result;
}

KrResult PortWorker::Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                           const std::stop_token& aCancel) {
  if (KrResult result = CheckAccess(aAddress, aData, aLength, aTimeoutMs); !result.IsOK())
    return result;
  const auto* begin = static_cast<const std::uint8_t*>(aData);
  return Run(std::make_shared<Access>(Access{true, aAddress, std::vector<std::uint8_t>(begin, begin + aLength)}),
             aTimeoutMs, aCancel);
}

void PortWorker::End() {
  // Its callbacks wake whoever waits, and may need the lock for that.
  mEnd.request_stop();
  const std::lock_guard lock(mMutex);
  FailWaiting(GetRefusal());
  mWork.notify_all();
}

KrResult PortWorker::Run(const std::shared_ptr<Access>& aAccess, std::uint32_t aTimeoutMs,
                         const std::stop_token& aCancel) {
  // Who asked leaves by its own token and by the worker's end alike.
  std::stop_source leaving;
  const auto leave = [&leaving] { leaving.request_stop(); };
  const std::stop_callback onCancel(aCancel, leave);
  const std::stop_callback onEnd(mEnd.get_token(), leave);

  std::unique_lock lock(mMutex);
  if (KrResult refusal = GetRefusal(); !refusal.IsOK())
    return refusal;
  if (aCancel.stop_requested())
    return {KrResult::Code::Aborted, "The access to the camera was cancelled."};
  mWaiting.push_back(aAccess);
  mWork.notify_all();
  const std::chrono::milliseconds limit(aTimeoutMs);
  const KrWaitClock::TimePoint until = mClock->GetNow() + limit;
  mClock->WaitUntil(mDone, lock, leaving.get_token(), until, [&] { return aAccess->isDone; });
  if (aAccess->isDone)
    return aAccess->result;

  std::erase(mWaiting, aAccess);
  const bool hasLeft = leaving.stop_requested();
  KrResult result{KrResult::Code::Aborted, "The access to the camera was cancelled."};
  if (!hasLeft) {
    result = {KrResult::Code::TimeLimitExceeded, "The camera did not answer within " + std::to_string(aTimeoutMs) +
                                                     " milliseconds; check its cable and its power."};
    if (aAccess->begun && *aAccess->begun <= until - limit / 2)
      Note(result);
  }
  lock.unlock();
  aAccess->stop.request_stop();
  return result;
}

// Why no access is taken at the moment.
KrResult PortWorker::GetRefusal() const {
  if (mEnd.stop_requested())
    return {KrResult::Code::Aborted, "The connection to the camera is being closed."};
  if (!mLoss.IsOK())
    return mLoss;
  if (mIsSilent)
    return {KrResult::Code::TimeLimitExceeded,
            "The camera did not answer a moment ago; it is asked again as soon as it does. Check its cable and its "
            "power."};
  return {};
}

void PortWorker::FailWaiting(const KrResult& aResult) {
  for (const auto& access : std::exchange(mWaiting, {})) {
    access->result = aResult;
    access->isDone = true;
  }
  mDone.notify_all();
}

// What an access or a probe says of the camera.
void PortWorker::Note(const KrResult& aResult) {
  if (aResult == KrResult::Code::ConnectionLost)
    mLoss = aResult;
  if (aResult == KrResult::Code::TimeLimitExceeded)
    mIsSilent = true;
  if (KrResult refusal = GetRefusal(); !refusal.IsOK())
    FailWaiting(refusal);
}

void PortWorker::Work() {
  std::unique_lock lock(mMutex);
  while (!mEnd.stop_requested()) {
    if (mIsSilent && mLoss.IsOK())
      Probe(lock);
    else if (AwaitWork(lock))
      DoNext(lock);
    else if (!mEnd.stop_requested() && !mIsSilent)
      Probe(lock);
  }
}

// False when there is none, but the camera is to be kept alive, has fallen silent, or all ends.
bool PortWorker::AwaitWork(std::unique_lock<std::mutex>& aLock) {
  const auto hasWork = [this] { return !mWaiting.empty() || (mIsSilent && mLoss.IsOK()); };
  if (mTimes.keepAliveMs == 0 || !mLoss.IsOK())
    mWork.wait(aLock, mEnd.get_token(), hasWork);
  else
    mClock->WaitUntil(mWork, aLock, mEnd.get_token(), mClock->GetNow() + std::chrono::milliseconds(mTimes.keepAliveMs),
                      hasWork);
  return !mWaiting.empty();
}

void PortWorker::Probe(std::unique_lock<std::mutex>& aLock) {
  aLock.unlock();
  const KrResult result = Guard([&] { return mDevice.Probe(mEnd.get_token()); });
  aLock.lock();
  mIsSilent = false;
  Note(result);
  if (mIsSilent)
    mClock->WaitUntil(mWork, aLock, mEnd.get_token(), mClock->GetNow() + std::chrono::milliseconds(mTimes.pauseMs),
                      [] { return false; });
}

void PortWorker::DoNext(std::unique_lock<std::mutex>& aLock) {
  const std::shared_ptr<Access> access = std::move(mWaiting.front());
  mWaiting.pop_front();
  access->begun = mClock->GetNow();
  aLock.unlock();
  KrResult result = Guard([&] {
    const std::stop_token stop = access->stop.get_token();
    return access->isWrite ? mDevice.Write(access->address, access->bytes, stop)
                           : mDevice.Read(access->address, access->bytes, stop);
  });
  aLock.lock();
  access->result = std::move(result);
  access->isDone = true;
  mDone.notify_all();
  Note(access->result);
}

} // namespace krcamerabridge
