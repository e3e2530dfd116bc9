#include "featurechannel.h"

#include "krbase/krlogger.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace krserial {

namespace {

// Bytes that are kept from before come without a pause; what comes after that is new.
constexpr std::chrono::milliseconds kDrainingLimit(200);

KrResult RefuseEnded() {
  return {KrResult::Code::ConnectionLost, "The serial line's device is gone; open the device again."};
}

bool IsSilence(const KrResult& aResult) {
  return aResult == KrResult::Code::TimeLimitExceeded || aResult == KrResult::Code::ConnectionLost;
}

// Of bytes that are lost although the line works; what else fails is said by who reads or writes.
void Tell(const KrResult& aLoss) {
  KrLogger("KrSerial").Log(KrLogLevel::Warning, {"FeatureChannel", "featurechannel"}, aLoss.GetDescription());
}

} // namespace

FeatureChannel::FeatureChannel(std::shared_ptr<KrDeviceLifetime> aLifetime, std::shared_ptr<FeatureTurn> aTurn,
                               std::unique_ptr<IFeatureLine> aLine, std::shared_ptr<KrWaitClock> aClock)
    : mLifetime(std::move(aLifetime)), mTurn(std::move(aTurn)), mLine(std::move(aLine)), mClock(std::move(aClock)) {}

FeatureChannel::~FeatureChannel() {
  mTurn->Forget(*mLine);
}

// One step of the line while the device is there, and no other step of it is done. One that failed is the last of a
// burst, unless the device does not answer: then it is asked for nothing more.
KrResult FeatureChannel::Step(const std::function<KrResult(IFeatureLine&)>& aStep) {
  const KrDeviceLifetime::Use use(*mLifetime);
  if (!use.IsGranted() || mLifetime->GetEnd().stop_requested())
    return RefuseEnded();
  KrResult result = mTurn->Run(*mLine, [&](IFeatureLine& aLine) {
    KrResult done = aStep(aLine);
    mIsSilent = IsSilence(done);
    if (!done.IsOK() && !mIsSilent)
      aLine.Rest();
    return done;
  });
  // Whatever an access says of a device that has gone meanwhile.
  return result.IsOK() || !mLifetime->GetEnd().stop_requested() ? result : RefuseEnded();
}

// A device that cannot be asked keeps its selectors.
void FeatureChannel::Rest() {
  static_cast<void>(Step([](IFeatureLine& aLine) {
    aLine.Rest();
    return KrResult();
  }));
}

KrResult FeatureChannel::Open() {
  {
    const std::lock_guard lock(mMutex);
    if (mIsOpen || mIsChanging)
      return {KrResult::Code::Busy, "Opening the serial line: it is open already; close it where it is used."};
    mIsChanging = true;
  }
  KrResult opened = Step([](IFeatureLine& aLine) { return aLine.Open(); });
  if (opened.IsOK()) {
    opened = Drain();
    if (!opened.IsOK() && !mIsSilent)
      static_cast<void>(Step([](IFeatureLine& aLine) { return aLine.Close(); }));
  }
  const std::lock_guard lock(mMutex);
  mIsChanging = false;
  mIsOpen = opened.IsOK();
  mOpening += mIsOpen ? 1 : 0;
  mReceived.clear();
  mLoss = {};
  mPace = {};
  mNextPoll = mClock->GetNow();
  return opened;
}

// Drops what came before.
KrResult FeatureChannel::Drain() {
  const KrWaitClock::TimePoint limit = mClock->GetNow() + kDrainingLimit;
  std::vector<std::uint8_t> bytes;
  do {
    bytes.clear();
    if (KrResult received = Step([&](IFeatureLine& aLine) { return aLine.Receive(bytes); }); !received.IsOK())
      return received;
  } while (!bytes.empty() && mClock->GetNow() < limit);
  Rest();
  return {};
}

void FeatureChannel::Close() {
  {
    const std::lock_guard lock(mMutex);
    if (!mIsOpen)
      return;
    mIsOpen = false;
    mIsChanging = true;
    mChanged.notify_all();
  }
  // A device that has gone has nothing to close; one that is silent would only be waited for.
  if (!mIsSilent)
    static_cast<void>(Step([](IFeatureLine& aLine) { return aLine.Close(); }));
  const std::lock_guard lock(mMutex);
  mIsChanging = false;
}

KrResult FeatureChannel::Begin(std::size_t& aOpening) {
  if (!mIsOpen)
    return {KrResult::Code::WrongState, "The serial line is closed; open it first."};
  aOpening = mOpening;
  return {};
}

KrResult FeatureChannel::CheckCall(const Call& aCall) const {
  if (aCall.cancel.stop_requested() || !mIsOpen || mOpening != aCall.opening)
    return {KrResult::Code::Aborted, "The use of the serial line was cancelled, or the line closed."};
  return mLifetime->GetEnd().stop_requested() ? RefuseEnded() : KrResult();
}

// A device that had something may have more; one that had nothing is left alone, longer each time.
void FeatureChannel::PaceReceiving(bool aHasReceived) {
  mNextPoll = mClock->GetNow();
  if (aHasReceived) {
    mPace.OnTraffic();
  } else {
    mNextPoll += mPace.GetPause();
    mPace.OnSilence();
  }
}

// What is sent is answered, as a rule.
void FeatureChannel::PaceSending() {
  mPace.OnTraffic();
  mNextPoll = std::min(mNextPoll, mClock->GetNow() + mPace.GetPause());
  mChanged.notify_all();
}

