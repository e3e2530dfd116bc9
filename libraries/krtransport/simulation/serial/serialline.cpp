#include "simulation/serial/serialline.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <string>
#include <system_error>
#include <utility>

namespace krtransport {

namespace {

constexpr std::size_t kChunkBytes = 1024;
// Bytes of fast lines move together, as with a hardware queue, so that no thread wakes for each.
constexpr std::uint64_t kLeastSleepNs = 1000000;

} // namespace

SerialLine::SerialLine(SerialLineTraits aTraits, const SerialSettings& aSettings, std::unique_ptr<ILineEnd> aFarEnd,
                       std::shared_ptr<ICameraClock> aClock)
    : mTraits(std::move(aTraits)), mClock(std::move(aClock)), mFarEnd(std::move(aFarEnd)), mSettings(aSettings),
      mOutgoing(2 * kChunkBytes), mIncoming(kChunkBytes) {}

SerialLine::~SerialLine() {
  const std::lock_guard openLock(mOpenMutex);
  StopThread();
}

KrResult SerialLine::Open(const void* aHolder) {
  const std::lock_guard openLock(mOpenMutex);
  std::uint32_t rate = 0;
  {
    const std::lock_guard lock(mMutex);
    if (mHolder && !mEnd)
      return {KrResult::Code::Busy, "Opening " + mTraits.name + ": it is open already; close it there first."};
    rate = mSettings.rate;
  }
  StopThread(); // Of an opening that ended with the camera.
  mFarEnd->Open(rate, [this] {
    const std::lock_guard lock(mMutex);
    Wake();
  });
  try {
    Start(aHolder, rate);
  } catch (const std::system_error& error) {
    mFarEnd->Close();
    return {KrResult::Code::SystemError,
            "Opening " + mTraits.name + ": no thread could be started: " + std::string(error.what())};
  }
  return {};
}

void SerialLine::Start(const void* aHolder, std::uint32_t aRate) {
  const std::lock_guard lock(mMutex);
  mIsStopping = false;
  // Where there is none to be had, the line stays as it was, to be opened later. It begins when the lock is given up.
  mThread = std::thread([this] { Run(); });
  mHolder = aHolder;
  ++mOpening;
  mAppliedRate = aRate;
  mEnd.reset();
  mIsStalled = false;
  for (ByteQueue* queue : {&mTransmit, &mReceive, &mOutgoing, &mIncoming})
    queue->Clear();
  mOutPace = {};
  mInPace = {};
  mFarEndNextNs = ILineEnd::kNever;
}

void SerialLine::Close(const void* aHolder) {
  const std::lock_guard openLock(mOpenMutex);
  {
    const std::lock_guard lock(mMutex);
    if (mHolder != aHolder)
      return;
    mHolder = nullptr;
    ++mOpening;
  }
  StopThread();
}

// With mOpenMutex held.
void SerialLine::StopThread() {
  {
    const std::lock_guard lock(mMutex);
    mIsStopping = true;
    Wake();
    mChanged.notify_all();
  }
  if (mThread.joinable())
    mThread.join();
}

void SerialLine::End(const KrResult& aReason) {
  const std::lock_guard lock(mMutex);
  if (!mHolder || mEnd)
    return;
  mEnd = aReason;
  Wake();
  mChanged.notify_all();
}

void SerialLine::Wake() {
  mIsWoken = true;
  mWork.notify_all();
}

KrResult SerialLine::Check(const void* aHolder, std::uint64_t aOpening) const {
  if (aOpening != mOpening)
    return {KrResult::Code::Aborted, mTraits.name + " was closed."};
  if (mHolder != aHolder)
    return {KrResult::Code::WrongState, mTraits.name + " is closed; open it first."};
  return mEnd.value_or(KrResult());
}

KrResult SerialLine::MakeUnfinished(const char* aWhat, std::uint32_t aTimeoutMs, const std::stop_token& aCancel) const {
  if (aCancel.stop_requested())
    return {KrResult::Code::Aborted, std::string(aWhat) + " " + mTraits.name + " was cancelled."};
  return {KrResult::Code::TimeLimitExceeded,
          std::string(aWhat) + " " + mTraits.name + ": not done within " + std::to_string(aTimeoutMs) + " ms."};
}

// OK whether or not what was waited for has come.
template <typename Condition>
KrResult SerialLine::Await(Lock& aLock, const void* aHolder, std::chrono::steady_clock::time_point aLimit,
                           const std::stop_token& aCancel, const Condition& aIsReady) {
  const std::uint64_t opening = mOpening;
  const auto isOver = [&] { return !Check(aHolder, opening).IsOK() || aIsReady(); };
  mChanged.wait_until(aLock, aCancel, aLimit, isOver);
  return Check(aHolder, opening);
}

KrResult SerialLine::Read(const void* aHolder, std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead,
                          std::uint32_t aTimeoutMs, const std::stop_token& aCancel) {
  aRead = 0;
  const auto limit = std::chrono::steady_clock::now() + std::chrono::milliseconds(aTimeoutMs);
  Lock lock(mMutex);
  const KrResult awaited = Await(lock, aHolder, limit, aCancel, [this] { return !mReceive.IsEmpty(); });
  if (!awaited.IsOK())
    return awaited;
  if (aCancel.stop_requested() || mReceive.IsEmpty())
    return MakeUnfinished("Reading from", aTimeoutMs, aCancel);
  aRead = mReceive.Pop(aBytes, aSize);
  // A line that waits for room goes on when there is enough for a while.
  if (mIsStalled && mReceive.GetSize() <= kReceiveBytes / 2) {
    mIsStalled = false;
    Wake();
  }
  return {};
}

KrResult SerialLine::Write(const void* aHolder, const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aWritten,
                           std::uint32_t aTimeoutMs, const std::stop_token& aCancel) {
  aWritten = 0;
  const auto limit = std::chrono::steady_clock::now() + std::chrono::milliseconds(aTimeoutMs);
  Lock lock(mMutex);
  const std::uint64_t opening = mOpening;
  while (true) {
    const KrResult awaited =
        Await(lock, aHolder, limit, aCancel, [&] { return aWritten == aSize || mTransmit.GetRoom() > 0; });
    if (!awaited.IsOK())
      return awaited;
    if (const KrResult checked = Check(aHolder, opening); !checked.IsOK())
      return checked;
    if (aCancel.stop_requested())
      return MakeUnfinished("Writing to", aTimeoutMs, aCancel);
    if (mTransmit.IsEmpty())
      Wake();
    aWritten += mTransmit.Push(aBytes + aWritten, aSize - aWritten);
    if (aWritten == aSize)
      return {};
    if (std::chrono::steady_clock::now() >= limit)
      return MakeUnfinished("Writing to", aTimeoutMs, aCancel);
  }
}

void SerialLine::SetSettings(const SerialSettings& aSettings) {
  const std::lock_guard lock(mMutex);
  if (aSettings == mSettings)
    return;
  mSettings = aSettings;
  mHasLostPower = mHasLostPower || !aSettings.isPowered;
  Wake();
}

LineFaults& SerialLine::GetFaults(KrSerialDirection aDirection) {
  return aDirection == KrSerialDirection::Received ? mReceivedFaults : mSentFaults;
}

void SerialLine::OrderEvery(KrSerialDirection aDirection, ByteOrder LineFaults::*aFault, std::uint32_t aEvery) {
  const std::lock_guard lock(mMutex);
  (GetFaults(aDirection).*aFault).SetEvery(aEvery);
}

void SerialLine::OrderNext(KrSerialDirection aDirection, ByteOrder LineFaults::*aFault, std::uint32_t aBytes) {
  const std::lock_guard lock(mMutex);
  (GetFaults(aDirection).*aFault).AddNext(aBytes);
}

void SerialLine::Silence(bool aIsSilent) {
  const std::lock_guard lock(mMutex);
  mIsSilenced = aIsSilent;
  Wake();
}

void SerialLine::EndFaults() {
  const std::lock_guard lock(mMutex);
  mReceivedFaults = {};
  mSentFaults = {};
  mIsSilenced = false;
  Wake();
}

KrSimulatedSerialCounts SerialLine::GetCounts() const {
  const std::lock_guard lock(mMutex);
  return mCounts;
}

void SerialLine::Run() {
  Lock lock(mMutex);
  while (!mIsStopping && !mEnd) {
    mIsWoken = false;
    ApplySettings(lock);
    const bool hasSent = MoveOut(lock);
    const bool hasReceived = MoveIn(lock);
    if ((!hasSent && !hasReceived) || IsOnTime())
      Sleep(lock);
  }
  lock.unlock();
  mFarEnd->Close();
}

void SerialLine::ApplySettings(Lock& aLock) {
  ApplyPower(aLock);
  const std::uint32_t rate = mSettings.rate;
  for (LinePace* pace : {&mOutPace, &mInPace})
    pace->SetRate(mTraits.isPaced ? rate : 0);
  if (rate == mAppliedRate)
    return;
  mAppliedRate = rate;
  aLock.unlock();
  mFarEnd->SetRate(rate);
  aLock.lock();
}

void SerialLine::ApplyPower(Lock& aLock) {
  const bool isPowered = mSettings.isPowered;
  const bool hasLostPower = mHasLostPower;
  mHasLostPower = !isPowered;
  if (isPowered == mIsPowerApplied && !hasLostPower)
    return;
  const bool wasPowered = mIsPowerApplied;
  mIsPowerApplied = isPowered;
  aLock.unlock();
  if (wasPowered)
    mFarEnd->SetPower(false);
  if (isPowered)
    mFarEnd->SetPower(true);
  aLock.lock();
}

// From the transmit queue over the line to the far end, or back in loopback; false when nothing moved.
bool SerialLine::MoveOut(Lock& aLock) {
  const std::uint64_t nowNs = mClock->GetNowNs();
  const bool hasSent = Send(nowNs);
  if (mOutgoing.IsEmpty())
    return hasSent;
  if (mSettings.isLoopedBack)
    return Deliver(mOutgoing, mOutgoing.GetSize()) > 0 || hasSent;
  std::array<std::uint8_t, kChunkBytes> bytes;
  const std::size_t size = mOutgoing.Peek(bytes.data(), bytes.size());
  aLock.unlock();
  const std::size_t taken = mFarEnd->Take(bytes.data(), size, nowNs);
  aLock.lock();
  mOutgoing.Drop(taken);
  return taken > 0 || hasSent;
}

// What has had its time leaves the transmit queue.
bool SerialLine::Send(std::uint64_t aNowNs) {
  if (!mOutgoing.IsEmpty()) {
    mOutPace.Hold(aNowNs);
    return false;
  }
  if (mTransmit.IsEmpty()) {
    mOutPace.Pause();
    return false;
  }
  mOutPace.Begin(aNowNs);
  std::array<std::uint8_t, kChunkBytes> bytes;
  const std::size_t due = mOutPace.GetDue(aNowNs, mTransmit.GetSize());
  const std::size_t size = mTransmit.Pop(bytes.data(), std::min(due, bytes.size()));
  mOutPace.Advance(size);
  for (std::size_t i = 0; i < size; ++i)
    PutOnLine(bytes[i]);
  mCounts.sent += size;
  if (mTransmit.IsEmpty())
    mOutPace.Pause();
  if (size > 0)
    mChanged.notify_all();
  return size > 0;
}

// A byte as it comes out at the far end.
void SerialLine::PutOnLine(std::uint8_t aByte) {
  if (mSentFaults.lost.TakeByte()) {
    ++mCounts.lostSent;
    return;
  }
  if (mSentFaults.corrupted.TakeByte()) {
    ++mCounts.corruptedSent;
    aByte ^= LineFaults::kCorruption;
  }
  mOutgoing.Push(&aByte, 1);
  if (mSentFaults.repeated.TakeByte()) {
    ++mCounts.repeatedSent;
    mOutgoing.Push(&aByte, 1);
  }
}

// From the far end over the line to the receive queue; false when nothing moved.
bool SerialLine::MoveIn(Lock& aLock) {
  if (mSettings.isLoopedBack || mIsSilenced)
    return Discard(aLock);
  const std::uint64_t nowNs = mClock->GetNowNs();
  const std::size_t fetched = Fetch(aLock);
  if (mIncoming.IsEmpty()) {
    mInPace.Pause();
    return false;
  }
  mInPace.Begin(nowNs);
  const std::size_t due = mInPace.GetDue(nowNs, mIncoming.GetSize());
  const std::size_t moved = Deliver(mIncoming, due);
  mInPace.Advance(moved);
  if (moved < due)
    mInPace.Hold(nowNs);
  if (mIncoming.IsEmpty())
    mInPace.Pause();
  return moved > 0 || fetched > 0;
}

// A port in loopback does not listen to the line, and what was silenced is not heard.
bool SerialLine::Discard(Lock& aLock) {
  mIncoming.Clear();
  mInPace.Pause();
  const std::size_t fetched = Fetch(aLock);
  mIncoming.Clear();
  return fetched > 0;
}

std::size_t SerialLine::Fetch(Lock& aLock) {
  std::array<std::uint8_t, kChunkBytes> bytes;
  const std::size_t room = mIncoming.GetRoom();
  aLock.unlock();
  const std::size_t size = mFarEnd->Give(bytes.data(), room, mClock->GetNowNs());
  const std::uint64_t nextNs = mFarEnd->GetNextNs();
  aLock.lock();
  mFarEndNextNs = nextNs;
  return mIncoming.Push(bytes.data(), size);
}

// Gives how many bytes left aFrom, which is as many as there is room for or, without flow control, all.
std::size_t SerialLine::Deliver(ByteQueue& aFrom, std::size_t aBytes) {
  std::size_t moved = 0;
  std::uint8_t byte = 0;
  while (moved < aBytes && CanDeliver()) {
    moved += aFrom.Pop(&byte, 1);
    Receive(byte);
  }
  if (moved < aBytes)
    mIsStalled = true;
  if (moved > 0)
    mChanged.notify_all();
  return moved;
}

// A byte that has come to the receive queue. One that comes twice needs no room for its second time.
void SerialLine::Receive(std::uint8_t aByte) {
  if (mReceivedFaults.lost.TakeByte()) {
    ++mCounts.lostReceived;
    return;
  }
  if (mReceivedFaults.corrupted.TakeByte()) {
    ++mCounts.corruptedReceived;
    aByte ^= LineFaults::kCorruption;
  }
  if (mReceive.Push(&aByte, 1) == 0)
    ++mCounts.overflowed;
  else
    ++mCounts.received;
  if (mReceivedFaults.repeated.TakeByte() && mReceive.Push(&aByte, 1) > 0) {
    ++mCounts.repeatedReceived;
    ++mCounts.received;
  }
}

std::uint64_t SerialLine::GetNextByteNs() const {
  std::uint64_t nextNs = ILineEnd::kNever;
  if (mOutgoing.IsEmpty())
    nextNs = std::min(nextNs, mOutPace.GetNextNs());
  if (CanDeliver())
    nextNs = std::min(nextNs, mInPace.GetNextNs());
  return nextNs;
}

// Nothing but the next bytes of a paced line is to be moved, and they are hardly late: they may gather for a while.
bool SerialLine::IsOnTime() const {
  const std::uint64_t nextNs = GetNextByteNs();
  return mTraits.isPaced && nextNs != ILineEnd::kNever && mClock->GetNowNs() < nextNs + kLeastSleepNs;
}

void SerialLine::Sleep(Lock& aLock) {
  const auto isWoken = [this] { return mIsWoken; };
  const std::uint64_t nextNs = std::min(mFarEndNextNs, GetNextByteNs());
  if (nextNs == ILineEnd::kNever)
    mWork.wait(aLock, isWoken);
  else
    mClock->WaitUntil(aLock, mWork, std::max(nextNs, mClock->GetNowNs() + kLeastSleepNs), isWoken);
}

} // namespace krtransport
