#include "bridge/deviceline.h"

#include "krbase/krlogger.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace krserial {

namespace {

// The counters and a stop's caller see a slow line move: pieces are of a quarter of a second, at ten bits a byte.
constexpr std::uint32_t kBaudPerPieceByte = 40;
constexpr std::size_t kSmallestPiece = 64;

KrResult RefuseStopped() {
  return {KrResult::Code::Aborted, "The bridge was stopped."};
}

} // namespace

KrResult DeviceLine::Open() {
  return mPort.Open(&mAdapter, mPortID);
}

KrResult DeviceLine::Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead, std::uint32_t aTimeoutMs,
                          const std::stop_token& aStop) {
  aRead = 0;
  const Opening opening = GetOpening();
  // Only now, as a stop that comes later ends this opening's calls.
  if (aStop.stop_requested())
    return RefuseStopped();
  std::uint32_t read = 0;
  const std::size_t size = std::min<std::size_t>(aSize, std::numeric_limits<std::uint32_t>::max());
  const KrResult result = mPort.Read(aBytes, static_cast<std::uint32_t>(size), read, aTimeoutMs);
  if (result.IsOK()) {
    mCounters.receivedFromDevice += read;
    mBackoff.Reset();
    mIsReadDamaged = false;
    aRead = read;
    return result;
  }
  if (result == KrResult::Code::TimeLimitExceeded) {
    mIsReadDamaged = false;
    return result;
  }
  // Some bytes were lost; those after them may come. The port would lose more by being opened again.
  if (result == KrResult::Code::ProtocolError && !mIsReadDamaged)
    mIsReadDamaged = true;
  else
    OnFailure(opening, result, aStop);
  return {KrResult::Code::TimeLimitExceeded, result.GetDescription()};
}

KrResult DeviceLine::Write(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aWritten,
                           const std::stop_token& aStop) {
  aWritten = 0;
  bool isDamaged = false;
  while (aWritten < aSize) {
    const Opening opening = GetOpening();
    if (aStop.stop_requested())
      return RefuseStopped();
    std::uint32_t written = 0;
    const KrResult result = mPort.Write(aBytes + aWritten, GetPieceSize(aSize - aWritten), written, aStop);
    aWritten += written;
    mCounters.sentToDevice += written;
    if (written > 0) {
      mBackoff.Reset();
      isDamaged = false;
    }
    if (result.IsOK() || aStop.stop_requested())
      continue;
    if (result == KrResult::Code::InvalidInput) {
      ++aWritten;
      LogDropped(result);
    } else if (result == KrResult::Code::ProtocolError && !isDamaged) {
      isDamaged = true;
    } else {
      OnFailure(opening, result, aStop);
    }
  }
  return {};
}

void DeviceLine::LogDropped(const KrResult& aReason) {
  // Once, as there may be millions.
  if (!std::exchange(mHasDropped, true))
    KrLogger("KrSerial")
        .Log(KrLogLevel::Warning, {"DeviceLine::Write", "deviceline"},
             "The port " + GetPortName(mPortID) +
                 " cannot carry all bytes; those are dropped: " + aReason.GetDescription());
}

void DeviceLine::Cancel() {
  mIsCancelled = true;
  mPort.Cancel();
}

DeviceLine::Opening DeviceLine::GetOpening() const {
  const std::lock_guard lock(mMutex);
  return mOpening;
}

std::uint32_t DeviceLine::GetPieceSize(std::size_t aSize) const {
  const std::uint32_t speed = mSpeed.Get();
  const std::size_t piece = speed > 0 ? std::max<std::size_t>(speed / kBaudPerPieceByte, kSmallestPiece) : aSize;
  return static_cast<std::uint32_t>(std::min(piece, aSize));
}

void DeviceLine::OnFailure(const Opening& aOpening, const KrResult& aFailure, const std::stop_token& aStop) {
  {
    std::unique_lock lock(mMutex);
    if (mOpening.number != aOpening.number || aStop.stop_requested())
      return;
    if (mIsReopening) {
      mChanged.wait(lock, aStop, [this] { return !mIsReopening; });
      return;
    }
    mIsReopening = true;
    mOpening.isOpen = false;
  }
  Reopen(aOpening.isOpen ? aFailure : KrResult(), aStop);
  const std::lock_guard lock(mMutex);
  mIsReopening = false;
  mChanged.notify_all();
}

void DeviceLine::Reopen(const KrResult& aFailure, const std::stop_token& aStop) {
  const KrString name = GetPortName(mPortID);
  if (!aFailure.IsOK())
    mStatus.SetDevice("The device's port " + name + " has failed: " + aFailure.GetDescription());
  (void)mPort.Close(); // Always OK.
  mBackoff.Wait(aStop);
  if (aStop.stop_requested())
    return;
  const KrResult opened = mPort.Open(&mAdapter, mPortID);
  // It may have been for the opening before.
  if (mIsCancelled)
    mPort.Cancel();
  if (opened.IsOK())
    mStatus.SetDevice({});
  else
    mStatus.SetDevice("The device's port " + name +
                      " has failed and cannot be opened again for now: " + opened.GetDescription());
  const std::lock_guard lock(mMutex);
  mOpening.isOpen = opened.IsOK();
  if (opened.IsOK())
    ++mOpening.number;
}

} // namespace krserial