// Waits until it is time to ask the device for what came, or there is something else to do.
KrResult FeatureChannel::AwaitPoll(std::unique_lock<std::mutex>& aLock, const Call& aCall) {
  const KrWaitClock::TimePoint now = mClock->GetNow();
  if (now >= aCall.deadline)
    return {KrResult::Code::TimeLimitExceeded, "The time limit of the serial line passed."};
  const KrWaitClock::TimePoint next = mNextPoll;
  const bool isPolling = mIsPolling;
  mClock->WaitUntil(mChanged, aLock, aCall.cancel, isPolling ? aCall.deadline : std::min(aCall.deadline, next), [&] {
    return !mReceived.empty() || mNextPoll != next || mIsPolling != isPolling || !CheckCall(aCall).IsOK();
  });
  return {};
}

// Waits until it is time to ask the device once more for room.
KrResult FeatureChannel::AwaitRoom(std::unique_lock<std::mutex>& aLock, const Call& aCall) {
  const KrWaitClock::TimePoint now = mClock->GetNow();
  if (now >= aCall.deadline)
    return {KrResult::Code::TimeLimitExceeded, "The time limit of the serial line passed."};
  mClock->WaitUntil(mChanged, aLock, aCall.cancel, std::min(aCall.deadline, now + PollingPace::kQuickest),
                    [&] { return !CheckCall(aCall).IsOK(); });
  return {};
}

// Asks the device for what came, when it is time to and no other thread does that already.
KrResult FeatureChannel::Poll(std::unique_lock<std::mutex>& aLock, const Call& aCall) {
  if (mIsPolling || mClock->GetNow() < mNextPoll)
    return {};
  mIsPolling = true;
  aLock.unlock();
  std::vector<std::uint8_t> bytes;
  KrResult loss;
  const KrResult polled = Step([&](IFeatureLine& aLine) {
    KrResult received = aLine.Receive(bytes);
    loss = aLine.GetLoss();
    if (received.IsOK() && bytes.empty())
      aLine.Rest();
    return received;
  });
  if (!loss.IsOK())
    Tell(loss);
  aLock.lock();
  mIsPolling = false;
  // What was asked for by a call of an opening before is not for this one, and what came by a step that failed comes
  // again.
  if (mOpening == aCall.opening && polled.IsOK()) {
    mReceived.insert(mReceived.end(), bytes.begin(), bytes.end());
    mLoss = loss;
  }
  PaceReceiving(polled.IsOK() && !bytes.empty());
  mChanged.notify_all();
  return polled;
}

FeatureChannel::EndWatch FeatureChannel::WatchEnd() {
  return EndWatch(mLifetime->GetEnd(), [this] {
    const std::lock_guard lock(mMutex);
    mChanged.notify_all();
  });
}

KrResult FeatureChannel::Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead, std::uint32_t aTimeoutMs,
                              const std::stop_token& aCancel) {
  aRead = 0;
  const EndWatch watch = WatchEnd();
  std::unique_lock lock(mMutex);
  Call call = {0, mClock->GetNow() + std::chrono::milliseconds(aTimeoutMs), aCancel};
  if (KrResult begun = Begin(call.opening); !begun.IsOK())
    return begun;
  // Who does not wait wants to know it now.
  if (aTimeoutMs == 0)
    mNextPoll = mClock->GetNow();
  while (true) {
    if (KrResult checked = CheckCall(call); !checked.IsOK())
      return checked;
    if (mReceived.empty() && !mLoss.IsOK())
      return std::exchange(mLoss, KrResult());
    KrResult polled = mReceived.empty() ? Poll(lock, call) : KrResult();
    if (!mReceived.empty() && mIsOpen && mOpening == call.opening)
      break;
    if (KrResult checked = CheckCall(call); !checked.IsOK())
      return checked;
    if (!polled.IsOK())
      return polled;
    if (!mLoss.IsOK())
      continue;
    if (KrResult awaited = AwaitPoll(lock, call); !awaited.IsOK())
      return awaited;
  }
  aRead = std::min(aSize, mReceived.size());
  std::copy_n(mReceived.begin(), aRead, aBytes);
  mReceived.erase(mReceived.begin(), mReceived.begin() + static_cast<std::ptrdiff_t>(aRead));
  return {};
}

// Sends what the device takes at once.
KrResult FeatureChannel::Transmit(std::unique_lock<std::mutex>& aLock, const std::uint8_t* aBytes, std::size_t aSize,
                                  std::size_t& aTaken) {
  aTaken = 0;
  aLock.unlock();
  const KrResult sent = Step([&](IFeatureLine& aLine) {
    KrResult result = aLine.Transmit(aBytes, aSize, aTaken);
    // Nothing is to be moved for the moment, or nothing more.
    if (result.IsOK() && (aTaken == 0 || aTaken == aSize))
      aLine.Rest();
    return result;
  });
  if (sent == KrResult::Code::InvalidInput)
    Tell(sent);
  aLock.lock();
  if (aTaken > 0)
    PaceSending();
  return sent;
}

KrResult FeatureChannel::Write(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aWritten,
                               std::uint32_t aTimeoutMs, const std::stop_token& aCancel) {
  aWritten = 0;
  const EndWatch watch = WatchEnd();
  std::unique_lock lock(mMutex);
  Call call = {0, mClock->GetNow() + std::chrono::milliseconds(aTimeoutMs), aCancel};
  if (KrResult begun = Begin(call.opening); !begun.IsOK())
    return begun;
  while (aWritten < aSize) {
    if (KrResult checked = CheckCall(call); !checked.IsOK())
      return checked;
    std::size_t taken = 0;
    const KrResult sent = Transmit(lock, aBytes + aWritten, aSize - aWritten, taken);
    aWritten += taken;
    if (!sent.IsOK())
      return sent;
    if (taken > 0)
      continue;
    if (KrResult awaited = AwaitRoom(lock, call); !awaited.IsOK())
      return awaited;
  }
  return {};
}

} // namespace krserial
