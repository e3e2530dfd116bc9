#include "bridge/pump.h"

#include <algorithm>
#include <utility>

namespace krserial {

namespace {

// Nothing but a stop, which cancels it, ends the wait earlier than bytes.
constexpr std::uint32_t kWaitMs = 60000;
// How often it is looked whether a port that was lost is back, for what waits for it.
constexpr std::uint32_t kLookMs = 100;

} // namespace

Pump::Pump(IHostEnd& aEnd, DeviceLine& aLine, BridgeStatus& aStatus, std::function<void()> aPrepare)
    : mEnd(aEnd), mLine(aLine), mStatus(aStatus), mPrepare(std::move(aPrepare)) {
  try {
    mToDevice = std::jthread([this](const std::stop_token& aStop) { MoveToDevice(aStop); });
    mToHost = std::jthread([this](const std::stop_token& aStop) { MoveToHost(aStop); });
  } catch (...) {
    Stop();
    throw;
  }
}

Pump::~Pump() {
  Stop();
}

void Pump::RequestStop() {
  mToDevice.request_stop();
  mToHost.request_stop();
  std::stop_source round(std::nostopstate);
  {
    const std::lock_guard lock(mMutex);
    mIsOver = true;
    round = mRound;
  }
  round.request_stop();
  mLine.Cancel();
}

void Pump::Stop() {
  RequestStop();
  mToDevice = std::jthread();
  mToHost = std::jthread();
}

void Pump::MoveToDevice(const std::stop_token& aStop) {
  Block block;
  while (!aStop.stop_requested()) {
    MoveRound(block, GetRound());
    if (!aStop.stop_requested())
      RecoverPort(aStop);
  }
}

void Pump::MoveRound(Block& aBlock, const std::stop_token& aRound) {
  while (!aRound.stop_requested()) {
    if (aBlock.begin < aBlock.end) {
      std::size_t written = 0;
      // Not OK only where the round has ended; what is left goes on in the next one.
      (void)mLine.Write(aBlock.bytes.data() + aBlock.begin, aBlock.end - aBlock.begin, written, aRound);
      aBlock.begin += written;
      continue;
    }
    std::size_t read = 0;
    const KrResult result = mEnd.Read(aBlock.bytes.data(), aBlock.bytes.size(), read, aRound);
    aBlock.begin = 0;
    aBlock.end = read;
    if (result.IsOK())
      mBackoff.Reset();
    else
      EndRound(aRound, result);
  }
}

void Pump::MoveToHost(const std::stop_token& aStop) {
  std::vector<std::uint8_t> buffer(kBlockSize);
  while (!aStop.stop_requested()) {
    const std::stop_token round = GetRound();
    GiveWaiting(buffer, round);
    std::size_t read = 0;
    const bool isAsking = mEnd.AsksForEmptiness();
    const std::uint32_t waitMs = round.stop_requested() ? kLookMs : kWaitMs;
    if (!mLine.Read(buffer.data(), buffer.size(), read, isAsking ? 0 : waitMs, aStop).IsOK()) {
      if (isAsking)
        mEnd.TellEmpty();
      continue;
    }
    const std::size_t given = Give(buffer.data(), read, round);
    mWaiting.Push(buffer.data() + given, read - given);
  }
}

void Pump::GiveWaiting(std::vector<std::uint8_t>& aBuffer, const std::stop_token& aRound) {
  while (!mWaiting.IsEmpty() && !aRound.stop_requested()) {
    const std::size_t size = mWaiting.Peek(aBuffer.data(), aBuffer.size());
    mWaiting.Drop(Give(aBuffer.data(), size, aRound));
  }
}

// How many the host has taken: all, unless the round ends.
std::size_t Pump::Give(const std::uint8_t* aBytes, std::size_t aSize, const std::stop_token& aRound) {
  if (aRound.stop_requested())
    return 0;
  std::size_t written = 0;
  if (const KrResult result = mEnd.Write(aBytes, aSize, written, aRound); !result.IsOK())
    EndRound(aRound, result);
  return std::min(written, aSize);
}

std::stop_token Pump::GetRound() const {
  const std::lock_guard lock(mMutex);
  return mRound.get_token();
}

void Pump::EndRound(const std::stop_token& aRound, const KrResult& aLoss) {
  std::stop_source round(std::nostopstate);
  {
    const std::lock_guard lock(mMutex);
    // The other thread has lost it already, or the pump is being stopped.
    if (aRound.stop_requested() || mRound.get_token() != aRound)
      return;
    mStatus.SetPort("The host's port has gone: " + aLoss.GetDescription());
    round = mRound;
  }
  round.request_stop();
}

void Pump::RecoverPort(const std::stop_token& aStop) {
  mBackoff.Wait(aStop);
  const auto tell = [this](const KrResult& aHindrance) {
    mStatus.SetPort("The host's port is waited for: " + aHindrance.GetDescription());
  };
  // Not OK only where it is aborted by a stop.
  if (mEnd.Recover(aStop, tell).IsOK())
    mPrepare();
  const std::lock_guard lock(mMutex);
  if (mIsOver)
    return;
  mStatus.SetPort({});
  mRound = std::stop_source();
}

} // namespace krserial
